#include "overlay/windows/scroll_windows.h"

#include <exception>
#include <string>
#include <utility>

#include "common/gdi_guards.h"
#include "common/text.h"
#include "log/exception_barrier.h"
#include "log/write_log.h"
#include "overlay/windows/control_colours.h"
#include "overlay/layouts/dpi_scaling.h"
#include "overlay/layouts/scroll_metrics.h"
#include "overlay/windows/window_dpi.h"

namespace {
// Shared by every scroll area and written when one is created: they all
// start with the same font, so they agree.
struct Metrics {
  int charWidth = 0;
  int capitalWidth = 0;
  int lineHeight = 0;
  int lastTextWidth = 0;
};
Metrics& SharedMetrics() {
  static Metrics metrics;  // UI thread only
  return metrics;
}

void ReadMetrics(HWND window) {
  const WindowDc dc(window);
  TEXTMETRICW text{};
  if (dc.get() == nullptr || !GetTextMetricsW(dc.get(), &text)) return;
  Metrics& metrics = SharedMetrics();
  metrics.charWidth = text.tmAveCharWidth;
  metrics.capitalWidth = CapitalWidth(text.tmAveCharWidth, text.tmPitchAndFamily);
  metrics.lineHeight = LineHeight(text.tmHeight, text.tmExternalLeading);
}

// The text is drawn on the area's own colour, the solid brush its class
// paints the background with (grey for the old name, light blue for the
// new); a class without a solid brush leaves the device context's white.
void UseClassBackground(HWND window, HDC dc) {
  const auto background = reinterpret_cast<HBRUSH>(GetClassLongPtrW(window, GCLP_HBRBACKGROUND));
  LOGBRUSH brush{};
  if (background != nullptr && GetObjectW(background, sizeof brush, &brush) == sizeof brush &&
      brush.lbStyle == BS_SOLID) {
    SetBkColor(dc, brush.lbColor);
  }
}

// The areas draw with their device context's own font, but keep the font
// they are given so it can be asked for again.
constexpr wchar_t kFontProperty[] = L"QelvoFilewellSync-ScrollFont";
bool KeepsFont(HWND window, UINT message, WPARAM wParam, LRESULT& result) {
  if (message == WM_SETFONT) {
    SetPropW(window, kFontProperty, reinterpret_cast<HANDLE>(wParam));
    result = 0;
    return true;
  }
  if (message == WM_GETFONT) {
    result = reinterpret_cast<LRESULT>(GetPropW(window, kFontProperty));
    return true;
  }
  if (message == WM_NCDESTROY) RemovePropW(window, kFontProperty);
  return false;
}

SCROLLINFO ScrollInfo(UINT mask) {
  SCROLLINFO info{};
  info.cbSize = sizeof(info);
  info.fMask = mask;
  return info;
}

ScrollBarState ReadBar(HWND window, int bar) {
  SCROLLINFO info = ScrollInfo(SIF_ALL);
  GetScrollInfo(window, bar, &info);
  return {info.nMin, info.nMax, static_cast<int>(info.nPage), info.nPos, info.nTrackPos};
}

// Writes the position asked for; the system clamps it to the range. The
// position it kept.
int MoveBar(HWND window, int bar, int position) {
  SCROLLINFO info = ScrollInfo(SIF_POS);
  info.nPos = position;
  SetScrollInfo(window, bar, &info, TRUE);
  info.fMask = SIF_POS;
  GetScrollInfo(window, bar, &info);
  return info.nPos;
}

// Moves the bar as a request asks (the system keeps it in its range) and
// the content by as much, in steps of `unit` pixels.
template <class Request>
void ScrollBy(HWND window, int bar, const wchar_t* messageText, Request request, int unit,
              const wchar_t* (*requestLogText)(Request), int (*requested)(Request, const ScrollBarState&)) {
  WriteLog(LogLevel::Debug, messageText);
  const ScrollBarState state = ReadBar(window, bar);
  if (const wchar_t* text = requestLogText(request)) WriteLog(LogLevel::Debug, text);
  const int kept = MoveBar(window, bar, requested(request, state));
  if (kept == state.position) return;
  const int pixels = ScrollPixels(state.position, kept, unit);
  ScrollWindow(window, bar == SB_HORZ ? pixels : 0, bar == SB_VERT ? pixels : 0, nullptr, nullptr);
}

LRESULT HorizontalMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  Metrics& metrics = SharedMetrics();
  switch (message) {
    case WM_CREATE:
      ReadMetrics(window);
      return 0;
    case WM_SIZE: {
      WriteLog(LogLevel::Debug, L"WM_SIZE");
      SCROLLINFO info = ScrollInfo(SIF_PAGE);
      info.nPage = static_cast<UINT>(HorizontalPage(LOWORD(lParam), metrics.charWidth));
      SetScrollInfo(window, SB_HORZ, &info, TRUE);
      return 0;
    }
    case WM_HSCROLL:
      ScrollBy(window, SB_HORZ, L"WM_HSCROLL", static_cast<HorizontalScrollRequest>(LOWORD(wParam)),
               metrics.charWidth, HorizontalRequestLogText, RequestedHorizontalPosition);
      return 0;
    case WM_PAINT: {
      WriteLog(LogLevel::Debug, L"WM_PAINT");
      const PaintDc paint(window);
      UseClassBackground(window, paint.get());
      SCROLLINFO info = ScrollInfo(SIF_POS);
      GetScrollInfo(window, SB_HORZ, &info);
      const int x = HorizontalTextX(info.nPos, metrics.charWidth);
      const int length = GetWindowTextLengthW(window);
      std::wstring text(static_cast<size_t>(length) + 1, L'\0');
      GetWindowTextW(window, text.data(), length + 1);
      metrics.lastTextWidth = TextWidth(length, metrics.charWidth, metrics.capitalWidth);
      const ScrollRange range = HorizontalRange(metrics.lastTextWidth, metrics.charWidth);
      SCROLLINFO rangeInfo = ScrollInfo(SIF_RANGE);
      rangeInfo.nMin = range.minimum;
      rangeInfo.nMax = range.maximum;
      SetScrollInfo(window, SB_HORZ, &rangeInfo, TRUE);
      TextOutW(paint.get(), x, ScaleForDpi(kHorizontalTextTop, DpiOfWindow(window)), text.c_str(), length);
      return 0;
    }
    default:
      return DefWindowProcW(window, message, wParam, lParam);
  }
}

LRESULT VerticalMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  Metrics& metrics = SharedMetrics();
  switch (message) {
    case WM_CREATE:
      ReadMetrics(window);
      return 0;
    case WM_SIZE: {
      WriteLog(LogLevel::Debug, L"WM_SIZE");
      RECT place{};
      GetWindowRect(window, &place);
      POINT bottomRight{place.right, place.bottom};
      ScreenToClient(window, &bottomRight);
      const ScrollRange range = VerticalRange(bottomRight.y, metrics.lineHeight);
      SCROLLINFO info = ScrollInfo(SIF_RANGE | SIF_PAGE);
      info.nMin = range.minimum;
      info.nMax = range.maximum;
      info.nPage = static_cast<UINT>(VerticalPage(bottomRight.y, metrics.lineHeight));
      SetScrollInfo(window, SB_VERT, &info, TRUE);
      return 0;
    }
    case WM_VSCROLL:
      ScrollBy(window, SB_VERT, L"WM_VSCROLL", static_cast<VerticalScrollRequest>(LOWORD(wParam)),
               metrics.lineHeight, VerticalRequestLogText, RequestedVerticalPosition);
      return 0;
    case WM_CTLCOLORSTATIC:
      // The rows' texts are drawn on the area's white.
      SetBkColor(reinterpret_cast<HDC>(wParam), RGB(255, 255, 255));
      return reinterpret_cast<LRESULT>(KeptBrush(RGB(255, 255, 255)));
    default:
      return DefWindowProcW(window, message, wParam, lParam);
  }
}

// The scroll procedures word their failures "in", not "while".
template <class Body>
LRESULT Barrier(const wchar_t* procedure, Body&& body) {
  return GuardedWithTexts(
      LRESULT{0}, std::forward<Body>(body),
      [&](const std::wstring& what) {
        return std::wstring(L"std exception occurred in ") + procedure + L" scroll window procedure - " + what;
      },
      [&] { return std::wstring(L"unknown exception occurred in ") + procedure + L" scroll window procedure"; });
}
}  // namespace

LRESULT CALLBACK HorScrollWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return Barrier(L"horizontal", [&]() -> LRESULT {
    LRESULT result = 0;
    if (KeepsFont(window, message, wParam, result)) return result;
    return HorizontalMessage(window, message, wParam, lParam);
  });
}

LRESULT CALLBACK VerScrollWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return Barrier(L"vertical", [&]() -> LRESULT {
    LRESULT result = 0;
    if (KeepsFont(window, message, wParam, result)) return result;
    return VerticalMessage(window, message, wParam, lParam);
  });
}
