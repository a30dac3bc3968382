#include "overlay/images/avatar_loading.h"

#include <vector>

#include "log/write_log.h"
#include "overlay/images/avatar_file.h"
#include "overlay/images/image_loading.h"
#include "overlay/images/overlay_images.h"
#include "overlay/layouts/shown_text.h"

namespace {
// What Windows makes of a path: "." and ".." resolved, trailing dots and
// blanks dropped, "/" turned into "\". Empty when it cannot.
std::wstring FullPathOf(const std::wstring& path) {
  const DWORD needed = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
  if (needed == 0) return std::wstring();
  std::vector<wchar_t> buffer(needed);
  const DWORD written = GetFullPathNameW(path.c_str(), needed, buffer.data(), nullptr);
  if (written == 0 || written >= needed) return std::wstring();
  return std::wstring(buffer.data(), written);
}

bool SameIgnoringCase(const std::wstring& a, const std::wstring& b) {
  return CompareStringOrdinal(a.c_str(), static_cast<int>(a.size()), b.c_str(), static_cast<int>(b.size()), TRUE) ==
         CSTR_EQUAL;
}

// The name, made safe for a log line (a refused name may hold anything).
std::wstring Shown(const std::wstring& fileName) { return CleanShownText(fileName, 64); }

void LogRefusal(const std::wstring& fileName, const wchar_t* why) {
  WriteLog(LogLevel::Error, L"refused avatar file (" + Shown(fileName) + L") - " + why);
}
}  // namespace

HBITMAP LoadAvatarBitmap(const std::wstring& fileName, COLORREF background, int dpi) {
  if (const wchar_t* refusal = AvatarFileNameRefusal(fileName)) {
    LogRefusal(fileName, refusal);
    return nullptr;
  }
  // The rules above leave no way out of the folder that we know of; the
  // canonical path is checked all the same, as Windows resolves it.
  const std::wstring folder = FullPathOf(AvatarFolder());
  const std::wstring path = FullPathOf(AvatarFolder() + L"\\" + fileName);
  if (folder.empty() || path.size() <= folder.size() + 1 || path[folder.size()] != L'\\' ||
      !SameIgnoringCase(path.substr(0, folder.size()), folder) ||
      path.find(L'\\', folder.size() + 1) != std::wstring::npos) {
    LogRefusal(fileName, L"not inside the avatar folder");
    return nullptr;
  }
  // Above 96 DPI LoadImageBitmap may take the twin "<name>@2x" instead: it
  // differs only by "@2x" inside the last part of this checked path, so it
  // lies in the same folder, and it goes through the same PNG checks.
  return LoadImageBitmap(path, background, dpi);
}
