#pragma once
// Makers for the steps of a layout, one per kind of child control, so a
// panel's table names what each child is ("text", "button", "avatar")
// and the class and style bits are written once.
#include <cstdint>
#include <string>

#include "overlay/layouts/panel_layout.h"

// A child's rectangle in its parent's client coordinates.
struct Box {
  int x;
  int y;
  int width;
  int height;
};

// "STATIC", left-aligned word-wrapped text.
LayoutStep TextStep(std::wstring text, Box box, ControlId id, ColourRole colour, FontRole font,
                    const wchar_t* failureText);
// "STATIC" that ends a long text with an ellipsis.
LayoutStep EllipsisTextStep(std::wstring text, Box box, ControlId id, ColourRole colour, FontRole font,
                            const wchar_t* failureText);
// A person's name from the sync app's answer: cleaned and capped
// (CleanShownText, kShownNameMaxLength), ellipsis, SS_NOPREFIX.
LayoutStep NameStep(const std::wstring& name, Box box, ControlId id, ColourRole colour, FontRole font,
                    const wchar_t* failureText);
// "Modified on " and a time from the answer, cleaned and capped
// (kShownTimeMaxLength), word-wrapped, SS_NOPREFIX.
LayoutStep ModifiedOnStep(const std::wstring& time, Box box, ControlId id, ColourRole colour, FontRole font,
                          const wchar_t* failureText);
// "STATIC" painted by the overlay window procedure, in its colour role.
LayoutStep OwnerDrawnTextStep(std::wstring text, Box box, ControlId id, ColourRole colour, FontRole font,
                              const wchar_t* failureText);
// "STATIC" bitmap (error icon, drive picture).
LayoutStep ImageStep(ImageRole image, Box box, ControlId id, const wchar_t* failureText);
// "STATIC" bitmap of a person: their own file first when tryUserAvatar is
// set, else (or when that fails) the default avatar.
LayoutStep AvatarStep(bool tryUserAvatar, std::wstring avatarFile, Box box, const wchar_t* failureText);
// "STATIC" icon (the warning sign).
LayoutStep IconStep(ImageRole image, Box box, ControlId id, const wchar_t* failureText);
// Owner-drawn "BUTTON" in its look and shape; every caption is in the body
// font.
LayoutStep ButtonStep(std::wstring text, Box box, ControlId id, ButtonLook look, ButtonShape shape,
                      const wchar_t* failureText);
// The same with a border (a confirmation's second choice).
LayoutStep BorderedButtonStep(std::wstring text, Box box, ControlId id, ButtonLook look, ButtonShape shape,
                              const wchar_t* failureText);
// Unticked auto check box, body font, black on white.
LayoutStep CheckBoxStep(std::wstring text, Box box, ControlId id, const wchar_t* failureText);
// "SysLink" with one anchor, id 0, body font.
LayoutStep LinkStep(std::wstring anchorText, Box box, const wchar_t* failureText);
// Marquee progress bar, id 0, started at once.
LayoutStep ProgressBarStep(Box box, const wchar_t* failureText);
// A child window of one of the overlay classes (list, note box, status dot,
// scroll area), with no text of its own.
LayoutStep WindowStep(const wchar_t* className, std::uint32_t style, Box box, ControlId id, const wchar_t* failureText);
// The same carrying a window text (the horizontal scroll areas paint it).
LayoutStep WindowStep(const wchar_t* className, std::uint32_t style, std::wstring text, Box box, ControlId id,
                      FontRole font, const wchar_t* failureText);
// Resizes the window of the step at index target.
LayoutStep ResizeChildStep(int target, Box box, const wchar_t* failureText);

// The step moved into the window of the step at index parent.
LayoutStep InsideOf(int parent, LayoutStep step);

// A sub-overlay panel's window: a white MainUI pop-up with a border, placed
// against the badge, width × height from the start; the steps follow.
PanelLayout AgainstBadgePanel(int width, int height, const wchar_t* officeRectFailureText,
                              const wchar_t* badgeRectFailureText, const wchar_t* windowFailureText,
                              const wchar_t* exceptionActivity);

// A status overlay's window, at the caller's point.
PanelLayout AtCallerPointOverlay(const wchar_t* className, std::uint32_t style, std::uint32_t exStyle, int width,
                                 int height, const wchar_t* windowFailureText, const wchar_t* exceptionActivity);
