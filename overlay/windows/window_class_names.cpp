#include "overlay/windows/window_class_names.h"

#include <cwchar>

const OverlayWindowClass* FindOverlayWindowClass(const wchar_t* name) {
  if (name == nullptr) return nullptr;
  for (const OverlayWindowClass& windowClass : kOverlayWindowClasses) {
    if (std::wcscmp(windowClass.name, name) == 0) return &windowClass;
  }
  return nullptr;
}
