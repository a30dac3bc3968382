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
#include "overlay/windows/overlay_accessible.h"
#include "overlay/windows/overlay_fonts.h"
#include "overlay/layouts/overlay_geometry.h"
#include "overlay/images/panel_bitmaps.h"
#include "overlay/windows/overlay_window_state.h"
#include "overlay/windows/panel_commands.h"

namespace {
Rect ToRect(const RECT& r) { return {r.left, r.top, r.right, r.bottom}; }

std::wstring Number(long value) { return std::to_wstring(value); }

// The state of the file whose badge (or panel) `window` is; null for any
// other window.
OverlayWindowState* BadgeStateOf(HWND window) {
  OverlayWindowState* state = WindowStateOf(window);
  return state != nullptr && state->badgeWindow == window ? state : nullptr;
}
OverlayWindowState* PanelStateOf(HWND window) {
  OverlayWindowState* state = WindowStateOf(window);
  return state != nullptr && state->subOverlayWindow == window ? state : nullptr;
}

void GiveActivationBack(const OverlayWindowState& state) {
  if (state.hostWindow) SetActiveWindow(state.hostWindow);
}

LRESULT OnDestroy(HWND window) {
  WriteLog(LogLevel::Debug, L"                    WM_DESTROY");
  TakeBitmapsOutOfControls(window);
  TakeOverlayFontsOutOfLinks(window);
  // Only a panel that still holds the activation gives it back: taking it
  // for another document's window would bring that document to the front
  // under the user's typing, and would pull it from Office's own dialogs.
  if (GetActiveWindow() != window) return 0;
  if (const OverlayWindowState* state = PanelStateOf(window)) {
    GiveActivationBack(*state);
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
  if (const OverlayWindowState* state = PanelStateOf(window)) {
    GiveActivationBack(*state);
    WriteLog(LogLevel::Debug, L"WM_NOTIFY suboverlay wnd is not active now");
  }
  return 0;
}

LRESULT OnLeftButtonDown(HWND window, LPARAM lParam) {
  OverlayWindowState* state = BadgeStateOf(window);
  if (state == nullptr) return 0;
  WriteLog(LogLevel::Debug, L"                WM_LBUTTONDOWN");
  POINT cursor{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
  ClientToScreen(window, &cursor);
  state->buttonDown = 1;
  state->dragged = 0;
  state->pressX = cursor.x;
  state->pressY = cursor.y;
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
void EndDrag(OverlayWindowState& state) {
  state.buttonDown = 0;
  state.dragged = 0;
}

// The badge lost the mouse before its button-up reached it: an Office
// dialog took the capture, the tick destroyed the badge, or the button went
// up where the badge could not hear it.
void EndDragOf(HWND window) {
  if (OverlayWindowState* state = BadgeStateOf(window)) EndDrag(*state);
}

// Drags the badge so it stays centred on the cursor; a move that would
// leave the Office window is not made. The drag starts only once the
// cursor leaves the system's drag rectangle around the press, so a click
// stays a click.
LRESULT OnMouseMove(HWND window, WPARAM wParam, LPARAM lParam) {
  WriteLog(LogLevel::Debug, L"                WM_MOUSEMOVE");
  OverlayWindowState* state = BadgeStateOf(window);
  if (state == nullptr || !state->buttonDown) return 0;
  if ((wParam & MK_LBUTTON) == 0) {
    EndDrag(*state);
    if (GetCapture() == window) ReleaseCapture();
    return 0;
  }
  POINT cursor{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
  ClientToScreen(window, &cursor);
  if (!state->dragged) {
    const Point press{state->pressX, state->pressY};
    if (!LeavesDragRectangle(press, {cursor.x, cursor.y}, GetSystemMetrics(SM_CXDRAG), GetSystemMetrics(SM_CYDRAG))) {
      return 0;
    }
    state->dragged = 1;
  }
  RECT badge{};
  if (!GetWindowRect(window, &badge)) {
    LogLastError(L"couldn't get window rect while moving window");
    return 0;
  }
  RECT office{};
  if (!GetWindowRect(state->hostWindow, &office)) {
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
    state->posX = target.x;
    state->posY = target.y;
  }
  WriteLog(LogLevel::Debug, PositionText(L"after", target.x, target.y, office));
  return 0;
}

// Opens the panel next to the badge: above it, right edges aligned, unless
// that would leave the Office window.
void PlaceAndShowPanel(const OverlayWindowState& state) {
  RECT office{};
  if (!GetWindowRect(state.hostWindow, &office)) {
    LogLastError(L"couldn't get ms office window rect while repositioning sub overlay UI");
    return;
  }
  RECT badge{};
  if (!GetWindowRect(state.badgeWindow, &badge)) {
    LogLastError(L"couldn't get parent window rect while repositioning sub overlay UI");
    return;
  }
  RECT panel{};
  if (!GetWindowRect(state.subOverlayWindow, &panel)) {
    LogLastError(L"couldn't get window rect while repositioning sub overlay UI");
    return;
  }
  const int width = panel.right - panel.left;
  const int height = panel.bottom - panel.top;
  const Point place = PlaceSubOverlay(ToRect(office), ToRect(badge), width, height);
  if (!MoveWindow(state.subOverlayWindow, place.x, place.y, width, height, TRUE)) {
    LogLastError(L"couldn't reposition sub overlay UI");
    return;
  }
  ShowWindow(state.subOverlayWindow, SW_SHOWNA);
}

LRESULT OnLeftButtonUp(HWND window) {
  if (OverlayWindowState* state = BadgeStateOf(window)) {
    WriteLog(LogLevel::Debug, L"                WM_LBUTTONUP (overlay wnd)");
    const bool dragged = state->dragged != 0;
    EndDrag(*state);
    if (dragged) {
      ReleaseCapture();
      return 0;
    }
    WriteLog(LogLevel::Debug, L"                click event");
    if (HWND panel = state->subOverlayWindow) {
      if (IsWindowVisible(panel)) {
        WriteLog(LogLevel::Debug, L"                click event = ALREADY VISIBLE");
        ShowWindow(panel, SW_HIDE);
      } else {
        WriteLog(LogLevel::Debug, L"                click event = ALREADY NOT VISIBLE");
        PlaceAndShowPanel(*state);
      }
    }
    GiveActivationBack(*state);
    ReleaseCapture();
    return 0;
  }
  if (const OverlayWindowState* state = PanelStateOf(window)) {
    WriteLog(LogLevel::Debug, L"                WM_LBUTTONUP (suboverlay wnd)");
    GiveActivationBack(*state);
    ReleaseCapture();
  }
  return 0;
}

// Returns true with `result` set for the messages handled here.
bool Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
  switch (message) {
    case WM_NCCREATE:
      BindWindowState(window, lParam);
      return false;
    case WM_CREATE:
      result = 0;
      return true;
    case WM_DESTROY:
      result = OnDestroy(window);
      return true;
    case WM_NCDESTROY:
      // The state forgets the window the moment it is gone, and the panel's
      // own pictures go with it. A badge destroyed in the middle of a drag
      // ends it: its successor must not follow the cursor.
      ReleasePanelBitmaps(window);
      UnbindWindowState(window);
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
    case WM_GETOBJECT:
      return AnswerOverlayGetObject(window, wParam, lParam, result);
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
