// What Office and Windows read from the DLL file itself: the version, the
// resources, the type library.
#include <gtest/gtest.h>

#include "common/com_ptr.h"
#include "common/unique_resource.h"
#include "tests/windows/wine_test_support.h"

TEST(DllImage, CarriesFileVersion1004) {
  const std::wstring path = AddinDllPath();
  DWORD ignored = 0;
  const DWORD size = GetFileVersionInfoSizeW(path.c_str(), &ignored);
  ASSERT_GT(size, 0u);
  std::vector<BYTE> data(size);
  ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, size, data.data()));
  VS_FIXEDFILEINFO* info = nullptr;
  UINT length = 0;
  ASSERT_TRUE(VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&info), &length));
  EXPECT_EQ(info->dwFileVersionMS, 0x00010000u);
  EXPECT_EQ(info->dwFileVersionLS, 0x00000004u);
  wchar_t* text = nullptr;
  ASSERT_TRUE(VerQueryValueW(data.data(), L"\\StringFileInfo\\040904B0\\FileVersion", reinterpret_cast<void**>(&text),
                             &length));
  EXPECT_STREQ(text, L"1.0.0.4");
}

TEST(DllImage, CarriesTheProjectNameIconManifestAndTypeLibrary) {
  UniqueModule module(LoadLibraryExW(AddinDllPath().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
  ASSERT_TRUE(module);
  wchar_t name[64] = L"";
  EXPECT_GT(LoadStringW(module.get(), 100, name, 64), 0);
  EXPECT_STREQ(name, L"QSyncMSOfficeAddin");
  EXPECT_NE(FindResourceW(module.get(), MAKEINTRESOURCEW(201), RT_GROUP_ICON), nullptr);
  EXPECT_NE(FindResourceW(module.get(), MAKEINTRESOURCEW(2), RT_MANIFEST), nullptr);
  EXPECT_NE(FindResourceW(module.get(), MAKEINTRESOURCEW(1), L"TYPELIB"), nullptr);
}

TEST(DllImage, CarriesAnApplicationIdScriptThatWritesNothing) {
  UniqueModule module(LoadLibraryExW(AddinDllPath().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
  ASSERT_TRUE(module);
  HRSRC found = FindResourceW(module.get(), MAKEINTRESOURCEW(101), L"REGISTRY");
  ASSERT_NE(found, nullptr);
  const char* text = static_cast<const char*>(LockResource(LoadResource(module.get(), found)));
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(std::string(text, SizeofResource(module.get(), found)), "HKCR\r\n{\r\n}\r\n");
}

TEST(DllImage, TypeLibraryHoldsTheDualIConnectAndTheCoclassConnect) {
  ComPtr<ITypeLib> library;
  ASSERT_EQ(LoadTypeLibEx(AddinDllPath().c_str(), REGKIND_NONE, library.put()), S_OK);
  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(library->GetLibAttr(&attributes), S_OK);
  wchar_t libid[64];
  StringFromGUID2(attributes->guid, libid, 64);
  EXPECT_STREQ(libid, L"{203E860C-97A0-4328-9B04-F87DA2DD09CE}");
  EXPECT_EQ(attributes->wMajorVerNum, 1);
  EXPECT_EQ(attributes->wMinorVerNum, 0);
  library->ReleaseTLibAttr(attributes);

  BSTR libraryName = nullptr;
  ASSERT_EQ(library->GetDocumentation(-1, &libraryName, nullptr, nullptr, nullptr), S_OK);
  EXPECT_STREQ(libraryName, L"QSyncMSOfficeAddinLib");
  SysFreeString(libraryName);

  ComPtr<ITypeInfo> coclass;
  CLSID clsid;
  CLSIDFromString(L"{A1763C80-EE08-402F-9099-AF98401AA069}", &clsid);
  ASSERT_EQ(library->GetTypeInfoOfGuid(clsid, coclass.put()), S_OK);
  TYPEATTR* typeAttributes = nullptr;
  ASSERT_EQ(coclass->GetTypeAttr(&typeAttributes), S_OK);
  EXPECT_EQ(typeAttributes->typekind, TKIND_COCLASS);
  coclass->ReleaseTypeAttr(typeAttributes);

  ComPtr<ITypeInfo> connectInterface;
  IID iid;
  IIDFromString(L"{2A582D20-9B8A-4D5E-AA4B-490C896C488E}", &iid);
  ASSERT_EQ(library->GetTypeInfoOfGuid(iid, connectInterface.put()), S_OK);
  ASSERT_EQ(connectInterface->GetTypeAttr(&typeAttributes), S_OK);
  EXPECT_TRUE(typeAttributes->wTypeFlags & TYPEFLAG_FDUAL);
  connectInterface->ReleaseTypeAttr(typeAttributes);
}
