#include "overlay/images/avatar_file.h"

#include <cwchar>

namespace {
wchar_t UpperAscii(wchar_t c) { return (c >= L'a' && c <= L'z') ? static_cast<wchar_t>(c - L'a' + L'A') : c; }

bool SameIgnoringAsciiCase(const std::wstring& a, const wchar_t* b) {
  const std::size_t length = std::wcslen(b);
  if (a.size() != length) return false;
  for (std::size_t i = 0; i < length; ++i) {
    if (UpperAscii(a[i]) != b[i]) return false;
  }
  return true;
}

// Windows treats these as devices whatever extension follows, and also
// with blanks before the extension ("CON .png").
bool IsReservedDeviceName(const std::wstring& fileName) {
  std::wstring stem = fileName.substr(0, fileName.find(L'.'));
  while (!stem.empty() && stem.back() == L' ') stem.pop_back();
  static const wchar_t* const kDevices[] = {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"};
  for (const wchar_t* device : kDevices) {
    if (SameIgnoringAsciiCase(stem, device)) return true;
  }
  if (stem.size() == 4) {
    const std::wstring prefix = stem.substr(0, 3);
    const wchar_t digit = stem[3];
    // COM0 and LPT0 are reserved on newer Windows too; the superscript
    // digits ¹ ² ³ count as digits for the device names.
    const bool deviceDigit = (digit >= L'0' && digit <= L'9') || digit == L'\u00B9' || digit == L'\u00B2' ||
                             digit == L'\u00B3';
    if (deviceDigit && (SameIgnoringAsciiCase(prefix, L"COM") || SameIgnoringAsciiCase(prefix, L"LPT"))) return true;
  }
  return false;
}
}  // namespace

std::wstring AvatarFileName(const std::wstring& identifier) {
  return identifier.size() > 2 ? identifier.substr(2) : std::wstring();
}

const wchar_t* AvatarFileNameRefusal(const std::wstring& fileName) {
  if (fileName.empty()) return L"empty name";
  if (fileName.size() > kAvatarFileNameMaxLength) return L"name too long";
  for (const wchar_t c : fileName) {
    const auto code = static_cast<unsigned long>(c);
    if (c == L'\\' || c == L'/' || c == L':') return L"path separator or drive in name";
    if (code <= 0x1F || (code >= 0x7F && code <= 0x9F)) return L"control character in name";
    if (c == L'<' || c == L'>' || c == L'"' || c == L'|' || c == L'?' || c == L'*') {
      return L"character not allowed in file names";
    }
  }
  if (fileName.find(L"..") != std::wstring::npos) return L"parent folder in name";
  if (fileName.back() == L'.' || fileName.back() == L' ') return L"name ends in a dot or blank";
  if (IsReservedDeviceName(fileName)) return L"reserved device name";
  return nullptr;
}
