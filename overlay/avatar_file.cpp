#include "overlay/avatar_file.h"

std::wstring AvatarFileName(const std::wstring& identifier) {
  return identifier.size() > 2 ? identifier.substr(2) : std::wstring();
}
