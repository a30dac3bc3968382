#pragma once
// Texts that come from the sync app's answer (people's names, times, the
// old and new place of a renamed or moved file) are another process's
// word. Before one reaches a control it is made safe to show: no control
// characters (a CR/LF would break the one-line fields, a NUL would cut the
// text), no bidirectional overrides or isolates (U+202A-U+202E,
// U+2066-U+2069, which can make "gpj.exe" read as "exe.jpg"), and no more
// characters than the field can show, so a 1 MB name costs nothing.
#include <cstddef>
#include <string>
#include <string_view>

// A person's name: 256 characters fill the 305-pixel name field many times
// over; beyond that nobody reads on.
inline constexpr std::size_t kShownNameMaxLength = 256;
// A time ("Modified on ..."): any real date and time fits in 64.
inline constexpr std::size_t kShownTimeMaxLength = 64;
// A file's old or new name or place in the rename/move boxes: Windows'
// long paths reach 32,767 characters, but 1,024 scroll far enough for any
// place a user would recognise.
inline constexpr std::size_t kShownPathMaxLength = 1024;

// The text with every control character (U+0000-U+001F, U+007F-U+009F)
// and bidirectional override or isolate removed. When what is left is
// longer than maxLength it is cut to maxLength - 1 units followed by "…"
// (U+2026), so the reader sees that it was cut; a cut never splits a
// surrogate pair. maxLength 0 gives an empty text.
std::wstring CleanShownText(std::wstring_view text, std::size_t maxLength);
