#include "log/log_folder.h"

#include <windows.h>

#include <vector>

#include "log/addin_log.h"

const std::wstring& AppDataPath() {
  static const std::wstring path = [] {
    std::vector<wchar_t> buffer(32767);
    const DWORD length = ExpandEnvironmentStringsW(L"%APPDATA%", buffer.data(), static_cast<DWORD>(buffer.size()));
    if (length == 0 || length > buffer.size()) return std::wstring();
    return std::wstring(buffer.data());
  }();
  return path;
}

void InitLogFolder() {
  const std::wstring folder = AppDataPath() + L"\\" + L"QelvoFilewell" + L"\\" + L"logs";
  if (GetFileAttributesW(folder.c_str()) == INVALID_FILE_ATTRIBUTES) {
    CreateDirectoryW(folder.c_str(), nullptr);  // a failure only means lines are lost
  }
  InstallAddinLog(std::make_unique<AddinLog>(folder, L"msoffice_addinlog.txt", L"msoffice_addinlog1.txt"));
}
