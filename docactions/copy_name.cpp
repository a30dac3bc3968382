#include "docactions/copy_name.h"

SplitFileName SplitAtLastDot(const std::wstring& fileName) {
  const size_t dot = fileName.rfind(L'.');
  if (dot == std::wstring::npos) return {fileName, L""};
  return {fileName.substr(0, dot), fileName.substr(dot + 1)};
}

std::wstring FormatCopyStamp(const LocalTimeParts& t) { return FormatLocalTime(t, L'.'); }

std::wstring SeparateCopyName(const SplitFileName& name, const std::wstring& userName, const std::wstring& stamp) {
  std::wstring result = name.base + L" (";
  if (!userName.empty()) result += userName + L" ";
  result += stamp + L")";
  if (!name.extension.empty()) result += L"." + name.extension;
  return result;
}

bool IsFolderOnDisk(const std::wstring& folder) {
  if (folder.find(L"://") != std::wstring::npos) return false;
  const bool drive = folder.size() >= 3 && ((folder[0] >= L'A' && folder[0] <= L'Z') ||
                                           (folder[0] >= L'a' && folder[0] <= L'z')) &&
                     folder[1] == L':' && folder[2] == L'\\';
  const bool share = folder.size() > 2 && folder[0] == L'\\' && folder[1] == L'\\';
  return drive || share;
}

bool IsNewSeparateCopy(bool existedBefore, bool hostSucceeded, bool existsAfter) {
  return !existedBefore && hostSucceeded && existsAfter;
}
