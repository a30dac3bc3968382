#include "overlay/window_classes.h"

#include <string>
#include <vector>

namespace {
std::vector<std::wstring>& RegisteredClassNames() {
  static auto* names = new std::vector<std::wstring>();
  return *names;
}
}  // namespace

ATOM RegisterOverlayWindowClass(const wchar_t* className, HINSTANCE instance) {
  WNDCLASSEXW windowClass{};
  windowClass.cbSize = sizeof(windowClass);
  windowClass.lpfnWndProc = DefWindowProcW;  // the overlay procedure replaces this as the overlays land
  windowClass.hInstance = instance;
  windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  windowClass.lpszClassName = className;
  const ATOM atom = RegisterClassExW(&windowClass);
  if (atom != 0) RegisteredClassNames().push_back(className);
  return atom;
}

void UnregisterOverlayWindowClasses(HINSTANCE instance) {
  for (const std::wstring& name : RegisteredClassNames()) UnregisterClassW(name.c_str(), instance);
  RegisteredClassNames().clear();
}
