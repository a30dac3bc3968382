#include "overlay/windows/layout_builder.h"

#include <commctrl.h>

#include <optional>
#include <string>
#include <vector>

#include "common/gdi_guards.h"
#include "common/module_activation_context.h"
#include "common/module_instance.h"
#include "common/unique_window.h"
#include "log/exception_barrier.h"
#include "log/log_last_error.h"
#include "log/write_log.h"
#include "overlay/images/avatar_loading.h"
#include "overlay/layouts/accessible_names.h"
#include "overlay/layouts/control_styles.h"
#include "overlay/layouts/dpi_scaling.h"
#include "overlay/images/image_file_names.h"
#include "overlay/images/image_loading.h"
#include "overlay/windows/overlay_accessible.h"
#include "overlay/windows/overlay_fonts.h"
#include "overlay/windows/text_extents.h"
#include "overlay/images/overlay_images.h"
#include "overlay/images/panel_bitmaps.h"
#include "overlay/windows/overlay_window_state.h"
#include "overlay/windows/window_dpi.h"
#include "overlay/windows/control_colours.h"

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

// The bitmap an image step shows and whether the panel owns it.
struct StepImage {
  HBITMAP bitmap = nullptr;
  bool owned = false;
};

StepImage ImageOf(const LayoutStep& step, HBITMAP driveBitmap, int dpi) {
  switch (step.image) {
    case ImageRole::Avatar: {
      if (step.tryUserAvatar) {
        // Loaded afresh for every panel: the sync app may have a newer one.
        HBITMAP own = LoadAvatarBitmap(step.avatarFile, step.backdrop, dpi);
        if (own != nullptr) return {own, true};
      }
      return {DefaultAvatar(step.backdrop, dpi), false};
    }
    case ImageRole::ErrorIcon:
      return {SharedImage(kErrorIconImage, step.backdrop, dpi), false};
    case ImageRole::DriveBitmap:
      return {driveBitmap, false};
    default:
      return {};
  }
}

void SetImage(HWND window, HWND control, const LayoutStep& step, HBITMAP driveBitmap, int dpi) {
  if (step.image == ImageRole::None) return;
  if (step.image == ImageRole::WarningIcon) {
    // A shared system icon: nothing to free.
    SendMessageW(control, STM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(LoadIconW(nullptr, IDI_WARNING)));
    return;
  }
  const StepImage image = ImageOf(step, driveBitmap, dpi);
  if (image.bitmap == nullptr) return;  // the control stays empty; the load was logged
  SendMessageW(control, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(image.bitmap));
  RememberPanelBitmap(window, control, image.bitmap, image.owned);
}

// Clips a status dot to its circle; false (logged) on failure.
bool ClipToCircle(HWND control, const LayoutStep& step, int dpi) {
  const Rect circle = ScaleRectForDpi(kStatusDotCircle, dpi);
  UniqueHrgn region(CreateEllipticRgn(circle.left, circle.top, circle.right, circle.bottom));
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

// The children whose standard accessible object would say the wrong thing:
// owner-drawn ones (no role from their style, an "&" read as a mnemonic)
// and links (their markup read out).
std::optional<AccessibleControl> AccessibleControlOf(const LayoutStep& step) {
  if (lstrcmpiW(step.className, kSysLinkClass) == 0) return AccessibleControl::Link;
  if (lstrcmpiW(step.className, kButtonClass) == 0 && (step.style & BS_TYPEMASK) == BS_OWNERDRAW) {
    return AccessibleControl::OwnerDrawnButton;
  }
  if (lstrcmpiW(step.className, kStaticClass) == 0 && (step.style & SS_TYPEMASK) == SS_OWNERDRAW) {
    return AccessibleControl::OwnerDrawnTitle;
  }
  return std::nullopt;
}

void StartMarquee(HWND bar) {
  if (SendMessageW(bar, PBM_SETMARQUEE, TRUE, kMarqueeStepMilliseconds) != 0) {
    WriteLog(LogLevel::Debug, L"indeterminate progress bar set");
  } else {
    WriteLog(LogLevel::Error, kMarqueeFailureText);
  }
}

HFONT FontOf(const LayoutStep& step, int dpi) {
  if (step.font != FontRole::None) return OverlayFont(step.font, dpi);
  const bool text = lstrcmpiW(step.className, kStaticClass) == 0 && !step.text.empty();
  return text ? UnsetTextFont(dpi) : nullptr;
}

// One child; false when the build must stop (already logged).
bool CreateChild(HWND window, const LayoutStep& step, std::vector<HWND>& children, HBITMAP driveBitmap, int dpi) {
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
  if (HFONT font = FontOf(step, dpi)) {
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  }
  if (const std::optional<AccessibleControl> accessible = AccessibleControlOf(step)) {
    GiveAccessibleAnswer(control, *accessible);
  }
  SetImage(window, control, step, driveBitmap, dpi);
  if (step.circleRegion && !ClipToCircle(control, step, dpi)) return false;
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

// The layout with room for every text in the font its control will get:
// as designed where the texts fit, grown where one would be cut off.
PanelLayout FittedToTexts(const PanelLayout& scaled, int dpi) {
  return GrowLayoutToFitTexts(scaled,
                              MeasureLayoutTexts(scaled, [dpi](const LayoutStep& step) { return FontOf(step, dpi); }));
}

HWND Build(const PanelLayout& designed, HWND officeWindow, HWND badgeWindow, Point at, HBITMAP driveBitmap,
           OverlayWindowState* state) {
  if (!designed.IsBuildable()) return nullptr;
  // The layouts are written for 96 DPI; every rectangle, font and picture
  // is scaled here, in one step, for the Office window's DPI, and then
  // measured in the fonts the controls will get.
  const int dpi = DpiOfWindow(officeWindow);
  const PanelLayout layout = FittedToTexts(ScaleLayoutForDpi(designed, dpi), dpi);
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

  // A panel belongs to the file of the badge it opens from.
  if (state == nullptr && againstBadge) state = WindowStateOf(badgeWindow);
  // A panel's window text is its title: what screen readers call it. No
  // caption bar draws it.
  const std::wstring name = againstBadge ? PanelAccessibleName(layout) : std::wstring();
  // Destroyed unless the build gets to the end: a panel that failed
  // half-way is of no use to anyone and must not linger hidden.
  UniqueWindow window(CreateWindowExW(layout.exStyle, layout.className, name.empty() ? nullptr : name.c_str(),
                                      layout.style, place.x, place.y, layout.width, layout.createHeight,
                                      againstBadge ? badgeWindow : officeWindow, nullptr, ModuleInstance(), state));
  if (window.get() == nullptr) {
    LogLastErrorText(layout.windowFailureText);
    return nullptr;
  }

  std::vector<HWND> children;
  children.reserve(layout.steps.size());
  for (const LayoutStep& step : layout.steps) {
    const bool ok = step.kind == StepKind::ResizeChild ? ResizeChild(step, children)
                                                       : CreateChild(window.get(), step, children, driveBitmap, dpi);
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
  RememberBuiltDpi(window.get(), dpi);
  return window.release();
}
}  // namespace

HWND BuildLayout(const PanelLayout& layout, HWND officeWindow, HWND badgeWindow, Point at, HBITMAP driveBitmap,
                 OverlayWindowState* state) {
  const wchar_t* activity = layout.exceptionActivity ? layout.exceptionActivity : L"creating overlay UI";
  const ThreadDpiAwarenessOf awareness(officeWindow);
  return Guarded(activity, static_cast<HWND>(nullptr),
                 [&] { return Build(layout, officeWindow, badgeWindow, at, driveBitmap, state); });
}
