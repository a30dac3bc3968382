#pragma once
#include <string>

// A person's avatar file in the avatar folder is named by their identifier
// less its first two characters, with no extension added. Empty when the
// identifier has two characters or fewer: loading that fails, and the
// default avatar is shown.
std::wstring AvatarFileName(const std::wstring& identifier);
