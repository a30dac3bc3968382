#include "docactions/copy_name.h"

namespace {
void AppendPadded(std::wstring& out, int value, size_t width) {
  std::wstring digits = std::to_wstring(value);
  if (digits.size() < width) out.append(width - digits.size(), L'0');
  out += digits;
}
}  // namespace

SplitFileName SplitAtLastDot(const std::wstring& fileName) {
  const size_t dot = fileName.rfind(L'.');
  if (dot == std::wstring::npos) return {fileName, L""};
  return {fileName.substr(0, dot), fileName.substr(dot + 1)};
}

std::wstring FormatCopyStamp(const LocalTimeParts& t) {
  std::wstring stamp = std::to_wstring(t.year);
  stamp += L'-';
  AppendPadded(stamp, t.month, 2);
  stamp += L'-';
  AppendPadded(stamp, t.day, 2);
  stamp += L' ';
  AppendPadded(stamp, t.hour, 2);
  stamp += L'.';
  AppendPadded(stamp, t.minute, 2);
  stamp += L'.';
  AppendPadded(stamp, t.second, 2);
  stamp += L'.';
  AppendPadded(stamp, t.milliseconds, 3);
  return stamp;
}

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
