// DllRegisterServer, DllUnregisterServer and DllInstall: the class's COM
// keys for the machine or (through DllInstall "user") for the current user,
// the Office add-in keys, and the type library.
#include <windows.h>
#include <oleauto.h>
#include <wchar.h>

#include "addin/QSyncMSOfficeAddin.h"
#include "addin/module.h"
#include "addin/registration_entries.h"
#include "common/com_ptr.h"
#include "common/unique_resource.h"

// Declared by the Windows SDK's oleauto.h but missing from MinGW's; the
// import library has them.
extern "C" HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* fullPath, OLECHAR* helpDir);
extern "C" HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID libId, WORD majorVersion, WORD minorVersion, LCID lcid,
                                                   SYSKIND kind);

namespace {
// Set by DllInstall(…, "user") for the duration of that call only.
bool g_perUserRegistration = false;

HKEY ClassesRoot() { return g_perUserRegistration ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE; }
const wchar_t* kClassesPrefix = L"Software\\Classes\\";

HRESULT WriteValue(HKEY root, const std::wstring& path, const RegistryValue& value) {
  UniqueHkey key;
  LSTATUS status = RegCreateKeyExW(root, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr,
                                   key.put(), nullptr);
  if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(status);
  if (value.isDword) {
    const DWORD number = value.number;
    status = RegSetValueExW(key.get(), value.name.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                            sizeof(number));
  } else {
    status = RegSetValueExW(key.get(), value.name.empty() ? nullptr : value.name.c_str(), 0, REG_SZ,
                            reinterpret_cast<const BYTE*>(value.text.c_str()),
                            static_cast<DWORD>((value.text.size() + 1) * sizeof(wchar_t)));
  }
  return HRESULT_FROM_WIN32(status);
}

HRESULT CreateEmptyKey(HKEY root, const std::wstring& path) {
  UniqueHkey key;
  const LSTATUS status = RegCreateKeyExW(root, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE,
                                         nullptr, key.put(), nullptr);
  return HRESULT_FROM_WIN32(status);
}

// Removes a key of ours with everything below it; a missing key is fine.
HRESULT DeleteOwnedKey(HKEY root, const std::wstring& path) {
  const LSTATUS status = RegDeleteTreeW(root, path.c_str());
  if (status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND) return S_OK;
  return HRESULT_FROM_WIN32(status);
}

HRESULT RegisterClassKeys() {
  const HKEY root = ClassesRoot();
  // The class key is created afresh, so nothing of an older registration lingers.
  for (const std::wstring& key : ClassRootOwnedKeys()) {
    if (key.rfind(L"CLSID\\", 0) == 0) DeleteOwnedKey(root, kClassesPrefix + key);
  }
  for (const RegistryValue& value : ClassRootValues(ModulePath())) {
    const HRESULT hr = WriteValue(root, kClassesPrefix + value.key, value);
    if (FAILED(hr)) return hr;
  }
  HRESULT hr = CreateEmptyKey(root, kClassesPrefix + ProgrammableKey());
  if (FAILED(hr)) return hr;
  for (const RegistryValue& value : OfficeAddinValues()) {
    hr = WriteValue(HKEY_CURRENT_USER, value.key, value);
    if (FAILED(hr)) return hr;
  }
  return S_OK;
}

HRESULT UnregisterClassKeys() {
  HRESULT result = S_OK;
  for (const std::wstring& key : ClassRootOwnedKeys()) {
    const HRESULT hr = DeleteOwnedKey(ClassesRoot(), kClassesPrefix + key);
    if (FAILED(hr) && SUCCEEDED(result)) result = hr;
  }
  for (const std::wstring& key : OfficeAddinOwnedKeys()) {
    const HRESULT hr = DeleteOwnedKey(HKEY_CURRENT_USER, key);
    if (FAILED(hr) && SUCCEEDED(result)) result = hr;
  }
  return result;
}

HRESULT RegisterTypeLibrary() {
  const std::wstring path = ModulePath();
  ComPtr<ITypeLib> library;
  HRESULT hr = LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.put());
  if (FAILED(hr)) return hr;
  // The folder keeps its closing backslash, as COM's usual registrar writes
  // it and as Windows Installer formats a folder, so that the per-user
  // installer and registration by hand leave the same text.
  std::wstring helpFolder = path.substr(0, path.find_last_of(L'\\') + 1);
  if (g_perUserRegistration) {
    return RegisterTypeLibForUser(library.get(), const_cast<wchar_t*>(path.c_str()),
                                  const_cast<wchar_t*>(helpFolder.c_str()));
  }
  return RegisterTypeLib(library.get(), const_cast<wchar_t*>(path.c_str()), const_cast<wchar_t*>(helpFolder.c_str()));
}

HRESULT UnregisterTypeLibrary() {
  const HRESULT hr = g_perUserRegistration ? UnRegisterTypeLibForUser(LIBID_QSyncMSOfficeAddinLib, 1, 0, 0, SYS_WIN64)
                                           : UnRegisterTypeLib(LIBID_QSyncMSOfficeAddinLib, 1, 0, 0, SYS_WIN64);
  // A library that was never registered is already gone.
  if (hr == TYPE_E_REGISTRYACCESS || hr == TYPE_E_CANTLOADLIBRARY || hr == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)) {
    return S_OK;
  }
  return hr;
}
}  // namespace

extern "C" HRESULT __stdcall DllRegisterServer() {
  // The application-id script writes nothing; the class script and the
  // type library follow.
  HRESULT hr = RegisterClassKeys();
  if (FAILED(hr)) return hr;
  return RegisterTypeLibrary();
}

extern "C" HRESULT __stdcall DllUnregisterServer() {
  const HRESULT keys = UnregisterClassKeys();
  const HRESULT library = UnregisterTypeLibrary();
  return FAILED(keys) ? keys : library;
}

extern "C" HRESULT __stdcall DllInstall(BOOL install, LPCWSTR commandLine) {
  const bool previousMode = g_perUserRegistration;
  // A plain comparison without regard to case: lstrcmpiW's linguistic one
  // would take texts that merely sort like "user" (ignorable characters).
  if (commandLine != nullptr && _wcsicmp(commandLine, L"user") == 0) g_perUserRegistration = true;

  HRESULT hr;
  if (!install) {
    hr = DllUnregisterServer();
  } else {
    const LCID previousLocale = GetThreadLocale();
    SetThreadLocale(LOCALE_SYSTEM_DEFAULT);
    hr = DllRegisterServer();
    SetThreadLocale(previousLocale);
    if (FAILED(hr)) DllUnregisterServer();  // leave no half-done registration behind
  }
  g_perUserRegistration = previousMode;
  return hr;
}
