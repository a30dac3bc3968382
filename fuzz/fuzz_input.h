#pragma once
// Fuzz bytes read as the pipe delivers the answer: UTF-16LE units, an odd
// last byte dropped.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

inline std::wstring UnitsFromBytes(const std::uint8_t* data, std::size_t size) {
  std::wstring text;
  text.reserve(size / 2);
  for (std::size_t i = 0; i + 1 < size; i += 2) {
    text.push_back(static_cast<wchar_t>(data[i] | (data[i + 1] << 8)));
  }
  return text;
}

// Stops the run with a message libFuzzer shows next to the crashing input.
#define FUZZ_CHECK(condition)                                                       \
  do {                                                                              \
    if (!(condition)) {                                                             \
      std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition); \
      std::abort();                                                                 \
    }                                                                               \
  } while (0)
