#pragma once
// The overlay fonts by role. Only height, weight and italic differ; the rest
// (no width, escapement or orientation, no underline or strike-out,
// character set 0, default precision, quality and pitch, the system's
// default face) is the same for all, so the Win32 side can create each
// role once and keep it.

enum class FontRole {
  None,          // the control keeps the system font (WM_SETFONT is not sent)
  Title,         // the titles of the conflict, delete, download and rename/move panels; names
  Body,          // descriptions, names, times, links, button captions
  BodyItalic,    // the waiting note of the confirm-leave panel
  WaitItalic,    // "Retrieving more details..." of the download panel
  OverlayTitle,  // the status overlays' titles, the bold labels of the rename/move panel
  Section,       // "LAST MODIFIED BY", "LIVE MEMBERS ( n )"
  DefaultBold,   // the safe-to-edit and active-users titles, at the default size
};

struct FontSpec {
  int height;  // 0: the default size
  int weight;  // 400 normal, 700 bold
  bool italic;
};

bool operator==(const FontSpec& a, const FontSpec& b);

// None has no font: {0, 0, false}.
FontSpec FontSpecOf(FontRole role);

// Every role that has a font, for creating them all once.
inline constexpr FontRole kFontRoles[] = {
    FontRole::Title,        FontRole::Body,    FontRole::BodyItalic,  FontRole::WaitItalic,
    FontRole::OverlayTitle, FontRole::Section, FontRole::DefaultBold,
};
