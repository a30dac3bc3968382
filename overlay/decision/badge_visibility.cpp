#include "overlay/decision/badge_visibility.h"

namespace {
bool Usable(const StoredBadgeVisibility& stored) {
  return stored.found == StoredBadgeVisibility::Found::Dword && stored.value <= 2;
}

// Why a present value was passed over; empty for a usable or missing one.
std::wstring WhyIgnored(const StoredBadgeVisibility& stored) {
  switch (stored.found) {
    case StoredBadgeVisibility::Found::Missing: return std::wstring();
    case StoredBadgeVisibility::Found::NotDword: return L"not a REG_DWORD";
    case StoredBadgeVisibility::Found::Dword:
      return stored.value <= 2 ? std::wstring() : std::to_wstring(stored.value) + L" is not 0, 1 or 2";
  }
  return std::wstring();
}
}  // namespace

bool KindNeedsTheUser(OverlayKind kind) {
  switch (kind) {
    case OverlayKind::Editing:         // someone else is changing the file
    case OverlayKind::DeletedOrMoved:  // the file is gone or elsewhere on the web
    case OverlayKind::Conflict:
    case OverlayKind::Download:        // a newer version is there
      return true;
    // Offline, the add-in cannot know whether someone else is editing or a
    // newer version is waiting. With the badge only for news, no badge
    // would say "nothing for you" when that is not known: the strip stays.
    case OverlayKind::NoInternet:
      return true;
    // Loading passes by itself and asks nothing; safe to edit and viewing
    // only are good news with no decision in them.
    case OverlayKind::Loading:
    case OverlayKind::SafeToEdit:
    case OverlayKind::ViewingOnly:
    case OverlayKind::None:
      return false;
  }
  return false;
}

bool HoldsBackOverlays(BadgeVisibility setting, OverlayState state, bool panelOnScreen) {
  if (setting == BadgeVisibility::Always || panelOnScreen) return false;
  const std::optional<OverlayKind> kind = KindShownBy(state);
  if (!kind) return false;  // a confirmation or an error panel the user is in
  if (setting == BadgeVisibility::Never) return true;
  return !KindNeedsTheUser(*kind);
}

BadgeVisibilityChoice ChooseBadgeVisibility(const StoredBadgeVisibility& policy, const StoredBadgeVisibility& user) {
  BadgeVisibilityChoice choice;
  std::wstring source;
  if (Usable(policy)) {
    choice.setting = static_cast<BadgeVisibility>(policy.value);
    source = L"policy";
  } else if (Usable(user)) {
    choice.setting = static_cast<BadgeVisibility>(user.value);
    source = L"user setting";
  } else {
    source = L"default";
  }
  std::wstring ignored;
  const std::wstring policyProblem = WhyIgnored(policy);
  const std::wstring userProblem = WhyIgnored(user);
  if (!policyProblem.empty()) ignored += L"; policy value ignored: " + policyProblem;
  // The user's value is not looked at when a usable policy decides.
  if (!userProblem.empty() && !Usable(policy)) ignored += L"; user value ignored: " + userProblem;
  choice.ignoredSomething = !ignored.empty();
  choice.logLine = L"badge visibility = " + std::to_wstring(static_cast<std::uint32_t>(choice.setting)) + L" (" +
                   source + ignored + L")";
  return choice;
}
