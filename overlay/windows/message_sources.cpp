#include "overlay/windows/message_sources.h"

#include <string>

#include "log/write_log.h"
#include "overlay/layouts/help_links.h"

namespace {
bool IsOwnChild(HWND panel, HWND control) {
  return control != nullptr && IsWindow(control) && GetAncestor(control, GA_PARENT) == panel &&
         (GetWindowLongW(control, GWL_STYLE) & WS_CHILD) != 0;
}

bool IsSysLink(HWND control) {
  wchar_t name[16] = L"";
  return GetClassNameW(control, name, 16) > 0 && lstrcmpiW(name, L"SysLink") == 0;
}

void Refuse(const wchar_t* what) { WriteLog(LogLevel::Warning, what); }
}  // namespace

bool IsCommandFromOwnControl(HWND panel, int id, LPARAM lParam) {
  const HWND control = reinterpret_cast<HWND>(lParam);
  if (!IsOwnChild(panel, control) || !IsWindowVisible(control) || GetDlgCtrlID(control) != id) {
    Refuse((L"ignored a command that did not come from the panel's own button: id=" + std::to_wstring(id)).c_str());
    return false;
  }
  return true;
}

bool IsSentFromThisThread() { return InSendMessageEx(nullptr) == ISMEX_NOSEND; }

bool IsLinkClickFromOwnLink(HWND panel, const NMLINK& link) {
  const HWND from = link.hdr.hwndFrom;
  if (!IsOwnChild(panel, from) || !IsSysLink(from) ||
      static_cast<UINT_PTR>(static_cast<LONG_PTR>(GetDlgCtrlID(from))) != link.hdr.idFrom) {
    Refuse(L"ignored a link click that did not come from the panel's own link");
    return false;
  }
  if (link.item.iLink != 0) return false;
  // szUrl is a fixed buffer; a forged one need not end in a NUL.
  const std::wstring address(link.item.szUrl, wcsnlen(link.item.szUrl, L_MAX_URL_LENGTH));
  if (!IsHelpLinkAddress(address)) {
    Refuse(L"ignored a link click for an address that is not one of the add-in's help articles");
    return false;
  }
  return true;
}
