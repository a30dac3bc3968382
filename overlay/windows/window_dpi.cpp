#include "overlay/windows/window_dpi.h"

#include <iterator>
#include <map>

#include "common/gdi_guards.h"
#include "overlay/layouts/dpi_scaling.h"

namespace {
using GetDpiForWindowFunction = UINT(WINAPI*)(HWND);
// MONITOR_DPI_TYPE 0 is MDT_EFFECTIVE_DPI.
using GetDpiForMonitorFunction = HRESULT(WINAPI*)(HMONITOR, int, UINT*, UINT*);

template <typename Function>
Function Lookup(const wchar_t* module, const char* name, bool load) {
  HMODULE handle = GetModuleHandleW(module);
  // shcore is not always loaded in the host; never unloaded once it is,
  // since the function pointer is kept.
  if (handle == nullptr && load) handle = LoadLibraryExW(module, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (handle == nullptr) return nullptr;
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(handle, name)));
}

int MonitorDpi(HWND window) {
  static const GetDpiForMonitorFunction getDpiForMonitor =
      Lookup<GetDpiForMonitorFunction>(L"shcore.dll", "GetDpiForMonitor", true);
  if (getDpiForMonitor == nullptr) return 0;
  HMONITOR monitor = MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST);
  UINT x = 0;
  UINT y = 0;
  if (monitor == nullptr || FAILED(getDpiForMonitor(monitor, 0, &x, &y))) return 0;
  return static_cast<int>(x);
}

int ScreenDpi() {
  const WindowDc screen(nullptr);
  return screen.get() != nullptr ? GetDeviceCaps(screen.get(), LOGPIXELSX) : 0;
}

// UI thread only; windows that are gone are dropped as new ones come.
std::map<HWND, int>& BuiltDpis() {
  static auto* dpis = new std::map<HWND, int>();
  return *dpis;
}
}  // namespace

int DpiOfWindow(HWND window) {
  static const GetDpiForWindowFunction getDpiForWindow =
      Lookup<GetDpiForWindowFunction>(L"user32.dll", "GetDpiForWindow", false);
  int dpi = 0;
  if (getDpiForWindow != nullptr && window != nullptr) dpi = static_cast<int>(getDpiForWindow(window));
  if (dpi == 0 && window != nullptr) dpi = MonitorDpi(window);
  if (dpi == 0) dpi = ScreenDpi();
  return UsableDpi(dpi);
}

void RememberBuiltDpi(HWND window, int dpi) {
  std::map<HWND, int>& dpis = BuiltDpis();
  for (auto it = dpis.begin(); it != dpis.end();) it = IsWindow(it->first) ? std::next(it) : dpis.erase(it);
  dpis[window] = dpi;
}

int BuiltDpiOf(HWND window) {
  const std::map<HWND, int>& dpis = BuiltDpis();
  const auto found = dpis.find(window);
  return found != dpis.end() && IsWindow(window) ? found->second : 0;
}

namespace {
// DPI_AWARENESS_CONTEXT is a handle; HANDLE stands for it so the header
// needs no Windows 10 SDK.
using GetWindowContextFunction = HANDLE(WINAPI*)(HWND);
using SetThreadContextFunction = HANDLE(WINAPI*)(HANDLE);

GetWindowContextFunction GetWindowContext() {
  static const GetWindowContextFunction function =
      Lookup<GetWindowContextFunction>(L"user32.dll", "GetWindowDpiAwarenessContext", false);
  return function;
}
SetThreadContextFunction SetThreadContext() {
  static const SetThreadContextFunction function =
      Lookup<SetThreadContextFunction>(L"user32.dll", "SetThreadDpiAwarenessContext", false);
  return function;
}
}  // namespace

ThreadDpiAwarenessOf::ThreadDpiAwarenessOf(HWND window) {
  if (window == nullptr || GetWindowContext() == nullptr || SetThreadContext() == nullptr) return;
  HANDLE wanted = GetWindowContext()(window);
  if (wanted != nullptr) previous_ = SetThreadContext()(wanted);
}

ThreadDpiAwarenessOf::~ThreadDpiAwarenessOf() {
  if (previous_ != nullptr) SetThreadContext()(previous_);
}
