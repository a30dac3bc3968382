#include "addin/badge_visibility_setting.h"

#include <windows.h>

#include "log/write_log.h"
#include "overlay/tick/badge_visibility_in_use.h"

namespace {
// The value as stored, whatever its type; a key or value that is not
// there, or that cannot be read, counts as missing.
StoredBadgeVisibility ReadStored(HKEY root, const wchar_t* key) {
  StoredBadgeVisibility stored;
  DWORD type = REG_NONE;
  // Room for any small value: a longer one is not a DWORD either.
  BYTE data[16] = {};
  DWORD size = sizeof(data);
  const LSTATUS status = RegGetValueW(root, key, kBadgeVisibilityValueName, RRF_RT_ANY | RRF_NOEXPAND, &type, data,
                                      &size);
  if (status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND) return stored;
  if (status == ERROR_MORE_DATA || (status == ERROR_SUCCESS && (type != REG_DWORD || size != sizeof(DWORD)))) {
    stored.found = StoredBadgeVisibility::Found::NotDword;
    return stored;
  }
  if (status != ERROR_SUCCESS) {
    WriteLog(LogLevel::Error, L"couldn't read badge visibility - " + std::to_wstring(status));
    return stored;
  }
  DWORD value = 0;
  CopyMemory(&value, data, sizeof(value));
  stored.found = StoredBadgeVisibility::Found::Dword;
  stored.value = value;
  return stored;
}
}  // namespace

BadgeVisibility ReadBadgeVisibilitySetting() {
  const BadgeVisibilityChoice choice =
      ChooseBadgeVisibility(ReadStored(HKEY_LOCAL_MACHINE, kBadgeVisibilityPolicyKey),
                            ReadStored(HKEY_CURRENT_USER, kBadgeVisibilityUserKey));
  WriteLog(choice.ignoredSomething ? LogLevel::Warning : LogLevel::Info, choice.logLine);
  UseBadgeVisibility(choice.setting);
  return choice.setting;
}
