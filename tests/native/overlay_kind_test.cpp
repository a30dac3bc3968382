#include "overlay/decision/overlay_kind.h"

#include <gtest/gtest.h>

#include <string>

#include "overlay/images/image_file_names.h"

namespace {
std::wstring Image(OverlayKind kind) {
  const wchar_t* file = BadgeImageFile(kind);
  return file == nullptr ? L"(none)" : file;
}
}  // namespace

TEST(OverlayKind, KeepsItsNumbersFromNoneToViewingOnly) {
  EXPECT_EQ(static_cast<int>(OverlayKind::None), 0);
  EXPECT_EQ(static_cast<int>(OverlayKind::NoInternet), 1);
  EXPECT_EQ(static_cast<int>(OverlayKind::Loading), 2);
  EXPECT_EQ(static_cast<int>(OverlayKind::SafeToEdit), 3);
  EXPECT_EQ(static_cast<int>(OverlayKind::Editing), 4);
  EXPECT_EQ(static_cast<int>(OverlayKind::DeletedOrMoved), 5);
  EXPECT_EQ(static_cast<int>(OverlayKind::Conflict), 6);
  EXPECT_EQ(static_cast<int>(OverlayKind::Download), 7);
  EXPECT_EQ(static_cast<int>(OverlayKind::ViewingOnly), 8);
}

TEST(BadgeImageFile, GivesEachKindItsImage) {
  EXPECT_EQ(Image(OverlayKind::None), L"(none)");
  EXPECT_EQ(Image(OverlayKind::NoInternet), L"drive-mono-big.png");
  EXPECT_EQ(Image(OverlayKind::Loading), L"drive.png");
  EXPECT_EQ(Image(OverlayKind::SafeToEdit), L"drive_tick.png");
  EXPECT_EQ(Image(OverlayKind::Editing), L"drive_warn.png");
  EXPECT_EQ(Image(OverlayKind::DeletedOrMoved), L"drive_error.png");
  EXPECT_EQ(Image(OverlayKind::Conflict), L"drive_warn.png");
  EXPECT_EQ(Image(OverlayKind::Download), L"drive_download.png");
  EXPECT_EQ(Image(OverlayKind::ViewingOnly), L"drive_view.png");
}

TEST(BadgeImageFile, GivesNoImageForANumberOutsideTheKinds) {
  EXPECT_EQ(BadgeImageFile(static_cast<OverlayKind>(9)), nullptr);
  EXPECT_EQ(BadgeImageFile(static_cast<OverlayKind>(-1)), nullptr);
}

TEST(BadgeImageFile, HandsOutTheSharedNameObjects) {
  EXPECT_EQ(BadgeImageFile(OverlayKind::Editing), kDriveWarnImage);
  EXPECT_EQ(BadgeImageFile(OverlayKind::Conflict), kDriveWarnImage);
  EXPECT_EQ(BadgeImageFile(OverlayKind::NoInternet), kDriveMonoBigImage);
}

TEST(OverlayImageFiles, AreTheNineFilesOfTheImagesFolder) {
  ASSERT_EQ(sizeof(kOverlayImageFiles) / sizeof(kOverlayImageFiles[0]), 9u);
  const std::wstring expected[] = {L"drive.png",          L"drive_tick.png",  L"drive_view.png",
                                   L"drive_warn.png",     L"drive_error.png", L"drive_download.png",
                                   L"drive-mono-big.png", L"error_icon1.png", L"user-thumbnail.png"};
  for (size_t i = 0; i < 9; ++i) EXPECT_EQ(kOverlayImageFiles[i], expected[i]) << "file " << i;
}
