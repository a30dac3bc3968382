#pragma once
// A panel, or one of the three status overlays, as a value: its window and
// its children in creation order. One Win32 builder creates any layout: it
// makes the window, then carries out the steps in order, sets each child's
// font and image, starts marquees, and stops at the first step that fails,
// logging that step's own failure text followed by the decimal
// GetLastError() value. A new panel is a new layout, not a new loop.
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "overlay/layouts/control_id.h"
#include "overlay/layouts/control_looks.h"
#include "overlay/layouts/font_table.h"
#include "overlay/layouts/overlay_geometry.h"

enum class ImageRole {
  None,
  // A person's avatar: the file avatarFile in the avatar folder when
  // tryUserAvatar is set and it loads, else the shared default avatar
  // ("user-thumbnail.png", kept once loaded). A user's avatar is loaded
  // afresh for each panel and freed with it.
  Avatar,
  // The shared "error_icon1.png" bitmap.
  ErrorIcon,
  // The system's warning icon (LoadIconW(NULL, IDI_WARNING)), set as an
  // icon (STM_SETIMAGE, IMAGE_ICON) rather than a bitmap.
  WarningIcon,
  // The bitmap the caller hands to the status overlay's builder.
  DriveBitmap,
};

enum class StepKind {
  // CreateWindowExW of a child, then its font (WM_SETFONT, no redraw), its
  // image (STM_SETIMAGE), its region and its marquee as the step says.
  Create,
  // SetWindowPos(no z-order, SWP_NOACTIVATE) of an earlier child to the
  // step's rectangle, then EnableScrollBar(SB_VERT, ESB_ENABLE_BOTH) and
  // UpdateWindow on it: the active-users list shrinking to its rows.
  ResizeChild,
};

// A colour as Windows holds it (COLORREF, 0x00BBGGRR), for the plain side.
constexpr std::uint32_t RgbColour(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
  return red | (green << 8) | (blue << 16);
}
// The panels' and the no-internet strip's white, the loading strip's blue.
inline constexpr std::uint32_t kPanelWhite = RgbColour(255, 255, 255);
inline constexpr std::uint32_t kLoadingStripBlue = RgbColour(25, 110, 180);

// parent value of a child of the panel window itself.
inline constexpr int kPanelParent = -1;

// The circle a status dot is clipped to (CreateEllipticRgn; the window owns
// the region once SetWindowRgn succeeds, the builder deletes it otherwise).
inline constexpr Rect kStatusDotCircle{4, 4, 13, 13};

// Marquee bars step every 30 ms (PBM_SETMARQUEE, on). A bar whose marquee
// does not start is logged and the build goes on with a still bar.
inline constexpr int kMarqueeStepMilliseconds = 30;
inline constexpr wchar_t kMarqueeFailureText[] = L"couldn't set indeterminate progress bar";

struct LayoutStep {
  StepKind kind = StepKind::Create;
  const wchar_t* className = nullptr;
  std::uint32_t style = 0;
  std::uint32_t exStyle = 0;
  // Window text: a caption, a SysLink anchor, or the name a horizontal
  // scroll area paints.
  std::wstring text;
  // Client coordinates of the parent.
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  ControlId id = ControlId::None;
  FontRole font = FontRole::None;
  ImageRole image = ImageRole::None;
  bool tryUserAvatar = false;
  std::wstring avatarFile;
  // The colour behind a picture: its transparent pixels are drawn in it, so
  // no box of the badge's colour key shows around a round avatar or icon.
  std::uint32_t backdrop = kPanelWhite;
  // kPanelParent, or the index of an earlier step whose window holds this
  // child (the active users' list, the delete panel's note box).
  int parent = kPanelParent;
  // ResizeChild: the index of the step whose window is resized.
  int target = -1;
  bool startMarquee = false;
  // Clip the window to kStatusDotCircle.
  bool circleRegion = false;
  // Logged, with the error number after it, when the step fails; the build
  // then stops. A step without one is not checked: the build goes on
  // without that window (a member's avatar picture).
  const wchar_t* failureText = nullptr;
  // With circleRegion: CreateEllipticRgn and SetWindowRgn failures.
  const wchar_t* regionFailureText = nullptr;
  const wchar_t* setRegionFailureText = nullptr;
  // How a static text or button is painted (control_looks.h).
  ColourRole colour = ColourRole::Plain;
  ButtonLook buttonLook = ButtonLook::None;
  ButtonShape buttonShape = ButtonShape::Square;
};

// Two steps are equal when every field is; texts are compared by content.
bool operator==(const LayoutStep& a, const LayoutStep& b);
bool operator!=(const LayoutStep& a, const LayoutStep& b);
std::ostream& operator<<(std::ostream& out, const LayoutStep& step);

enum class PanelPlacement {
  // A sub-overlay panel: both rectangles read, placed with PlaceSubOverlay,
  // owned by the badge, created hidden (SW_HIDE, then UpdateWindow); the
  // timer and the window procedure show it.
  AgainstBadge,
  // A status overlay (badge, no internet, loading): at the caller's point,
  // owned by the Office window, shown at once without taking the focus
  // (SW_SHOWNA, then UpdateWindow).
  AtCallerPoint,
};

struct PanelLayout {
  PanelPlacement placement = PanelPlacement::AgainstBadge;
  // The final size.
  int width = 0;
  int height = 0;
  // The height the window is created (and first placed) with. It differs
  // from height only where the final height is known once the rows are
  // laid out (active users); the builder then resizes and places the panel
  // again with PlaceSubOverlay and the final size.
  int createHeight = 0;
  const wchar_t* className = nullptr;
  std::uint32_t style = 0;
  std::uint32_t exStyle = 0;
  // Failure texts of the steps before the children (null where the
  // placement has no such step) and of the final resize (null when none).
  const wchar_t* officeRectFailureText = nullptr;
  const wchar_t* badgeRectFailureText = nullptr;
  const wchar_t* windowFailureText = nullptr;
  const wchar_t* finalResizeFailureText = nullptr;
  // For the exception barrier: "std exception occurred while " + this +
  // " - " + what(), "unknown exception occurred while " + this.
  const wchar_t* exceptionActivity = nullptr;
  std::vector<LayoutStep> steps;

  // A layout without a size describes nothing to build (a confirmation
  // asked for no situation): the builder refuses it and returns no window.
  bool IsBuildable() const { return width > 0 && height > 0 && createHeight > 0; }
};
