#include "overlay/windows/link_opener.h"

#include <windows.h>
#include <shellapi.h>

#include "log/write_log.h"

namespace {
void OpenWithShell(const std::wstring& address) {
  const auto result = reinterpret_cast<INT_PTR>(
      ShellExecuteW(nullptr, L"open", address.c_str(), nullptr, nullptr, SW_SHOW));
  // ShellExecuteW reports failure as a value of 32 or less.
  if (result <= 32) WriteLog(LogLevel::Error, L"couldn't open help link - " + std::to_wstring(result));
}

// UI thread only, like every overlay call.
HelpLinkOpener currentOpener = nullptr;
}  // namespace

void OpenHelpLink(const std::wstring& address) {
  if (currentOpener != nullptr) {
    currentOpener(address);
    return;
  }
  OpenWithShell(address);
}

HelpLinkOpener SetHelpLinkOpener(HelpLinkOpener opener) {
  const HelpLinkOpener previous = currentOpener;
  currentOpener = opener;
  return previous;
}
