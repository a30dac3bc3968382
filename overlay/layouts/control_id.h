#pragma once
// The control ids of the overlays' children. A command is found by the id
// of the button that sends it, so a button's id must mean that one action
// in its window; the numbers stay as they are because the sync app's
// support staff read them in the trace log. How a control looks is not
// read from its id: the layout step carries its colour role and button
// look (control_looks.h).

enum class ControlId : int {
  // A child nothing refers to: a picture, a plain text, the link, a bar.
  None = 0,

  // Texts.
  Title = 1001,         // "No active collaborators"
  ViewingTitle = 1002,  // "... viewing this file"
  EditingTitle = 1003,  // "... editing this file"
  Description = 1004,   // descriptions, section headings, times
  Rule = 1005,          // the lines between sections
  LoadingTitle = 2001,  // the loading strip's owner-drawn "Qelvo Filewell"
  Note = 2002,          // the delete panel's note, in its grey box
  MemberRow = 2004,     // a live member's name and status, "and N more"

  // Buttons: each sends its own command.
  Download = 3001,
  Downloading = 3002,  // sends nothing: the download is on its way
  Reload = 3003,
  SaveCopyAndReload = 3004,
  DiscardAndReload = 3005,
  ResolveConflict = 3006,
  ContinueToResolve = 3007,
  SaveAndResolve = 3008,
  DiscardAndResolve = 3009,
  FollowRenameOrMove = 3010,
  ContinueToFollow = 3011,
  SaveAndFollow = 3012,
  DiscardAndFollow = 3013,
  Hide = 3014,

  // "Save my changes as a separate copy", read when Download is pressed.
  SaveSeparateCopy = 4001,

  // Areas: the active users' list and the rename/move panel's old name;
  // the new name.
  List = 5001,
  PreviousName = 5001,
  NewName = 5002,
};
