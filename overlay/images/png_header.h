#pragma once
// What is checked of a picture file before GDI+ decodes it: the decoder
// only ever sees a PNG whose declared size is small, so a renamed JPEG, a
// truncated header or a 5000 × 5000 picture (a hundred megabytes once
// decoded, for a 40 × 40 avatar) never reaches it.
#include <cstddef>
#include <cstdint>

// No overlay picture is larger than this on either side.
inline constexpr std::uint32_t kMaxPictureSide = 1024;

// Null when the bytes start with the PNG signature followed by a complete
// IHDR chunk (length 13) whose width and height are each 1 to maxSide;
// otherwise why not, for the log.
const wchar_t* PngHeaderRefusal(const unsigned char* bytes, std::size_t size, std::uint32_t maxSide = kMaxPictureSide);
