#pragma once
// What registration writes: the class's COM keys under the classes root
// (the machine's or the user's) and the per-user Office add-in keys.
#include <string>
#include <vector>

inline constexpr const wchar_t* kProgId = L"QelvoFilewellSync.OfficeAddin";
inline constexpr const wchar_t* kVersionedProgId = L"QelvoFilewellSync.OfficeAddin.1";
inline constexpr const wchar_t* kClassDescription = L"Connect class";
inline constexpr const wchar_t* kAddinDescription = L"Qelvo Filewell Sync Add-in for Microsoft Office";
inline constexpr const wchar_t* kClsidText = L"{A1763C80-EE08-402F-9099-AF98401AA069}";
inline constexpr const wchar_t* kLibidText = L"{203E860C-97A0-4328-9B04-F87DA2DD09CE}";

// The three hosts' add-in lists; these parent keys are never removed.
inline constexpr const wchar_t* kOfficeAddinParents[] = {
    L"Software\\Microsoft\\Office\\Word\\Addins",
    L"Software\\Microsoft\\Office\\Excel\\Addins",
    L"Software\\Microsoft\\Office\\PowerPoint\\Addins",
};

struct RegistryValue {
  std::wstring key;   // relative to the root the entry belongs to
  std::wstring name;  // empty: the key's default value
  bool isDword = false;
  std::wstring text;
  unsigned long number = 0;
};

// Keys and values under the classes root, in the order they are written.
std::vector<RegistryValue> ClassRootValues(const std::wstring& modulePath);
// Keys that are ours alone and are removed whole at unregistration.
std::vector<std::wstring> ClassRootOwnedKeys();
// The empty key CLSID\{clsid}\Programmable.
std::wstring ProgrammableKey();

// Values under HKEY_CURRENT_USER for the Office add-in keys.
std::vector<RegistryValue> OfficeAddinValues();
std::vector<std::wstring> OfficeAddinOwnedKeys();
