#pragma once
#include <cstddef>
#include <string>

// A person's avatar file in the avatar folder is named by their identifier
// less its first two characters, with no extension added. Empty when the
// identifier has two characters or fewer: loading that fails, and the
// default avatar is shown.
std::wstring AvatarFileName(const std::wstring& identifier);

// The identifier comes from the sync app's answer, so the name is only
// used when it is one plain file name of the avatar folder.
inline constexpr std::size_t kAvatarFileNameMaxLength = 128;

// Null when `fileName` may name a file in the avatar folder; otherwise why
// not, for the log: empty, longer than kAvatarFileNameMaxLength, holding a
// path separator or drive colon, "..", a control character or a character
// Windows does not allow in names (< > " | ? *), ending in a dot or blank
// (Windows drops those and would open another file), or a reserved device
// name (CON, PRN, AUX, NUL, COM1-COM9, LPT1-LPT9, CONIN$, CONOUT$, also
// with an extension such as "CON.png" and in any case).
const wchar_t* AvatarFileNameRefusal(const std::wstring& fileName);
