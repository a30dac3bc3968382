#pragma once
// How a child control looks, said by the panel table that makes it, so the
// painting code carries out the table rather than guessing from ids.

// The text and background colours a static text (or check box) is given
// at WM_CTLCOLORSTATIC, or an owner-drawn text paints itself in.
enum class ColourRole {
  Plain,         // black on white
  ViewingTitle,  // green: someone is only viewing
  EditingTitle,  // red: someone is editing
  BodyText,      // dark grey: descriptions, headings, times
  Rule,          // light grey lines between sections
  LoadingStrip,  // white on the loading strip's blue
  Note,          // dark text in the grey note box
  MemberRow,     // near-black rows of the live members' list
};

// What an owner-drawn button's fill, frame and caption say about it.
enum class ButtonLook {
  None,          // not an owner-drawn button
  Main,          // the panel's main action: white on blue
  SecondChoice,  // a confirmation's other choice: blue on white
  Quiet,         // "Hide": dark on grey
  Waiting,       // "Downloading...": grey on light blue, not a choice
};

enum class ButtonShape {
  Square,
  // Corners rounded by a 10-pixel ellipse, over the button's whole window.
  Rounded,
};
