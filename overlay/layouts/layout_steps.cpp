#include "overlay/layouts/layout_steps.h"

#include <utility>

#include "overlay/layouts/control_styles.h"
#include "overlay/layouts/shown_text.h"
#include "overlay/windows/window_class_names.h"

namespace {
LayoutStep Make(const wchar_t* className, std::uint32_t style, std::wstring text, Box box, ControlId id, FontRole font,
                const wchar_t* failureText) {
  LayoutStep step;
  step.className = className;
  step.style = style;
  step.text = std::move(text);
  step.x = box.x;
  step.y = box.y;
  step.width = box.width;
  step.height = box.height;
  step.id = id;
  step.font = font;
  step.failureText = failureText;
  return step;
}

LayoutStep Coloured(ColourRole colour, LayoutStep step) {
  step.colour = colour;
  return step;
}

LayoutStep Button(std::uint32_t style, std::wstring text, Box box, ControlId id, ButtonLook look, ButtonShape shape,
                  const wchar_t* failureText) {
  LayoutStep step = Make(kButtonClass, style, std::move(text), box, id, FontRole::Body, failureText);
  step.buttonLook = look;
  step.buttonShape = shape;
  return step;
}
// A layout's window, created at its final size, before its steps.
PanelLayout Window(PanelPlacement placement, const wchar_t* className, std::uint32_t style, std::uint32_t exStyle,
                   int width, int height, const wchar_t* windowFailureText, const wchar_t* exceptionActivity) {
  PanelLayout layout;
  layout.placement = placement;
  layout.width = width;
  layout.height = height;
  layout.createHeight = height;
  layout.className = className;
  layout.style = style;
  layout.exStyle = exStyle;
  layout.windowFailureText = windowFailureText;
  layout.exceptionActivity = exceptionActivity;
  return layout;
}
}  // namespace

LayoutStep TextStep(std::wstring text, Box box, ControlId id, ColourRole colour, FontRole font,
                    const wchar_t* failureText) {
  return Coloured(colour, Make(kStaticClass, kStyleText, std::move(text), box, id, font, failureText));
}

LayoutStep EllipsisTextStep(std::wstring text, Box box, ControlId id, ColourRole colour, FontRole font,
                            const wchar_t* failureText) {
  return Coloured(colour, Make(kStaticClass, kStyleEllipsisText, std::move(text), box, id, font, failureText));
}

LayoutStep NameStep(const std::wstring& name, Box box, ControlId id, ColourRole colour, FontRole font,
                    const wchar_t* failureText) {
  return Coloured(colour, Make(kStaticClass, kStyleEllipsisPlainText, CleanShownText(name, kShownNameMaxLength), box,
                               id, font, failureText));
}

LayoutStep ModifiedOnStep(const std::wstring& time, Box box, ControlId id, ColourRole colour, FontRole font,
                          const wchar_t* failureText) {
  return Coloured(
      colour, Make(kStaticClass, kStylePlainText, L"Modified on " + CleanShownText(time, kShownTimeMaxLength), box, id,
                   font, failureText));
}

LayoutStep OwnerDrawnTextStep(std::wstring text, Box box, ControlId id, ColourRole colour, FontRole font,
                              const wchar_t* failureText) {
  return Coloured(colour, Make(kStaticClass, kStyleOwnerDrawnText, std::move(text), box, id, font, failureText));
}

LayoutStep ImageStep(ImageRole image, Box box, ControlId id, const wchar_t* failureText) {
  LayoutStep step = Make(kStaticClass, kStyleImage, L"", box, id, FontRole::None, failureText);
  step.image = image;
  return step;
}

LayoutStep AvatarStep(bool tryUserAvatar, std::wstring avatarFile, Box box, const wchar_t* failureText) {
  LayoutStep step = ImageStep(ImageRole::Avatar, box, ControlId::None, failureText);
  step.tryUserAvatar = tryUserAvatar;
  step.avatarFile = std::move(avatarFile);
  return step;
}

LayoutStep IconStep(ImageRole image, Box box, ControlId id, const wchar_t* failureText) {
  LayoutStep step = Make(kStaticClass, kStyleIcon, L"", box, id, FontRole::None, failureText);
  step.image = image;
  return step;
}

LayoutStep ButtonStep(std::wstring text, Box box, ControlId id, ButtonLook look, ButtonShape shape,
                      const wchar_t* failureText) {
  return Button(kStyleButton, std::move(text), box, id, look, shape, failureText);
}

LayoutStep BorderedButtonStep(std::wstring text, Box box, ControlId id, ButtonLook look, ButtonShape shape,
                              const wchar_t* failureText) {
  return Button(kStyleBorderedButton, std::move(text), box, id, look, shape, failureText);
}

LayoutStep CheckBoxStep(std::wstring text, Box box, ControlId id, const wchar_t* failureText) {
  return Make(kButtonClass, kStyleCheckBox, std::move(text), box, id, FontRole::Body, failureText);
}

LayoutStep LinkStep(std::wstring anchorText, Box box, const wchar_t* failureText) {
  return Make(kSysLinkClass, kStyleLink, std::move(anchorText), box, ControlId::None, FontRole::Body, failureText);
}

LayoutStep ProgressBarStep(Box box, const wchar_t* failureText) {
  LayoutStep step = Make(kProgressBarClass, kStyleProgressBar, L"", box, ControlId::None, FontRole::None, failureText);
  step.startMarquee = true;
  return step;
}

LayoutStep WindowStep(const wchar_t* className, std::uint32_t style, Box box, ControlId id,
                      const wchar_t* failureText) {
  return Make(className, style, L"", box, id, FontRole::None, failureText);
}

LayoutStep WindowStep(const wchar_t* className, std::uint32_t style, std::wstring text, Box box, ControlId id,
                      FontRole font, const wchar_t* failureText) {
  return Make(className, style, std::move(text), box, id, font, failureText);
}

LayoutStep ResizeChildStep(int target, Box box, const wchar_t* failureText) {
  LayoutStep step = Make(nullptr, 0, L"", box, ControlId::None, FontRole::None, failureText);
  step.kind = StepKind::ResizeChild;
  step.target = target;
  return step;
}

LayoutStep InsideOf(int parent, LayoutStep step) {
  step.parent = parent;
  return step;
}

PanelLayout AgainstBadgePanel(int width, int height, const wchar_t* officeRectFailureText,
                              const wchar_t* badgeRectFailureText, const wchar_t* windowFailureText,
                              const wchar_t* exceptionActivity) {
  PanelLayout layout = Window(PanelPlacement::AgainstBadge, kMainUiClass, kStylePopupBorder, 0, width, height,
                              windowFailureText, exceptionActivity);
  layout.officeRectFailureText = officeRectFailureText;
  layout.badgeRectFailureText = badgeRectFailureText;
  return layout;
}

PanelLayout AtCallerPointOverlay(const wchar_t* className, std::uint32_t style, std::uint32_t exStyle, int width,
                                 int height, const wchar_t* windowFailureText, const wchar_t* exceptionActivity) {
  return Window(PanelPlacement::AtCallerPoint, className, style, exStyle, width, height, windowFailureText,
                exceptionActivity);
}
