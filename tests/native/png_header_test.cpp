#include "overlay/images/png_header.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {
void Put32(std::vector<unsigned char>& bytes, std::uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<unsigned char>(value >> shift));
}

// The first 33 bytes of a PNG: signature, then the IHDR chunk (length 13,
// type, width, height, depth 8, colour type 6, three zero bytes, CRC).
std::vector<unsigned char> PngStart(std::uint32_t width, std::uint32_t height) {
  std::vector<unsigned char> bytes = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  Put32(bytes, 13);
  bytes.insert(bytes.end(), {'I', 'H', 'D', 'R'});
  Put32(bytes, width);
  Put32(bytes, height);
  bytes.insert(bytes.end(), {8, 6, 0, 0, 0});
  Put32(bytes, 0x12345678);  // not checked: GDI+ checks it
  return bytes;
}

const wchar_t* Refusal(const std::vector<unsigned char>& bytes) { return PngHeaderRefusal(bytes.data(), bytes.size()); }
std::wstring Text(const wchar_t* refusal) { return refusal ? refusal : L"(accepted)"; }
}  // namespace

TEST(PngHeader, AcceptsAnAvatarSizedPng) { EXPECT_EQ(nullptr, Refusal(PngStart(40, 40))); }

TEST(PngHeader, AcceptsOneThousandTwentyFourOnEachSide) {
  EXPECT_EQ(kMaxPictureSide, 1024u);
  EXPECT_EQ(nullptr, Refusal(PngStart(1024, 1024)));
  EXPECT_EQ(nullptr, Refusal(PngStart(1, 1024)));
}

TEST(PngHeader, RefusesAPictureWiderOrTallerThanThat) {
  EXPECT_EQ(Text(Refusal(PngStart(1025, 40))), L"PNG picture too large");
  EXPECT_EQ(Text(Refusal(PngStart(40, 1025))), L"PNG picture too large");
  EXPECT_EQ(Text(Refusal(PngStart(5000, 5000))), L"PNG picture too large");
  EXPECT_EQ(Text(Refusal(PngStart(0xFFFFFFFFu, 0xFFFFFFFFu))), L"PNG picture too large");
}

TEST(PngHeader, RefusesAPictureWithoutPixels) {
  EXPECT_EQ(Text(Refusal(PngStart(0, 40))), L"PNG picture without pixels");
  EXPECT_EQ(Text(Refusal(PngStart(40, 0))), L"PNG picture without pixels");
}

TEST(PngHeader, RefusesAJpegRenamedToPng) {
  const std::vector<unsigned char> jpeg = {0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10, 'J', 'F', 'I', 'F', 0x00, 0x01,
                                           0x01, 0x00, 0x00, 0x01, 0x00, 0x01, 0x00, 0x00, 0xFF, 0xDB, 0x00, 0x43,
                                           0x00, 0x08, 0x06, 0x06, 0x07, 0x06, 0x05, 0x08, 0x07, 0x07};
  EXPECT_EQ(Text(Refusal(jpeg)), L"not a PNG file");
}

TEST(PngHeader, RefusesAnEmptyOrNullBuffer) {
  EXPECT_EQ(Text(PngHeaderRefusal(nullptr, 0)), L"not a PNG file");
  const unsigned char one = 0x89;
  EXPECT_EQ(Text(PngHeaderRefusal(&one, 1)), L"not a PNG file");
}

TEST(PngHeader, RefusesAHeaderCutShortAtEveryLength) {
  const std::vector<unsigned char> whole = PngStart(40, 40);
  for (size_t size = 8; size < whole.size(); ++size) {
    EXPECT_EQ(Text(PngHeaderRefusal(whole.data(), size)), L"PNG header cut short") << size;
  }
}

TEST(PngHeader, RefusesASignatureWithOneByteChanged) {
  for (size_t i = 0; i < 8; ++i) {
    std::vector<unsigned char> bytes = PngStart(40, 40);
    bytes[i] ^= 0x20;
    EXPECT_EQ(Text(Refusal(bytes)), L"not a PNG file") << i;
  }
}

TEST(PngHeader, RefusesAFirstChunkThatIsNotAThirteenByteIhdr) {
  std::vector<unsigned char> wrongType = PngStart(40, 40);
  wrongType[12] = 'g';  // "gHDR"
  EXPECT_EQ(Text(Refusal(wrongType)), L"PNG header without IHDR");
  std::vector<unsigned char> wrongLength = PngStart(40, 40);
  wrongLength[11] = 14;
  EXPECT_EQ(Text(Refusal(wrongLength)), L"PNG header without IHDR");
}
