#include "overlay/decision/overlay_kind.h"

#include <ostream>

#include "overlay/images/image_file_names.h"

std::ostream& operator<<(std::ostream& out, OverlayKind kind) {
  return out << "OverlayKind(" << static_cast<int>(kind) << ")";
}

const wchar_t* BadgeImageFile(OverlayKind kind) {
  switch (kind) {
    case OverlayKind::None: return nullptr;
    case OverlayKind::NoInternet: return kDriveMonoBigImage;
    case OverlayKind::Loading: return kDriveImage;
    case OverlayKind::SafeToEdit: return kDriveTickImage;
    case OverlayKind::Editing: return kDriveWarnImage;
    case OverlayKind::DeletedOrMoved: return kDriveErrorImage;
    case OverlayKind::Conflict: return kDriveWarnImage;
    case OverlayKind::Download: return kDriveDownloadImage;
    case OverlayKind::ViewingOnly: return kDriveViewImage;
  }
  return nullptr;
}
