#pragma once
// The DPI the overlay draws at: that of the Office window it sits on.
// Office is per-monitor DPI aware, so each of its windows has the DPI of
// the monitor it is on, and the overlay follows it.
#include <windows.h>

// GetDpiForWindow when user32 has it (Windows 10 1607 and later; looked up
// at run time so the add-in still loads without it), else the DPI of the
// window's monitor (GetDpiForMonitor, shcore), else the screen's
// LOGPIXELSX. Always a usable DPI (UsableDpi): 96 when nothing answers.
int DpiOfWindow(HWND window);

// The DPI an overlay window was built at, noted by the builder, so the
// timer can tell when the Office window has moved to a monitor of another
// DPI and the overlay must be built again at the new scale. 0 for a window
// built before or by anything else. UI thread only.
void RememberBuiltDpi(HWND window, int dpi);
int BuiltDpiOf(HWND window);

// For as long as it lives, the calling thread creates and places windows
// with the DPI awareness of `window` (the Office window), and puts the
// thread's own awareness back after. Office switches its thread to system
// DPI awareness around its calls into add-ins; windows made then would be
// system aware, stretched by Windows on a monitor of another DPI and
// measured in other pixels than the Office window. Does nothing for a null
// window or where Windows has no awareness contexts (before Windows 10
// 1607).
class ThreadDpiAwarenessOf {
 public:
  explicit ThreadDpiAwarenessOf(HWND window);
  ~ThreadDpiAwarenessOf();
  ThreadDpiAwarenessOf(const ThreadDpiAwarenessOf&) = delete;
  ThreadDpiAwarenessOf& operator=(const ThreadDpiAwarenessOf&) = delete;

 private:
  HANDLE previous_ = nullptr;  // the thread's DPI_AWARENESS_CONTEXT before
};
