#include "addin/registration_entries.h"

namespace {
std::wstring ClassKey() { return std::wstring(L"CLSID\\") + kClsidText; }
}  // namespace

std::vector<RegistryValue> ClassRootValues(const std::wstring& modulePath) {
  const std::wstring classKey = ClassKey();
  return {
      {kVersionedProgId, L"", false, kClassDescription},
      {std::wstring(kVersionedProgId) + L"\\CLSID", L"", false, kClsidText},
      {kProgId, L"", false, kClassDescription},
      {std::wstring(kProgId) + L"\\CurVer", L"", false, kVersionedProgId},
      {classKey, L"", false, kClassDescription},
      {classKey + L"\\ProgID", L"", false, kVersionedProgId},
      {classKey + L"\\VersionIndependentProgID", L"", false, kProgId},
      {classKey + L"\\InprocServer32", L"", false, modulePath},
      {classKey + L"\\InprocServer32", L"ThreadingModel", false, L"Apartment"},
      {classKey + L"\\TypeLib", L"", false, kLibidText},
      {classKey + L"\\Version", L"", false, L"1.0"},
  };
}

std::wstring ProgrammableKey() { return ClassKey() + L"\\Programmable"; }

std::vector<std::wstring> ClassRootOwnedKeys() { return {kVersionedProgId, kProgId, ClassKey()}; }

std::vector<RegistryValue> OfficeAddinValues() {
  std::vector<RegistryValue> values;
  for (const wchar_t* parent : kOfficeAddinParents) {
    const std::wstring key = std::wstring(parent) + L"\\" + kProgId;
    values.push_back({key, L"Description", false, kAddinDescription});
    values.push_back({key, L"FriendlyName", false, kAddinDescription});
    values.push_back({key, L"LoadBehavior", true, L"", 3});
  }
  return values;
}

std::vector<std::wstring> OfficeAddinOwnedKeys() {
  std::vector<std::wstring> keys;
  for (const wchar_t* parent : kOfficeAddinParents) keys.push_back(std::wstring(parent) + L"\\" + kProgId);
  return keys;
}
