#pragma once
// When the badge is drawn at all: always (as it always was), only when
// something needs the user, or never. Chosen per user (HKCU) or by an
// administrator's policy (HKLM), read once at connection. Only what is
// drawn changes: the sync app hears exactly the same requests.
#include <cstdint>
#include <string>

#include "overlay/decision/overlay_decision.h"
#include "overlay/decision/overlay_kind.h"

enum class BadgeVisibility : std::uint32_t {
  Always = 0,
  WhenNeeded = 1,
  Never = 2,
};

// Where the setting lives: the administrator's policy key wins over the
// user's own key.
inline constexpr wchar_t kBadgeVisibilityPolicyKey[] = L"Software\\Policies\\QelvoFilewell\\OfficeAddin";
inline constexpr wchar_t kBadgeVisibilityUserKey[] = L"Software\\QelvoFilewell\\OfficeAddin";
inline constexpr wchar_t kBadgeVisibilityValueName[] = L"BadgeVisibility";

// Whether a badge of this kind tells the user about something they have to
// know or decide: someone else editing, a newer version, a conflict, a
// rename, move or deletion, or being offline (see the .cpp for why).
bool KindNeedsTheUser(OverlayKind kind);

// Whether the tick keeps a file's badge and panel off screen this time,
// instead of carrying out `state`. Never while the user has the file's
// panel open, nor for the states that carry on something the user started
// (the confirmations) or keep an error in front of them (the skipped
// ticks): nothing vanishes under the user's hand because of this setting.
bool HoldsBackOverlays(BadgeVisibility setting, OverlayState state, bool panelOnScreen);

// One registry value as it was found.
struct StoredBadgeVisibility {
  enum class Found { Missing, NotDword, Dword };
  Found found = Found::Missing;
  std::uint32_t value = 0;  // meaningful for Dword only
};

struct BadgeVisibilityChoice {
  BadgeVisibility setting = BadgeVisibility::Always;
  // True when a value was present but unusable: the line is a warning.
  bool ignoredSomething = false;
  // The one log line that says what was chosen and why.
  std::wstring logLine;
};

// The policy's value when it is usable, else the user's, else Always.
// A value that is not a REG_DWORD or is above 2 is ignored as if absent,
// and the line says so.
BadgeVisibilityChoice ChooseBadgeVisibility(const StoredBadgeVisibility& policy, const StoredBadgeVisibility& user);
