#include "overlay/images/layering.h"

#include "common/gdi_guards.h"
#include "log/exception_barrier.h"
#include "log/log_last_error.h"

int ApplyLayering(HWND window, HBITMAP bitmap, COLORREF colourKey) {
  return Guarded(L"applying layering to window", 0, [&]() -> int {
    BITMAP record{};
    if (GetObjectW(bitmap, sizeof(record), &record) == 0) {
      LogLastErrorText(L"couldn't get bitmap structure while applying layering to window - ");
      return 0;
    }
    const WindowDc screen(nullptr);
    if (screen.get() == nullptr) {
      LogLastErrorText(L"couldn't get screen DC while applying layering to window - ");
      return 0;
    }
    UniqueMemoryDc memory(CreateCompatibleDC(screen.get()));
    if (!memory) {
      LogLastErrorText(L"couldn't get mem DC while applying layering to window - ");
      return 0;
    }
    const SelectedObject selected(memory.get(), bitmap);
    if (!selected.ok()) {
      LogLastErrorText(L"couldn't select bitmap into mem DC while applying layering to window - ");
      return 0;
    }
    RECT place{};
    if (!GetWindowRect(window, &place)) {
      LogLastErrorText(L"couldn't get window rect while applying layering to window - ");
      return 0;
    }
    POINT destination{place.left, place.top};
    SIZE size{record.bmWidth, record.bmHeight};
    POINT source{0, 0};
    // With ULW_COLORKEY only the key decides what is transparent; the blend
    // is passed as it would be for per-pixel alpha, and goes unused.
    BLENDFUNCTION blend{AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    if (!UpdateLayeredWindow(window, screen.get(), &destination, &size, memory.get(), &source, colourKey, &blend,
                             ULW_COLORKEY)) {
      LogLastErrorText(L"couldn't apply layering to window - ");
      return 0;
    }
    return 1;
  });
}
