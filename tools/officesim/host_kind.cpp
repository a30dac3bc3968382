#include "tools/officesim/host_kind.h"

#include <windows.h>

SimHost HostFromExecutableName(const std::wstring& exePath) {
  const size_t slash = exePath.find_last_of(L"\\/");
  const std::wstring name = slash == std::wstring::npos ? exePath : exePath.substr(slash + 1);
  if (lstrcmpiW(name.c_str(), L"WINWORD.EXE") == 0) return SimHost::Word;
  if (lstrcmpiW(name.c_str(), L"EXCEL.EXE") == 0) return SimHost::Excel;
  if (lstrcmpiW(name.c_str(), L"POWERPNT.EXE") == 0) return SimHost::PowerPoint;
  if (lstrcmpiW(name.c_str(), L"OUTLOOK.EXE") == 0) return SimHost::Outlook;
  return SimHost::Unknown;
}

const wchar_t* OfficeRegistryName(SimHost host) {
  switch (host) {
    case SimHost::Word: return L"Word";
    case SimHost::Excel: return L"Excel";
    case SimHost::PowerPoint: return L"PowerPoint";
    case SimHost::Outlook: return L"Outlook";
    default: return L"Unknown";
  }
}

const wchar_t* MainWindowClass(SimHost host) {
  switch (host) {
    case SimHost::Word: return L"OpusApp";
    case SimHost::Excel: return L"XLMAIN";
    case SimHost::PowerPoint: return L"PPTFrameClass";
    case SimHost::Outlook: return L"rctrl_renwnd32";
    default: return L"OfficeSimFrame";
  }
}

const wchar_t* MainWindowTitle(SimHost host) {
  switch (host) {
    case SimHost::Word: return L"Document1 - Word";
    case SimHost::Excel: return L"Book1 - Excel";
    case SimHost::PowerPoint: return L"Presentation1 - PowerPoint";
    case SimHost::Outlook: return L"Inbox - Outlook";
    default: return L"Office";
  }
}
