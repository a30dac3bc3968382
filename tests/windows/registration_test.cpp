// Registration as regsvr32 drives it: per machine through
// DllRegisterServer, per user through DllInstall(TRUE, "user"), and back.
#include <gtest/gtest.h>

#include "common/unique_resource.h"
#include "tests/caller.h"
#include "tests/windows/wine_test_support.h"

namespace {
const std::wstring kClsid = L"{A1763C80-EE08-402F-9099-AF98401AA069}";
const std::wstring kLibid = L"{203E860C-97A0-4328-9B04-F87DA2DD09CE}";
const wchar_t* const kHosts[] = {L"Word", L"Excel", L"PowerPoint"};

using InstallFunction = HRESULT(__stdcall*)(BOOL, LPCWSTR);
using ServerFunction = HRESULT(__stdcall*)();

template <class F>
F Entry(HMODULE module, const char* name) {
  return reinterpret_cast<F>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

bool KeyExists(HKEY root, const std::wstring& path) {
  UniqueHkey key;
  return RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, key.put()) == ERROR_SUCCESS;
}

std::wstring ReadText(HKEY root, const std::wstring& path, const wchar_t* name = nullptr) {
  wchar_t buffer[1024] = L"<missing>";
  DWORD size = sizeof(buffer);
  if (RegGetValueW(root, path.c_str(), name, RRF_RT_REG_SZ, nullptr, buffer, &size) != ERROR_SUCCESS) {
    return L"<missing>";
  }
  return buffer;
}

DWORD ReadDword(HKEY root, const std::wstring& path, const wchar_t* name) {
  DWORD value = 0xdeadbeef, size = sizeof(value);
  RegGetValueW(root, path.c_str(), name, RRF_RT_REG_DWORD, nullptr, &value, &size);
  return value;
}

std::wstring AddinKey(const wchar_t* host) {
  return std::wstring(L"Software\\Microsoft\\Office\\") + host + L"\\Addins\\QelvoFilewellSync.OfficeAddin";
}

class Registration : public testing::Test {
 protected:
  void SetUp() override {
    module_.reset(LoadLibraryW(AddinDllPath().c_str()));
    ASSERT_TRUE(module_);
    install_ = Entry<InstallFunction>(module_.get(), "DllInstall");
    register_ = Entry<ServerFunction>(module_.get(), "DllRegisterServer");
    unregister_ = Entry<ServerFunction>(module_.get(), "DllUnregisterServer");
    ASSERT_TRUE(install_ && register_ && unregister_);
  }
  void TearDown() override {
    install_(FALSE, L"user");
    unregister_();
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Office\\PowerPoint\\Addins");
    UniqueHkey recreated;
    RegCreateKeyW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Office\\PowerPoint\\Addins", recreated.put());
  }
  void ExpectClassKeys(HKEY root, Caller caller = {}) {
    TRACE_CALLER(caller);
    const std::wstring classes = L"Software\\Classes\\";
    const std::wstring clsidKey = classes + L"CLSID\\" + kClsid;
    EXPECT_EQ(ReadText(root, classes + L"QelvoFilewellSync.OfficeAddin.1"), L"Connect class");
    EXPECT_EQ(ReadText(root, classes + L"QelvoFilewellSync.OfficeAddin.1\\CLSID"), kClsid);
    EXPECT_EQ(ReadText(root, classes + L"QelvoFilewellSync.OfficeAddin"), L"Connect class");
    EXPECT_EQ(ReadText(root, classes + L"QelvoFilewellSync.OfficeAddin\\CurVer"), L"QelvoFilewellSync.OfficeAddin.1");
    EXPECT_EQ(ReadText(root, clsidKey), L"Connect class");
    EXPECT_EQ(ReadText(root, clsidKey + L"\\ProgID"), L"QelvoFilewellSync.OfficeAddin.1");
    EXPECT_EQ(ReadText(root, clsidKey + L"\\VersionIndependentProgID"), L"QelvoFilewellSync.OfficeAddin");
    EXPECT_TRUE(KeyExists(root, clsidKey + L"\\Programmable"));
    EXPECT_EQ(lstrcmpiW(ReadText(root, clsidKey + L"\\InprocServer32").c_str(), AddinDllPath().c_str()), 0);
    EXPECT_EQ(ReadText(root, clsidKey + L"\\InprocServer32", L"ThreadingModel"), L"Apartment");
    EXPECT_EQ(ReadText(root, clsidKey + L"\\TypeLib"), kLibid);
    EXPECT_EQ(ReadText(root, clsidKey + L"\\Version"), L"1.0");
  }
  void ExpectOfficeAddinKeys(Caller caller = {}) {
    TRACE_CALLER(caller);
    for (const wchar_t* host : kHosts) {
      EXPECT_EQ(ReadText(HKEY_CURRENT_USER, AddinKey(host), L"Description"),
                L"Qelvo Filewell Sync Add-in for Microsoft Office");
      EXPECT_EQ(ReadText(HKEY_CURRENT_USER, AddinKey(host), L"FriendlyName"),
                L"Qelvo Filewell Sync Add-in for Microsoft Office");
      EXPECT_EQ(ReadDword(HKEY_CURRENT_USER, AddinKey(host), L"LoadBehavior"), 3u);
    }
  }
  void ExpectNothingLeft(HKEY root, Caller caller = {}) {
    TRACE_CALLER(caller);
    EXPECT_FALSE(KeyExists(root, L"Software\\Classes\\QelvoFilewellSync.OfficeAddin"));
    EXPECT_FALSE(KeyExists(root, L"Software\\Classes\\QelvoFilewellSync.OfficeAddin.1"));
    EXPECT_FALSE(KeyExists(root, L"Software\\Classes\\CLSID\\" + kClsid));
    for (const wchar_t* host : kHosts) {
      EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, AddinKey(host)));
      // The hosts' own lists stay.
      EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, std::wstring(L"Software\\Microsoft\\Office\\") + host + L"\\Addins"));
    }
  }

  UniqueModule module_;
  InstallFunction install_ = nullptr;
  ServerFunction register_ = nullptr;
  ServerFunction unregister_ = nullptr;
};
}  // namespace

TEST_F(Registration, PerUserInstallWritesTheClassUnderTheUsersClasses) {
  ASSERT_EQ(install_(TRUE, L"user"), S_OK);
  ExpectClassKeys(HKEY_CURRENT_USER);
  ExpectOfficeAddinKeys();
  EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, L"Software\\Classes\\CLSID\\" + kClsid));
}

TEST_F(Registration, TakesTheUserCommandLineInAnyCase) {
  ASSERT_EQ(install_(TRUE, L"USER"), S_OK);
  ExpectClassKeys(HKEY_CURRENT_USER);
}

TEST_F(Registration, TakesNoOtherCommandLineForTheUser) {
  // Texts that a linguistic comparison would call equal to "user".
  ASSERT_EQ(install_(TRUE, L"us\u00ADer"), S_OK);
  EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"Software\\Classes\\CLSID\\" + kClsid));
  ExpectClassKeys(HKEY_LOCAL_MACHINE);
}

TEST_F(Registration, PerUserUninstallRemovesWhatItWroteAndKeepsTheParents) {
  ASSERT_EQ(install_(TRUE, L"user"), S_OK);
  ASSERT_EQ(install_(FALSE, L"user"), S_OK);
  ExpectNothingLeft(HKEY_CURRENT_USER);
  EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, L"Software\\Classes\\CLSID"));
}

TEST_F(Registration, PerMachineRegistrationWritesTheMachinesClassesAndTheUsersAddinKeys) {
  ASSERT_EQ(register_(), S_OK);
  ExpectClassKeys(HKEY_LOCAL_MACHINE);
  ExpectOfficeAddinKeys();
  EXPECT_TRUE(KeyExists(HKEY_CLASSES_ROOT, L"TypeLib\\" + kLibid + L"\\1.0"));
  EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"Software\\Classes\\CLSID\\" + kClsid));
}

TEST_F(Registration, TypeLibraryHelpFolderIsTheModulesFolderWithItsSeparator) {
  // The per-user installer can only write a folder as Windows Installer
  // formats it, with its closing backslash; registration by hand writes the
  // same text so that both leave the same registry behind.
  ASSERT_EQ(install_(TRUE, L"user"), S_OK);
  const std::wstring dll = AddinDllPath();
  const std::wstring folder = dll.substr(0, dll.find_last_of(L'\\') + 1);
  EXPECT_EQ(ReadText(HKEY_CLASSES_ROOT, L"TypeLib\\" + kLibid + L"\\1.0\\HELPDIR"), folder);
}

TEST_F(Registration, PerMachineUnregistrationRemovesWhatItWrote) {
  ASSERT_EQ(register_(), S_OK);
  ASSERT_EQ(unregister_(), S_OK);
  ExpectNothingLeft(HKEY_LOCAL_MACHINE);
  EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, L"TypeLib\\" + kLibid));
}

TEST_F(Registration, InstallWithoutACommandLineRegistersForTheMachine) {
  ASSERT_EQ(install_(TRUE, nullptr), S_OK);
  ExpectClassKeys(HKEY_LOCAL_MACHINE);
}

TEST_F(Registration, DllInstallUndoesAHalfDoneRegistration) {
  // PowerPoint's add-in list made volatile: no lasting key can be created
  // under it, so the last step of the registration fails.
  RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Office\\PowerPoint\\Addins");
  UniqueHkey volatileKey;
  ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Office\\PowerPoint\\Addins", 0, nullptr,
                            REG_OPTION_VOLATILE, KEY_WRITE, nullptr, volatileKey.put(), nullptr),
            ERROR_SUCCESS);
  EXPECT_EQ(install_(TRUE, L"user"), HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
  EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"Software\\Classes\\QelvoFilewellSync.OfficeAddin"));
  EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"Software\\Classes\\CLSID\\" + kClsid));
  EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, AddinKey(L"Word")));
  EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, AddinKey(L"Excel")));
}

TEST_F(Registration, RestoresTheThreadLocaleAfterInstalling) {
  const LCID before = GetThreadLocale();
  ASSERT_EQ(install_(TRUE, L"user"), S_OK);
  EXPECT_EQ(GetThreadLocale(), before);
}

TEST_F(Registration, UnloadIsAllowedOnlyWithoutLiveObjectsOrLocks) {
  using GetClassObjectFunction = HRESULT(__stdcall*)(REFCLSID, REFIID, void**);
  auto getClassObject = Entry<GetClassObjectFunction>(module_.get(), "DllGetClassObject");
  auto canUnload = Entry<ServerFunction>(module_.get(), "DllCanUnloadNow");
  CLSID clsid;
  ASSERT_EQ(CLSIDFromString(kClsid.c_str(), &clsid), S_OK);
  EXPECT_EQ(canUnload(), S_OK);

  IClassFactory* factory = reinterpret_cast<IClassFactory*>(0xdeadbeef);
  ASSERT_EQ(getClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory)), S_OK);
  EXPECT_EQ(canUnload(), S_FALSE);
  IUnknown* unknown = reinterpret_cast<IUnknown*>(0xdeadbeef);
  EXPECT_EQ(factory->QueryInterface(IID_IPersist, reinterpret_cast<void**>(&unknown)), E_NOINTERFACE);
  EXPECT_EQ(unknown, nullptr);
  IDispatch* connect = nullptr;
  ASSERT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&connect)), S_OK);
  factory->LockServer(TRUE);
  factory->Release();
  EXPECT_EQ(canUnload(), S_FALSE);
  connect->Release();
  EXPECT_EQ(canUnload(), S_FALSE);  // still locked
  // The lock is taken on the module, not the factory, so it outlives it.
  getClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory));
  factory->LockServer(FALSE);
  factory->Release();
  EXPECT_EQ(canUnload(), S_OK);
}

TEST_F(Registration, ClassObjectOfAnotherClassIsRefused) {
  using GetClassObjectFunction = HRESULT(__stdcall*)(REFCLSID, REFIID, void**);
  auto getClassObject = Entry<GetClassObjectFunction>(module_.get(), "DllGetClassObject");
  void* object = reinterpret_cast<void*>(0xdeadbeef);
  EXPECT_EQ(getClassObject(IID_IDispatch, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
}
