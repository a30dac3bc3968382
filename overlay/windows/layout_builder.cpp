#include "overlay/windows/layout_builder.h"

#include <commctrl.h>

#include <string>
#include <vector>

#include "common/gdi_guards.h"
#include "common/module_activation_context.h"
#include "common/module_instance.h"
#include "log/exception_barrier.h"
#include "log/log_last_error.h"
#include "log/write_log.h"
#include "overlay/images/avatar_loading.h"
#include "overlay/images/image_file_names.h"
#include "overlay/images/image_loading.h"
#include "overlay/images/overlay_images.h"
#include "overlay/images/panel_bitmaps.h"
#include "overlay/layouts/control_styles.h"
#include "overlay/windows/control_colours.h"
#include "overlay/windows/overlay_fonts.h"

namespace {
Rect ToRect(const RECT& r) { return {r.left, r.top, r.right, r.bottom}; }

// The common controls of version 6 (the link, the progress bar) come from
// our own manifest's activation context, whatever Office runs under.
bool NeedsModuleActivation(const wchar_t* className) {
  return lstrcmpiW(className, kSysLinkClass) == 0 || lstrcmpiW(className, kProgressBarClass) == 0;
}

// The system's texts and buttons ask their parent for colours and, when
// owner-drawn, for painting; our own classes paint themselves.
bool TakesItsLookFromTheStep(const wchar_t* className) {
  return lstrcmpiW(className, kStaticClass) == 0 || lstrcmpiW(className, kButtonClass) == 0;
}

// A window that is destroyed unless the build gets to the end: a panel
// that failed half-way is of no use to anyone and must not linger hidden.
class PartialWindow {
 public:
  ~PartialWindow() {
    if (window_) DestroyWindow(window_);
  }
  void reset(HWND window) { window_ = window; }
  HWND get() const { return window_; }
  HWND release() {
    HWND window = window_;
    window_ = nullptr;
    return window;
  }

 private:
  HWND window_ = nullptr;
};

// The bitmap an image step shows and whether the panel owns it.
struct StepImage {
  HBITMAP bitmap = nullptr;
  bool owned = false;
};

StepImage ImageOf(const LayoutStep& step, HBITMAP driveBitmap) {
  switch (step.image) {
    case ImageRole::Avatar: {
      if (step.tryUserAvatar) {
        // Loaded afresh for every panel: the sync app may have a newer one.
        HBITMAP own = LoadAvatarBitmap(step.avatarFile, step.backdrop);
        if (own != nullptr) return {own, true};
      }
      return {DefaultAvatar(step.backdrop), false};
    }
    case ImageRole::ErrorIcon:
      return {SharedImage(kErrorIconImage, step.backdrop), false};
    case ImageRole::DriveBitmap:
      return {driveBitmap, false};
    default:
      return {};
  }
}

void SetImage(HWND window, HWND control, const LayoutStep& step, HBITMAP driveBitmap) {
  if (step.image == ImageRole::None) return;
  if (step.image == ImageRole::WarningIcon) {
    // A shared system icon: nothing to free.
    SendMessageW(control, STM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(LoadIconW(nullptr, IDI_WARNING)));
    return;
  }
  const StepImage image = ImageOf(step, driveBitmap);
  if (image.bitmap == nullptr) return;  // the control stays empty; the load was logged
  SendMessageW(control, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(image.bitmap));
  RememberPanelBitmap(window, control, image.bitmap, image.owned);
}

// Clips a status dot to its circle; false (logged) on failure.
bool ClipToCircle(HWND control, const LayoutStep& step) {
  UniqueHrgn region(
      CreateEllipticRgn(kStatusDotCircle.left, kStatusDotCircle.top, kStatusDotCircle.right, kStatusDotCircle.bottom));
  if (!region) {
    LogLastErrorText(step.regionFailureText);
    return false;
  }
  if (!SetWindowRgn(control, region.get(), TRUE)) {
    LogLastErrorText(step.setRegionFailureText);
    return false;
  }
  region.release();  // the window owns it now
  return true;
}

void StartMarquee(HWND bar) {
  if (SendMessageW(bar, PBM_SETMARQUEE, TRUE, kMarqueeStepMilliseconds) != 0) {
    WriteLog(LogLevel::Debug, L"indeterminate progress bar set");
  } else {
    WriteLog(LogLevel::Error, kMarqueeFailureText);
  }
}

// One child; false when the build must stop (already logged).
bool CreateChild(HWND window, const LayoutStep& step, std::vector<HWND>& children, HBITMAP driveBitmap) {
  const HWND parent = step.parent == kPanelParent ? window : children.at(static_cast<size_t>(step.parent));
  HWND control = nullptr;
  {
    ScopedModuleActivation activation(NeedsModuleActivation(step.className));
    control = CreateWindowExW(step.exStyle, step.className, step.text.c_str(), step.style, step.x, step.y, step.width,
                              step.height, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(step.id)),
                              ModuleInstance(), nullptr);
  }
  children.push_back(control);
  if (control == nullptr) {
    if (step.failureText == nullptr) return true;  // a picture the panel can do without
    LogLastErrorText(step.failureText);
    return false;
  }
  if (TakesItsLookFromTheStep(step.className))
    RememberControlLook(control, step.colour, step.buttonLook, step.buttonShape);
  if (HFONT font = OverlayFont(step.font)) SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  SetImage(window, control, step, driveBitmap);
  if (step.circleRegion && !ClipToCircle(control, step)) return false;
  if (step.startMarquee) StartMarquee(control);
  return true;
}

bool ResizeChild(const LayoutStep& step, std::vector<HWND>& children) {
  const HWND target = children.at(static_cast<size_t>(step.target));
  children.push_back(nullptr);
  if (!SetWindowPos(target, nullptr, step.x, step.y, step.width, step.height, SWP_NOACTIVATE)) {
    LogLastErrorText(step.failureText);
    return false;
  }
  EnableScrollBar(target, SB_VERT, ESB_ENABLE_BOTH);
  UpdateWindow(target);
  return true;
}

HWND Build(const PanelLayout& layout, HWND officeWindow, HWND badgeWindow, Point at, HBITMAP driveBitmap) {
  if (!layout.IsBuildable()) return nullptr;
  const bool againstBadge = layout.placement == PanelPlacement::AgainstBadge;
  RECT office{};
  RECT badge{};
  Point place = at;
  if (againstBadge) {
    if (!GetWindowRect(officeWindow, &office)) {
      LogLastErrorText(layout.officeRectFailureText);
      return nullptr;
    }
    if (!GetWindowRect(badgeWindow, &badge)) {
      LogLastErrorText(layout.badgeRectFailureText);
      return nullptr;
    }
    place = PlaceSubOverlay(ToRect(office), ToRect(badge), layout.width, layout.createHeight);
  }

  PartialWindow window;
  window.reset(CreateWindowExW(layout.exStyle, layout.className, nullptr, layout.style, place.x, place.y, layout.width,
                               layout.createHeight, againstBadge ? badgeWindow : officeWindow, nullptr,
                               ModuleInstance(), nullptr));
  if (window.get() == nullptr) {
    LogLastErrorText(layout.windowFailureText);
    return nullptr;
  }

  std::vector<HWND> children;
  children.reserve(layout.steps.size());
  for (const LayoutStep& step : layout.steps) {
    const bool ok = step.kind == StepKind::ResizeChild ? ResizeChild(step, children)
                                                       : CreateChild(window.get(), step, children, driveBitmap);
    if (!ok) return nullptr;
  }

  if (againstBadge && layout.height != layout.createHeight) {
    // Its height is known only now: placed again against the badge with it.
    const Point final = PlaceSubOverlay(ToRect(office), ToRect(badge), layout.width, layout.height);
    if (!SetWindowPos(window.get(), nullptr, final.x, final.y, layout.width, layout.height, SWP_NOACTIVATE)) {
      LogLastErrorText(layout.finalResizeFailureText);
      return nullptr;
    }
  }
  // Panels are created hidden (the timer and the window procedure show
  // them); the status overlays are shown at once, without taking the focus.
  ShowWindow(window.get(), againstBadge ? SW_HIDE : SW_SHOWNA);
  UpdateWindow(window.get());
  return window.release();
}
}  // namespace

HWND BuildLayout(const PanelLayout& layout, HWND officeWindow, HWND badgeWindow, Point at, HBITMAP driveBitmap) {
  const wchar_t* activity = layout.exceptionActivity ? layout.exceptionActivity : L"creating overlay UI";
  return Guarded(activity, static_cast<HWND>(nullptr),
                 [&] { return Build(layout, officeWindow, badgeWindow, at, driveBitmap); });
}
