#include "tools/officesim/addin_loader.h"

#include <cstdio>

#include "common/text.h"

namespace {
std::vector<std::wstring> ListedProgIds(HKEY root, SimHost host) {
  std::vector<std::wstring> progIds;
  const std::wstring path = std::wstring(L"Software\\Microsoft\\Office\\") + OfficeRegistryName(host) + L"\\Addins";
  UniqueHkey addins;
  if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, addins.put()) != ERROR_SUCCESS) return progIds;
  for (DWORD index = 0;; ++index) {
    wchar_t name[256];
    DWORD nameLength = 256;
    if (RegEnumKeyExW(addins.get(), index, name, &nameLength, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
      break;
    }
    DWORD loadBehavior = 0, size = sizeof(loadBehavior), type = 0;
    UniqueHkey entry;
    if (RegOpenKeyExW(addins.get(), name, 0, KEY_READ, entry.put()) != ERROR_SUCCESS) continue;
    if (RegQueryValueExW(entry.get(), L"LoadBehavior", nullptr, &type, reinterpret_cast<BYTE*>(&loadBehavior),
                         &size) != ERROR_SUCCESS ||
        type != REG_DWORD) {
      continue;
    }
    if (loadBehavior == 3) progIds.push_back(name);
  }
  return progIds;
}

// A default value in the merged classes view: the user's classes win over
// the machine's, as on Windows.
bool ReadClassesDefault(const std::wstring& subKey, std::wstring& value, const wchar_t** foundIn) {
  static const struct {
    HKEY root;
    const wchar_t* label;
  } roots[] = {{HKEY_CURRENT_USER, L"HKCU"}, {HKEY_LOCAL_MACHINE, L"HKLM"}};
  for (const auto& root : roots) {
    wchar_t buffer[1024];
    DWORD size = sizeof(buffer);
    const std::wstring path = L"Software\\Classes\\" + subKey;
    if (RegGetValueW(root.root, path.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, buffer, &size) == ERROR_SUCCESS) {
      value = buffer;
      if (foundIn) *foundIn = root.label;
      return true;
    }
  }
  return false;
}

bool ClassesKeyExists(const std::wstring& subKey) {
  for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    UniqueHkey key;
    if (RegOpenKeyExW(root, (L"Software\\Classes\\" + subKey).c_str(), 0, KEY_READ, key.put()) == ERROR_SUCCESS) {
      return true;
    }
  }
  return false;
}

// Resolves ProgID → CLSID → InprocServer32 the way Windows' merged view
// does, then asks the DLL's class object directly. Wine does not merge the
// user's classes into HKEY_CLASSES_ROOT, so a per-user registration needs this.
HRESULT CreateThroughClassesView(const std::wstring& progId, LoadedAddin& loaded) {
  std::wstring effective = progId, curVer;
  if (ReadClassesDefault(progId + L"\\CurVer", curVer, nullptr) && ClassesKeyExists(curVer)) effective = curVer;
  std::wstring clsidText;
  const wchar_t* foundIn = L"";
  if (!ReadClassesDefault(effective + L"\\CLSID", clsidText, &foundIn)) return REGDB_E_CLASSNOTREG;
  std::wstring dllPath;
  const wchar_t* dllFoundIn = L"";
  if (!ReadClassesDefault(L"CLSID\\" + clsidText + L"\\InprocServer32", dllPath, &dllFoundIn)) return REGDB_E_CLASSNOTREG;
  CLSID clsid;
  if (FAILED(CLSIDFromString(clsidText.c_str(), &clsid))) return REGDB_E_CLASSNOTREG;

  loaded.module.reset(LoadLibraryW(dllPath.c_str()));
  if (!loaded.module) return HRESULT_FROM_WIN32(GetLastError());
  using GetClassObjectFunction = HRESULT(__stdcall*)(REFCLSID, REFIID, void**);
  auto getClassObject =
      reinterpret_cast<GetClassObjectFunction>(reinterpret_cast<void*>(GetProcAddress(loaded.module.get(), "DllGetClassObject")));
  if (getClassObject == nullptr) return HRESULT_FROM_WIN32(GetLastError());
  ComPtr<IClassFactory> factory;
  HRESULT hr = getClassObject(clsid, IID_IClassFactory, factory.put_void());
  if (FAILED(hr)) return hr;
  hr = factory->CreateInstance(nullptr, IID__IDTExtensibility2, loaded.addin.put_void());
  if (SUCCEEDED(hr)) {
    std::printf("officesim: %s created through the classes view (ProgID %s, class and server in %s) - %s\n",
                ToUtf8(progId).c_str(), ToUtf8(effective).c_str(), ToUtf8(dllFoundIn).c_str(),
                ToUtf8(dllPath).c_str());
  }
  return hr;
}
}  // namespace

std::vector<LoadedAddin> CreateListedAddins(SimHost host) {
  std::vector<std::wstring> progIds = ListedProgIds(HKEY_CURRENT_USER, host);
  for (const std::wstring& machineWide : ListedProgIds(HKEY_LOCAL_MACHINE, host)) {
    bool seen = false;
    for (const auto& id : progIds) seen = seen || lstrcmpiW(id.c_str(), machineWide.c_str()) == 0;
    if (!seen) progIds.push_back(machineWide);
  }

  std::vector<LoadedAddin> addins;
  for (const std::wstring& progId : progIds) {
    LoadedAddin loaded;
    loaded.progId = progId;
    CLSID clsid;
    HRESULT hr = CLSIDFromProgID(progId.c_str(), &clsid);
    if (SUCCEEDED(hr)) {
      hr = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID__IDTExtensibility2, loaded.addin.put_void());
      if (SUCCEEDED(hr)) std::printf("officesim: %s created through CoCreateInstance\n", ToUtf8(progId).c_str());
    }
    if (FAILED(hr)) hr = CreateThroughClassesView(progId, loaded);
    if (FAILED(hr)) {
      std::printf("officesim: %s could not be created (0x%08lX)\n", ToUtf8(progId).c_str(),
                  static_cast<unsigned long>(hr));
      continue;
    }
    addins.push_back(std::move(loaded));
  }
  return addins;
}

void FreeAddinModule(LoadedAddin& addin) {
  if (!addin.module) return;
  using CanUnloadFunction = HRESULT(__stdcall*)();
  auto canUnload = reinterpret_cast<CanUnloadFunction>(reinterpret_cast<void*>(GetProcAddress(addin.module.get(), "DllCanUnloadNow")));
  if (canUnload != nullptr && canUnload() == S_OK) {
    addin.module.reset();
  } else {
    addin.module.release();  // still in use: keep it mapped for the rest of the process
  }
}
