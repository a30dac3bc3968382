// The overlay's pictures: the PNG files the sync app installs become GDI
// bitmaps through GDI+, transparent pixels flattened onto the colour key;
// a file that cannot be read gives no bitmap and one error line.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/unique_resource.h"
#include "overlay/images/image_loading.h"
#include "overlay/images/overlay_images.h"
#include "tests/caller.h"
#include "tests/windows/overlay_test_support.h"
#include "tests/windows/wine_test_support.h"
#include "tools/officesim/resource_counts.h"

namespace {
constexpr Rgb kColourKey{169, 169, 169};

std::wstring Installed(const wchar_t* fileName) {
  return AppDataFolder() + L"\\QelvoFilewell\\bin\\images\\" + fileName;
}

struct ImageSize {
  const wchar_t* file;
  int width;
  int height;
};

std::string FileParamName(const testing::TestParamInfo<ImageSize>& info) {
  std::string name;
  for (const char c : Utf8(info.param.file)) {
    if (c == '.') break;
    if (isalnum(static_cast<unsigned char>(c))) name += c;
  }
  return name;
}

// The whole log line written for a file that would not load: its path,
// then GDI+'s status as a decimal number, which must say it failed.
void ExpectOneLoadFailureLine(const std::wstring& path, Caller caller = {}) {
  TRACE_CALLER(caller);
  const std::vector<std::string> errors = ErrorLines();
  ASSERT_EQ(1u, errors.size()) << testing::PrintToString(errors);
  const std::string prefix = "couldn't load bitmap (" + Utf8(path) + ") - gdi status=";
  ASSERT_EQ(prefix, errors[0].substr(0, prefix.size()));
  const std::string status = errors[0].substr(prefix.size());
  ASSERT_FALSE(status.empty());
  EXPECT_EQ(std::string::npos, status.find_first_not_of("0123456789")) << status;
  EXPECT_NE("0", status) << "status 0 is Ok, not a failure";
}

class OverlayImages : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    SetUpOverlayStage();
    CurrentResourceCounts();
  }
  void SetUp() override { StartFreshLog(); }
};

class InstalledImage : public testing::TestWithParam<ImageSize> {
 protected:
  static void SetUpTestSuite() { SetUpOverlayStage(); }
};

TEST_P(InstalledImage, LoadsAsABitmapOfItsOwnSize) {
  const UniqueHbitmap bitmap(LoadImageBitmap(Installed(GetParam().file)));
  ASSERT_TRUE(bitmap);
  const SIZE size = SizeOf(bitmap.get());
  EXPECT_EQ(GetParam().width, size.cx);
  EXPECT_EQ(GetParam().height, size.cy);
}

INSTANTIATE_TEST_SUITE_P(AllNine, InstalledImage,
                         testing::Values(ImageSize{L"drive_tick.png", 70, 70}, ImageSize{L"drive_view.png", 70, 70},
                                         ImageSize{L"drive_warn.png", 70, 70}, ImageSize{L"drive_error.png", 70, 70},
                                         ImageSize{L"drive_download.png", 70, 70}, ImageSize{L"drive.png", 32, 32},
                                         ImageSize{L"drive-mono-big.png", 28, 28},
                                         ImageSize{L"error_icon1.png", 21, 21},
                                         ImageSize{L"user-thumbnail.png", 40, 40}),
                         FileParamName);

class BadgeImage : public testing::TestWithParam<const wchar_t*> {
 protected:
  static void SetUpTestSuite() { SetUpOverlayStage(); }
};

TEST_P(BadgeImage, TurnsItsTransparentCornersIntoTheColourKey) {
  const UniqueHbitmap bitmap(LoadImageBitmap(Installed(GetParam())));
  ASSERT_TRUE(bitmap);
  const Pixels pixels = PixelsOf(bitmap.get());
  ASSERT_EQ(70, pixels.width);
  EXPECT_EQ(kColourKey, pixels.At(0, 0));
  EXPECT_EQ(kColourKey, pixels.At(69, 0));
  EXPECT_EQ(kColourKey, pixels.At(0, 69));
  EXPECT_EQ(kColourKey, pixels.At(69, 69));
}

TEST_P(BadgeImage, KeepsItsOpaqueColoursExactly) {
  const UniqueHbitmap bitmap(LoadImageBitmap(Installed(GetParam())));
  ASSERT_TRUE(bitmap);
  const Pixels pixels = PixelsOf(bitmap.get());
  // The drive's white face in the middle and the disc's blue at its left.
  EXPECT_EQ((Rgb{255, 255, 255}), pixels.At(35, 35));
  EXPECT_EQ((Rgb{25, 110, 180}), pixels.At(10, 35));
}

INSTANTIATE_TEST_SUITE_P(AllFive, BadgeImage,
                         testing::Values(L"drive_tick.png", L"drive_view.png", L"drive_warn.png", L"drive_error.png",
                                         L"drive_download.png"),
                         [](const testing::TestParamInfo<const wchar_t*>& info) {
                           return FileParamName({ImageSize{info.param, 0, 0}, info.index});
                         });

TEST_F(OverlayImages, KeepsAnOpaqueImageFreeOfTheColourKey) {
  // drive-mono-big.png has no transparent pixel: nothing of it may vanish.
  const UniqueHbitmap bitmap(LoadImageBitmap(Installed(L"drive-mono-big.png")));
  ASSERT_TRUE(bitmap);
  const Pixels pixels = PixelsOf(bitmap.get());
  EXPECT_EQ(0, pixels.CountOf(kColourKey, 0, 0, 28, 28));
  EXPECT_EQ((Rgb{255, 255, 255}), pixels.At(0, 0));
  EXPECT_EQ((Rgb{92, 100, 112}), pixels.At(14, 14));
}

TEST_F(OverlayImages, WritesNoErrorLineForAnImageThatLoads) {
  const UniqueHbitmap bitmap(LoadImageBitmap(Installed(L"drive_tick.png")));
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(std::vector<std::string>{}, ErrorLines());
}

TEST_F(OverlayImages, GivesNoBitmapForAMissingFile) {
  EXPECT_EQ(nullptr, LoadImageBitmap(Installed(L"no-such-image.png")));
}

TEST_F(OverlayImages, LogsOneLineNamingAMissingFileAndGdiplusStatus) {
  const std::wstring path = Installed(L"no-such-image.png");
  ASSERT_EQ(nullptr, LoadImageBitmap(path));
  ExpectOneLoadFailureLine(path);
}

TEST_F(OverlayImages, GivesNoBitmapAndOneLineForACorruptFile) {
  const std::wstring path = TestTempFolder() + L"\\corrupt.png";
  {
    UniqueFileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    ASSERT_TRUE(file);
    // A PNG header of a 40 × 40 picture followed by nonsense: the header
    // check lets it through, GDI+ recognises the format and then fails to
    // read it.
    const char bytes[] =
        "\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR\0\0\0\x28\0\0\0\x28\x08\x06\0\0\0\x12\x34\x56\x78"
        "this is not an image at all";
    DWORD written = 0;
    ASSERT_TRUE(WriteFile(file.get(), bytes, sizeof(bytes) - 1, &written, nullptr));
  }
  EXPECT_EQ(nullptr, LoadImageBitmap(path));
  ExpectOneLoadFailureLine(path);
}

// Files that never reach GDI+: the line says why instead of a GDI+ status.
void WriteTestFile(const std::wstring& path, const std::string& bytes) {
  UniqueFileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  ASSERT_TRUE(file);
  DWORD written = 0;
  ASSERT_TRUE(WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
}

TEST_F(OverlayImages, RefusesAPngSignatureFollowedByNonsenseBeforeGdiplus) {
  const std::wstring path = TestTempFolder() + L"\\nonsense.png";
  WriteTestFile(path, std::string("\x89PNG\r\n\x1a\nthis is not an image at all"));
  EXPECT_EQ(nullptr, LoadImageBitmap(path));
  EXPECT_EQ(ErrorLines(), std::vector<std::string>{"couldn't load bitmap (" + Utf8(path) + ") - PNG header without IHDR"});
}

TEST_F(OverlayImages, RefusesAPictureLargerThanOneThousandTwentyFourBeforeGdiplus) {
  const std::wstring path = TestTempFolder() + L"\\huge.png";
  WriteTestFile(path, std::string("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR\0\0\x04\x01\0\0\0\x28\x08\x06\0\0\0\x12\x34\x56\x78", 33));
  EXPECT_EQ(nullptr, LoadImageBitmap(path));
  EXPECT_EQ(ErrorLines(), std::vector<std::string>{"couldn't load bitmap (" + Utf8(path) + ") - PNG picture too large"});
}

TEST_F(OverlayImages, RefusesABitmapFileNamedPngBeforeGdiplus) {
  const std::wstring path = TestTempFolder() + L"\\renamed.png";
  WriteTestFile(path, std::string("BM\x3a\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\x01\0\0\0\x01\0\0\0", 26));
  EXPECT_EQ(nullptr, LoadImageBitmap(path));
  EXPECT_EQ(ErrorLines(), std::vector<std::string>{"couldn't load bitmap (" + Utf8(path) + ") - not a PNG file"});
}

TEST_F(OverlayImages, GivesNoBitmapAndOneLineForAnEmptyFile) {
  const std::wstring path = TestTempFolder() + L"\\empty.png";
  {
    UniqueFileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    ASSERT_TRUE(file);
  }
  EXPECT_EQ(nullptr, LoadImageBitmap(path));
  ExpectOneLoadFailureLine(path);
}

TEST_F(OverlayImages, LeavesNoGdiObjectOrHandleBehindWhenAFileWillNotLoad) {
  // The first error line opens the log file, which then stays open.
  ASSERT_EQ(nullptr, LoadImageBitmap(Installed(L"no-such-image.png")));
  const ResourceCounts before = CurrentResourceCounts();
  for (int i = 0; i < 20; ++i) ASSERT_EQ(nullptr, LoadImageBitmap(Installed(L"no-such-image.png")));
  const ResourceCounts after = CurrentResourceCounts();
  EXPECT_EQ(before.gdiObjects, after.gdiObjects);
  EXPECT_EQ(before.handles, after.handles);
}

TEST_F(OverlayImages, HandsTheCallerOneBitmapToDeleteAndNothingElse) {
  const ResourceCounts before = CurrentResourceCounts();
  HBITMAP bitmap = LoadImageBitmap(Installed(L"drive_warn.png"));
  ASSERT_NE(nullptr, bitmap);
  EXPECT_EQ(before.gdiObjects + 1, CurrentResourceCounts().gdiObjects);
  EXPECT_TRUE(DeleteObject(bitmap));
  const ResourceCounts after = CurrentResourceCounts();
  EXPECT_EQ(before.gdiObjects, after.gdiObjects);
  EXPECT_EQ(before.handles, after.handles);
}

TEST_F(OverlayImages, DoesNotHoldTheFileOpen) {
  // The sync app replaces the images while Office runs.
  const std::wstring path = TestTempFolder() + L"\\replaced.png";
  ASSERT_TRUE(CopyFileW(Installed(L"drive_tick.png").c_str(), path.c_str(), FALSE));
  const UniqueHbitmap bitmap(LoadImageBitmap(path));
  ASSERT_TRUE(bitmap);
  EXPECT_TRUE(DeleteFileW(path.c_str())) << GetLastError();
}

TEST_F(OverlayImages, KeepsOneBitmapPerInstalledImageForTheProcess) {
  const HBITMAP first = SharedImage(L"drive_view.png");
  ASSERT_NE(nullptr, first);
  EXPECT_EQ(first, SharedImage(L"drive_view.png"));
}

TEST_F(OverlayImages, FindsTheInstalledImagesUnderAppData) {
  EXPECT_EQ(AppDataFolder() + L"\\QelvoFilewell\\bin\\images", ImagesFolder);
}
}  // namespace
