#include "overlay/images/png_header.h"

namespace {
constexpr unsigned char kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
// Signature, IHDR length and type, width, height: all that is read.
constexpr std::size_t kHeaderBytes = 8 + 4 + 4 + 4 + 4;

std::uint32_t BigEndian32(const unsigned char* p) {
  return (static_cast<std::uint32_t>(p[0]) << 24) | (static_cast<std::uint32_t>(p[1]) << 16) |
         (static_cast<std::uint32_t>(p[2]) << 8) | static_cast<std::uint32_t>(p[3]);
}
}  // namespace

const wchar_t* PngHeaderRefusal(const unsigned char* bytes, std::size_t size, std::uint32_t maxSide) {
  if (bytes == nullptr || size < sizeof(kSignature)) return L"not a PNG file";
  for (std::size_t i = 0; i < sizeof(kSignature); ++i) {
    if (bytes[i] != kSignature[i]) return L"not a PNG file";
  }
  // The IHDR chunk must come first, with its 13 bytes of data (the file
  // must also hold the rest of them: bit depth, colour type and so on).
  if (size < kHeaderBytes + 5 + 4) return L"PNG header cut short";
  if (BigEndian32(bytes + 8) != 13 || bytes[12] != 'I' || bytes[13] != 'H' || bytes[14] != 'D' || bytes[15] != 'R') {
    return L"PNG header without IHDR";
  }
  const std::uint32_t width = BigEndian32(bytes + 16);
  const std::uint32_t height = BigEndian32(bytes + 20);
  if (width == 0 || height == 0) return L"PNG picture without pixels";
  if (width > maxSide || height > maxSide) return L"PNG picture too large";
  return nullptr;
}
