#pragma once
// What a file's badge currently shows. The numbers are kept as they are:
// the trace log prints them.
#include <iosfwd>

enum class OverlayKind : int {
  None = 0,
  NoInternet = 1,
  Loading = 2,
  SafeToEdit = 3,
  Editing = 4,
  // A deleted file and a renamed or moved one share this kind on purpose:
  // switching between the two keeps the badge's picture.
  DeletedOrMoved = 5,
  Conflict = 6,
  Download = 7,
  ViewingOnly = 8,
};

std::ostream& operator<<(std::ostream& out, OverlayKind kind);

// The image (a name from image_file_names.h) laid onto the badge, or handed
// to the status overlay's builder, when the file switches to this kind;
// null for None and for values outside the enumeration.
const wchar_t* BadgeImageFile(OverlayKind kind);
