#include "tools/syncsim/request_reader.h"

namespace {
constexpr wchar_t kObjectStart[] = L"{\"filepath\":\"";
// The path ends where the first flag begins; a quote inside the path does
// not end it.
constexpr wchar_t kPathEnd[] = L"\",\"isOpen\":";
constexpr wchar_t kComboId[] = L"\"file_combo_id\":\"";
constexpr wchar_t kOfficeApp[] = L"\",\"officeApp\":\"";
constexpr wchar_t kObjectEnd[] = L"\"}";

constexpr size_t Length(const wchar_t* text) { return std::char_traits<wchar_t>::length(text); }

// "name":true, "name":false, ... up to the file_combo_id member.
void ReadFlags(const std::wstring& text, size_t from, size_t to, std::map<std::wstring, bool>& flags) {
  size_t position = from;
  while (position < to) {
    const size_t open = text.find(L'"', position);
    if (open == std::wstring::npos || open >= to) return;
    const size_t close = text.find(L"\":", open + 1);
    if (close == std::wstring::npos || close >= to) return;
    const std::wstring name = text.substr(open + 1, close - open - 1);
    const size_t valueStart = close + 2;
    if (text.compare(valueStart, 4, L"true") == 0) {
      flags[name] = true;
      position = valueStart + 4;
    } else if (text.compare(valueStart, 5, L"false") == 0) {
      flags[name] = false;
      position = valueStart + 5;
    } else {
      return;
    }
    if (position < text.size() && text[position] == L',') ++position;
  }
}
}  // namespace

std::vector<RequestedFile> ReadRequest(const std::wstring& text) {
  std::vector<RequestedFile> files;
  if (text.rfind(L"{\"files\":[", 0) != 0) return files;
  size_t position = 0;
  for (;;) {
    const size_t start = text.find(kObjectStart, position);
    if (start == std::wstring::npos) break;
    const size_t pathStart = start + Length(kObjectStart);
    const size_t pathEnd = text.find(kPathEnd, pathStart);
    if (pathEnd == std::wstring::npos) break;
    const size_t comboStart = text.find(kComboId, pathEnd);
    if (comboStart == std::wstring::npos) break;
    const size_t comboEnd = text.find(kOfficeApp, comboStart);
    if (comboEnd == std::wstring::npos) break;
    const size_t appStart = comboEnd + Length(kOfficeApp);
    const size_t end = text.find(kObjectEnd, appStart);
    if (end == std::wstring::npos) break;

    RequestedFile file;
    file.path = text.substr(pathStart, pathEnd - pathStart);
    ReadFlags(text, pathEnd + 2, comboStart, file.flags);
    file.fileComboId = text.substr(comboStart + Length(kComboId), comboEnd - comboStart - Length(kComboId));
    file.officeApp = text.substr(appStart, end - appStart);
    files.push_back(std::move(file));
    position = end + Length(kObjectEnd);
  }
  return files;
}
