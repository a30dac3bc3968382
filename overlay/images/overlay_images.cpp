#include "overlay/images/overlay_images.h"

#include <map>

#include "log/log_folder.h"
#include "log/write_log.h"
#include "overlay/images/image_file_names.h"
#include "overlay/images/image_loading.h"
#include "overlay/layouts/dpi_scaling.h"

std::wstring ImagesFolder;

std::wstring AvatarFolder() { return AppDataPath() + L"\\" + L"QelvoFilewell" + L"\\avatar"; }

namespace {
// UI thread only, like every overlay call. Never emptied: the bitmaps are
// in use by windows for as long as the add-in is loaded.
std::map<std::wstring, HBITMAP>& Slots() {
  static auto* slots = new std::map<std::wstring, HBITMAP>();
  return *slots;
}
}  // namespace

HBITMAP SharedImage(const wchar_t* fileName, COLORREF backdrop, int dpi) {
  dpi = UsableDpi(dpi);
  std::wstring key = fileName;
  if (backdrop != kOverlayColourKey) key += L"|" + std::to_wstring(backdrop);
  if (dpi != kDesignDpi) key += L"@" + std::to_wstring(dpi);
  HBITMAP& slot = Slots()[key];
  if (slot == nullptr) slot = LoadImageBitmap(ImagesFolder + L"\\" + fileName, backdrop, dpi);
  return slot;
}

HBITMAP DefaultAvatar(COLORREF backdrop, int dpi) {
  HBITMAP avatar = SharedImage(kDefaultAvatarImage, backdrop, dpi);
  WriteLog(LogLevel::Debug, L"default avatar loaded");
  return avatar;
}
