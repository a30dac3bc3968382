#include "overlay/windows/window_classes.h"

#include <string>
#include <vector>

#include "log/exception_barrier.h"
#include "overlay/windows/overlay_window_proc.h"
#include "overlay/windows/scroll_windows.h"
#include "overlay/windows/window_class_names.h"

namespace {
// The icon resource every overlay class shows.
constexpr int kAddinIconResource = 201;

struct Registered {
  std::wstring name;
  HBRUSH solidBrush;  // ours to delete with the class; null for a stock brush
};

std::vector<Registered>& RegisteredClasses() {
  static auto* classes = new std::vector<Registered>();
  return *classes;
}

WNDPROC ProcedureOf(const OverlayWindowClass* known) {
  if (known == nullptr) return OverlayWndProc;
  switch (known->procedure) {
    case ClassProcedure::VerticalScroll: return VerScrollWndProc;
    case ClassProcedure::HorizontalScroll: return HorScrollWndProc;
    default: return OverlayWndProc;
  }
}
}  // namespace

ATOM RegisterOverlayWindowClass(HINSTANCE instance, const wchar_t* className) {
  return Guarded(L"registering class", static_cast<ATOM>(0), [&]() -> ATOM {
    const OverlayWindowClass* known = FindOverlayWindowClass(className);
    HBRUSH solid = nullptr;
    HBRUSH background = nullptr;
    if (known != nullptr) {
      if (known->stockWhiteBackground) {
        background = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
      } else {
        // Made now and kept for as long as the class lives.
        solid = CreateSolidBrush(known->solidColour);
        background = solid;
      }
    }
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.style = CS_HREDRAW | CS_VREDRAW;
    windowClass.lpfnWndProc = ProcedureOf(known);
    windowClass.hInstance = instance;
    windowClass.hIcon = LoadIconW(instance, MAKEINTRESOURCEW(kAddinIconResource));
    windowClass.hIconSm = windowClass.hIcon;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_HAND);
    windowClass.hbrBackground = background;
    windowClass.lpszClassName = className;
    const ATOM atom = RegisterClassExW(&windowClass);
    if (atom == 0) {
      if (solid) DeleteObject(solid);
      return 0;
    }
    RegisteredClasses().push_back({className, solid});
    return atom;
  });
}

void UnregisterOverlayWindowClasses(HINSTANCE instance) {
  for (const Registered& registered : RegisteredClasses()) {
    if (UnregisterClassW(registered.name.c_str(), instance) && registered.solidBrush) {
      DeleteObject(registered.solidBrush);
    }
  }
  RegisteredClasses().clear();
}
