#pragma once
// The file names of the overlay images in the images folder, each written
// once. Arrays rather than pointers, so every use shares one object.

// Badge images, one per state of the file (see BadgeImageFile).
inline constexpr wchar_t kDriveImage[] = L"drive.png";
inline constexpr wchar_t kDriveTickImage[] = L"drive_tick.png";
inline constexpr wchar_t kDriveViewImage[] = L"drive_view.png";
inline constexpr wchar_t kDriveWarnImage[] = L"drive_warn.png";
inline constexpr wchar_t kDriveErrorImage[] = L"drive_error.png";
inline constexpr wchar_t kDriveDownloadImage[] = L"drive_download.png";
// The drive picture of the no-internet overlay.
inline constexpr wchar_t kDriveMonoBigImage[] = L"drive-mono-big.png";
// The exclamation mark of the error panel.
inline constexpr wchar_t kErrorIconImage[] = L"error_icon1.png";
// Shown for a person whose own avatar file cannot be loaded.
inline constexpr wchar_t kDefaultAvatarImage[] = L"user-thumbnail.png";

// All nine, for whoever loads or checks them as a set.
inline constexpr const wchar_t* kOverlayImageFiles[] = {
    kDriveImage,         kDriveTickImage,    kDriveViewImage, kDriveWarnImage,     kDriveErrorImage,
    kDriveDownloadImage, kDriveMonoBigImage, kErrorIconImage, kDefaultAvatarImage,
};
