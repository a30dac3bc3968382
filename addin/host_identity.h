#pragma once
#include <string_view>

#include "common/office_app.h"

// Which host a lower-cased executable path belongs to: the first of "word",
// "excel", "powerpnt" found anywhere in the path, folders included. The
// search is deliberately loose (a folder named "passwords" reads as Word).
OfficeHost IdentifyHost(std::wstring_view lowerCasePath);
