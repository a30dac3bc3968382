#pragma once
#include <cstdint>
#include <string>
#include <string_view>

// Widens a narrow text one character at a time, the way exception texts
// are put into log lines (no code page conversion).
std::wstring Widen(const char* text);

// UTF-8 bytes of a wide text (UTF-16 on Windows, UTF-32 elsewhere).
// Unpaired surrogates become U+FFFD.
std::string ToUtf8(std::wstring_view text);

// Wide text of UTF-8 bytes (UTF-16 on Windows, UTF-32 elsewhere). Bytes
// that do not form a character become U+FFFD.
std::wstring FromUtf8(std::string_view text);

// Lower-cases A to Z only, like the C library's tolower in the "C" locale.
void LowerAsciiInPlace(std::wstring& text);
