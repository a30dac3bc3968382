#pragma once
// The system control classes and the window styles the overlays use, as
// plain numbers so the layouts can be built and checked without
// <windows.h>. Every child is WS_CHILD | WS_VISIBLE (0x50000000) plus its
// own bits.
#include <cstdint>

inline constexpr wchar_t kStaticClass[] = L"STATIC";
inline constexpr wchar_t kButtonClass[] = L"BUTTON";
inline constexpr wchar_t kSysLinkClass[] = L"SysLink";
inline constexpr wchar_t kProgressBarClass[] = L"msctls_progress32";

// Plain child window (a coloured area, a list that holds rows).
inline constexpr std::uint32_t kStyleChild = 0x50000000;
// Left-aligned, word-wrapped static text.
inline constexpr std::uint32_t kStyleText = 0x50000000;
// The same with SS_NOPREFIX, for texts from the sync app's answer: an "&"
// in a name is shown, not taken for an accelerator's underline.
inline constexpr std::uint32_t kStylePlainText = 0x50000080;
// SS_OWNERDRAW: painted by the overlay window procedure.
inline constexpr std::uint32_t kStyleOwnerDrawnText = 0x5000000D;
// SS_BITMAP | SS_REALSIZECONTROL: the bitmap goes in with STM_SETIMAGE.
inline constexpr std::uint32_t kStyleImage = 0x5000004E;
// SS_ICON: the icon goes in with STM_SETIMAGE, IMAGE_ICON.
inline constexpr std::uint32_t kStyleIcon = 0x50000003;
// SS_ENDELLIPSIS: a long name ends in "..." within its field.
inline constexpr std::uint32_t kStyleEllipsisText = 0x50004000;
// SS_ENDELLIPSIS | SS_NOPREFIX: a person's name from the answer.
inline constexpr std::uint32_t kStyleEllipsisPlainText = 0x50004080;
// BS_OWNERDRAW: rounded and painted by the overlay window procedure.
inline constexpr std::uint32_t kStyleButton = 0x5000000B;
// The same with WS_BORDER, for the second button of a confirmation.
inline constexpr std::uint32_t kStyleBorderedButton = 0x5080000B;
// BS_AUTOCHECKBOX.
inline constexpr std::uint32_t kStyleCheckBox = 0x50000003;
// WS_TABSTOP; the text holds one anchor.
inline constexpr std::uint32_t kStyleLink = 0x50010000;
// PBS_MARQUEE: an indeterminate bar.
inline constexpr std::uint32_t kStyleProgressBar = 0x50000008;
// WS_HSCROLL, for the horizontal scroll classes.
inline constexpr std::uint32_t kStyleHorizontalScrollArea = 0x50100000;
// WS_VSCROLL, for the vertical scroll class.
inline constexpr std::uint32_t kStyleVerticalScrollArea = 0x50200000;

// Top-level overlay windows.
inline constexpr std::uint32_t kStylePopup = 0x80000000;        // WS_POPUP
inline constexpr std::uint32_t kStylePopupBorder = 0x80800000;  // WS_POPUP | WS_BORDER
inline constexpr std::uint32_t kExStyleLayered = 0x00080000;    // WS_EX_LAYERED
