#include "overlay/windows/overlay_window_proc.h"

#include <commctrl.h>
#include <windowsx.h>

#include <string>

#include "common/gdi_guards.h"
#include "log/exception_barrier.h"
#include "log/log_last_error.h"
#include "log/write_log.h"
#include "overlay/windows/control_colours.h"
#include "overlay/windows/link_opener.h"
#include "overlay/windows/message_sources.h"
#include "overlay/windows/overlay_fonts.h"
#include "overlay/layouts/overlay_geometry.h"
#include "overlay/images/panel_bitmaps.h"
#include "overlay/windows/panel_commands.h"
#include "synclink/file_status_cache.h"

namespace {
using Role = FileStatusCache::WindowRole;

Rect ToRect(const RECT& r) { return {r.left, r.top, r.right, r.bottom}; }

std::wstring Number(long value) { return std::to_wstring(value); }

// The file a badge or panel belongs to, with a copy of its record.
struct Owner {
  std::wstring path;
  FileStatusRecord record;
};
std::optional<Owner> OwnerOf(HWND window, Role role) {
  FileStatusCache& cache = TheFileStatusCache();
  const std::optional<std::wstring> path = cache.PathOfWindow(window, role);
  if (!path) return std::nullopt;
  std::optional<FileStatusRecord> record = cache.Find(*path);
  if (!record) return std::nullopt;
  return Owner{*path, std::move(*record)};
}

void GiveActivationBack(const FileStatusRecord& record) {
  if (record.hostWindow) SetActiveWindow(record.hostWindow);
}

LRESULT OnDestroy(HWND window) {
  WriteLog(LogLevel::Debug, L"                    WM_DESTROY");
  TakeBitmapsOutOfControls(window);
  TakeOverlayFontsOutOfLinks(window);
  // Only a panel that still holds the activation gives it back: taking it
  // for another document's window would bring that document to the front
  // under the user's typing, and would pull it from Office's own dialogs.
  if (GetActiveWindow() != window) return 0;
  if (const std::optional<Owner> owner = OwnerOf(window, Role::Panel)) {
    GiveActivationBack(owner->record);
    WriteLog(LogLevel::Debug, L"WM_DESTROY suboverlay wnd is not active now");
  }
  return 0;
}

LRESULT OnSetCursor(LPARAM lParam) {
  SetCursor(LoadCursorW(nullptr, LOWORD(lParam) == HTCLIENT ? IDC_HAND : IDC_ARROW));
  return TRUE;
}

LRESULT OnNotify(HWND window, const NMHDR& header) {
  if (header.code != NM_CLICK && header.code != NM_RETURN) return 0;
  const auto& link = reinterpret_cast<const NMLINK&>(header);
  if (!IsLinkClickFromOwnLink(window, link)) return 0;
  OpenHelpLink(link.item.szUrl);
  if (const std::optional<Owner> owner = OwnerOf(window, Role::Panel)) {
    GiveActivationBack(owner->record);
    WriteLog(LogLevel::Debug, L"WM_NOTIFY suboverlay wnd is not active now");
  }
  return 0;
}

LRESULT OnLeftButtonDown(HWND window, LPARAM lParam) {
  const std::optional<std::wstring> path = TheFileStatusCache().PathOfWindow(window, Role::Badge);
  if (!path) return 0;
  WriteLog(LogLevel::Debug, L"                WM_LBUTTONDOWN");
  POINT cursor{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
  ClientToScreen(window, &cursor);
  TheFileStatusCache().Change(*path, [&](FileStatusRecord& record) {
    record.buttonDown = 1;
    record.dragged = 0;
    record.pressX = cursor.x;
    record.pressY = cursor.y;
  });
  SetCapture(window);
  return 0;
}

std::wstring PositionText(const wchar_t* when, long x, long y, const RECT& office) {
  return std::wstring(L"                WM_MOUSEMOVE ") + when + L" pos.x=" + Number(x) + L" pos.y=" + Number(y) +
         L" left=" + Number(office.left) + L" top=" + Number(office.top) + L" right=" + Number(office.right) +
         L" bottom=" + Number(office.bottom);
}

// The press is over: a later move over the badge, with or without the
// button, must not carry it along.
void EndDrag(const std::wstring& path) {
  TheFileStatusCache().Change(path, [](FileStatusRecord& record) {
    record.buttonDown = 0;
    record.dragged = 0;
  });
}

// The badge lost the mouse before its button-up reached it: an Office
// dialog took the capture, the tick destroyed the badge, or the button went
// up where the badge could not hear it.
void EndDragOf(HWND window) {
  if (const std::optional<std::wstring> path = TheFileStatusCache().PathOfWindow(window, Role::Badge)) EndDrag(*path);
}

// Drags the badge so it stays centred on the cursor; a move that would
// leave the Office window is not made. The drag starts only once the
// cursor leaves the system's drag rectangle around the press, so a click
// stays a click.
LRESULT OnMouseMove(HWND window, WPARAM wParam, LPARAM lParam) {
  WriteLog(LogLevel::Debug, L"                WM_MOUSEMOVE");
  const std::optional<Owner> owner = OwnerOf(window, Role::Badge);
  if (!owner || !owner->record.buttonDown) return 0;
  if ((wParam & MK_LBUTTON) == 0) {
    EndDrag(owner->path);
    if (GetCapture() == window) ReleaseCapture();
    return 0;
  }
  POINT cursor{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
  ClientToScreen(window, &cursor);
  if (!owner->record.dragged) {
    const Point press{owner->record.pressX, owner->record.pressY};
    if (!LeavesDragRectangle(press, {cursor.x, cursor.y}, GetSystemMetrics(SM_CXDRAG), GetSystemMetrics(SM_CYDRAG))) {
      return 0;
    }
    TheFileStatusCache().Change(owner->path, [](FileStatusRecord& record) { record.dragged = 1; });
  }
  RECT badge{};
  if (!GetWindowRect(window, &badge)) {
    LogLastError(L"couldn't get window rect while moving window");
    return 0;
  }
  RECT office{};
  if (!GetWindowRect(owner->record.hostWindow, &office)) {
    LogLastError(L"couldn't get window rect while moving window");
    return 0;
  }
  const int width = badge.right - badge.left;
  const int height = badge.bottom - badge.top;
  const Point target = DraggedBadgePosition({cursor.x, cursor.y}, width, height);
  WriteLog(LogLevel::Debug, PositionText(L"before", badge.left, badge.top, office));
  if (BadgeStaysInside(ToRect(office), target.x, target.y, width, height)) {
    if (!MoveWindow(window, target.x, target.y, width, height, TRUE)) {
      LogLastError(L"couldn't move window");
      return 0;
    }
    TheFileStatusCache().Change(owner->path, [&](FileStatusRecord& record) {
      record.posX = target.x;
      record.posY = target.y;
    });
  }
  WriteLog(LogLevel::Debug, PositionText(L"after", target.x, target.y, office));
  return 0;
}

// Opens the panel next to the badge: above it, right edges aligned, unless
// that would leave the Office window.
void PlaceAndShowPanel(const FileStatusRecord& record) {
  RECT office{};
  if (!GetWindowRect(record.hostWindow, &office)) {
    LogLastError(L"couldn't get ms office window rect while repositioning sub overlay UI");
    return;
  }
  RECT badge{};
  if (!GetWindowRect(record.badgeWindow, &badge)) {
    LogLastError(L"couldn't get parent window rect while repositioning sub overlay UI");
    return;
  }
  RECT panel{};
  if (!GetWindowRect(record.subOverlayWindow, &panel)) {
    LogLastError(L"couldn't get window rect while repositioning sub overlay UI");
    return;
  }
  const int width = panel.right - panel.left;
  const int height = panel.bottom - panel.top;
  const Point place = PlaceSubOverlay(ToRect(office), ToRect(badge), width, height);
  if (!MoveWindow(record.subOverlayWindow, place.x, place.y, width, height, TRUE)) {
    LogLastError(L"couldn't reposition sub overlay UI");
    return;
  }
  ShowWindow(record.subOverlayWindow, SW_SHOWNA);
}

LRESULT OnLeftButtonUp(HWND window) {
  if (const std::optional<Owner> owner = OwnerOf(window, Role::Badge)) {
    WriteLog(LogLevel::Debug, L"                WM_LBUTTONUP (overlay wnd)");
    const bool dragged = owner->record.dragged != 0;
    TheFileStatusCache().Change(owner->path, [](FileStatusRecord& record) {
      record.buttonDown = 0;
      record.dragged = 0;
    });
    if (dragged) {
      ReleaseCapture();
      return 0;
    }
    WriteLog(LogLevel::Debug, L"                click event");
    if (HWND panel = owner->record.subOverlayWindow) {
      if (IsWindowVisible(panel)) {
        WriteLog(LogLevel::Debug, L"                click event = ALREADY VISIBLE");
        ShowWindow(panel, SW_HIDE);
      } else {
        WriteLog(LogLevel::Debug, L"                click event = ALREADY NOT VISIBLE");
        PlaceAndShowPanel(owner->record);
      }
    }
    GiveActivationBack(owner->record);
    ReleaseCapture();
    return 0;
  }
  if (const std::optional<Owner> owner = OwnerOf(window, Role::Panel)) {
    WriteLog(LogLevel::Debug, L"                WM_LBUTTONUP (suboverlay wnd)");
    GiveActivationBack(owner->record);
    ReleaseCapture();
  }
  return 0;
}

// Returns true with `result` set for the messages handled here.
bool Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
  switch (message) {
    case WM_CREATE:
      result = 0;
      return true;
    case WM_DESTROY:
      result = OnDestroy(window);
      return true;
    case WM_NCDESTROY:
      // The record forgets the window the moment it is gone, and the
      // panel's own pictures go with it. A badge destroyed in the middle of
      // a drag ends it: its successor must not follow the cursor.
      ReleasePanelBitmaps(window);
      EndDragOf(window);
      TheFileStatusCache().ForgetWindow(window);
      return false;
    case WM_PAINT: {
      // The content is the layered picture or the children; nothing to draw.
      const PaintDc paint(window);
      result = 0;
      return true;
    }
    case WM_SETCURSOR:
      result = OnSetCursor(lParam);
      return true;
    case WM_DRAWITEM:
      WriteLog(LogLevel::Debug, L"WM_DRAWITEM");
      // Only our own buttons' drawing requests point at memory we may read.
      if (lParam == 0 || !IsSentFromThisThread()) {
        result = FALSE;
        return true;
      }
      DrawOwnerDrawnControl(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
      result = TRUE;
      return true;
    case WM_NOTIFY:
      // Only our own controls' notifications point at memory we may read.
      result = lParam != 0 && IsSentFromThisThread() ? OnNotify(window, *reinterpret_cast<const NMHDR*>(lParam)) : 0;
      return true;
    case WM_COMMAND:
      if (HIWORD(wParam) != BN_CLICKED) return false;
      if (IsCommandFromOwnControl(window, LOWORD(wParam), lParam))
        HandlePanelCommand(window, static_cast<ControlId>(LOWORD(wParam)));
      result = 0;
      return true;
    case WM_CTLCOLORSTATIC:
      result = reinterpret_cast<LRESULT>(
          StaticControlColours(reinterpret_cast<HWND>(lParam), reinterpret_cast<HDC>(wParam)));
      return true;
    case WM_CTLCOLORBTN:
      result = reinterpret_cast<LRESULT>(ButtonControlColours(reinterpret_cast<HDC>(wParam)));
      return true;
    case WM_LBUTTONDOWN:
      result = OnLeftButtonDown(window, lParam);
      return true;
    case WM_MOUSEMOVE:
      result = OnMouseMove(window, wParam, lParam);
      return true;
    case WM_CAPTURECHANGED:
      EndDragOf(window);
      result = 0;
      return true;
    case WM_LBUTTONUP:
      result = OnLeftButtonUp(window);
      return true;
    default:
      return false;
  }
}
}  // namespace

LRESULT CALLBACK OverlayWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  LRESULT result = 0;
  const bool handled =
      Guarded(L"handling an overlay window message", false, [&] { return Handle(window, message, wParam, lParam, result); });
  return handled ? result : DefWindowProcW(window, message, wParam, lParam);
}
