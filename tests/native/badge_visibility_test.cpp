#include "overlay/decision/badge_visibility.h"

#include <gtest/gtest.h>

#include <string>

namespace {
using Found = StoredBadgeVisibility::Found;

StoredBadgeVisibility Dword(std::uint32_t value) { return {Found::Dword, value}; }
const StoredBadgeVisibility kMissing{};
const StoredBadgeVisibility kNotDword{Found::NotDword, 0xdeadbeef};

// What each state of the decision table does under each setting, with no
// panel on screen: true when its overlays are held back.
struct Row {
  OverlayState state;
  bool heldBackWhenNeeded;
  bool heldBackNever;
};
const Row kRows[] = {
    {OverlayState::NoInternet, false, true},
    {OverlayState::Loading, true, true},
    {OverlayState::Delete, false, true},
    {OverlayState::Conflict, false, true},
    {OverlayState::ConflictConfirm, false, false},
    {OverlayState::SkipDownloadTick, false, false},
    {OverlayState::ReloadConfirm, false, false},
    {OverlayState::Download, false, true},
    {OverlayState::SkipRenameMoveTick, false, false},
    {OverlayState::RenameMove, false, true},
    {OverlayState::RenameMoveConfirm, false, false},
    {OverlayState::Editing, false, true},
    {OverlayState::ViewingOnly, true, true},
    {OverlayState::SafeToEdit, true, true},
};
}  // namespace

TEST(BadgeVisibility, KeepsTheNumbersTheRegistryHolds) {
  EXPECT_EQ(static_cast<std::uint32_t>(BadgeVisibility::Always), 0u);
  EXPECT_EQ(static_cast<std::uint32_t>(BadgeVisibility::WhenNeeded), 1u);
  EXPECT_EQ(static_cast<std::uint32_t>(BadgeVisibility::Never), 2u);
}

TEST(BadgeVisibility, NamesTheKeysAndTheValue) {
  EXPECT_EQ(std::wstring(kBadgeVisibilityPolicyKey), L"Software\\Policies\\QelvoFilewell\\OfficeAddin");
  EXPECT_EQ(std::wstring(kBadgeVisibilityUserKey), L"Software\\QelvoFilewell\\OfficeAddin");
  EXPECT_EQ(std::wstring(kBadgeVisibilityValueName), L"BadgeVisibility");
}

TEST(BadgeVisibility, SaysWhichKindsNeedTheUser) {
  EXPECT_FALSE(KindNeedsTheUser(OverlayKind::None));
  EXPECT_TRUE(KindNeedsTheUser(OverlayKind::NoInternet));
  EXPECT_FALSE(KindNeedsTheUser(OverlayKind::Loading));
  EXPECT_FALSE(KindNeedsTheUser(OverlayKind::SafeToEdit));
  EXPECT_TRUE(KindNeedsTheUser(OverlayKind::Editing));
  EXPECT_TRUE(KindNeedsTheUser(OverlayKind::DeletedOrMoved));
  EXPECT_TRUE(KindNeedsTheUser(OverlayKind::Conflict));
  EXPECT_TRUE(KindNeedsTheUser(OverlayKind::Download));
  EXPECT_FALSE(KindNeedsTheUser(OverlayKind::ViewingOnly));
  EXPECT_FALSE(KindNeedsTheUser(static_cast<OverlayKind>(99)));
}

TEST(BadgeVisibility, AlwaysHoldsNothingBack) {
  for (const Row& row : kRows) {
    EXPECT_FALSE(HoldsBackOverlays(BadgeVisibility::Always, row.state, false)) << row.state;
  }
}

TEST(BadgeVisibility, WhenNeededHoldsBackOnlyTheKindsThatAskNothing) {
  for (const Row& row : kRows) {
    EXPECT_EQ(HoldsBackOverlays(BadgeVisibility::WhenNeeded, row.state, false), row.heldBackWhenNeeded) << row.state;
  }
}

TEST(BadgeVisibility, NeverHoldsBackEveryKindButLeavesAConfirmationOrErrorInPlace) {
  for (const Row& row : kRows) {
    EXPECT_EQ(HoldsBackOverlays(BadgeVisibility::Never, row.state, false), row.heldBackNever) << row.state;
  }
}

TEST(BadgeVisibility, NeverTakesAwayAPanelTheUserHasOpen) {
  for (const Row& row : kRows) {
    EXPECT_FALSE(HoldsBackOverlays(BadgeVisibility::WhenNeeded, row.state, true)) << row.state;
    EXPECT_FALSE(HoldsBackOverlays(BadgeVisibility::Never, row.state, true)) << row.state;
  }
}

TEST(BadgeVisibility, DefaultsToAlwaysWhenNothingIsSet) {
  const BadgeVisibilityChoice choice = ChooseBadgeVisibility(kMissing, kMissing);
  EXPECT_EQ(choice.setting, BadgeVisibility::Always);
  EXPECT_FALSE(choice.ignoredSomething);
  EXPECT_EQ(choice.logLine, L"badge visibility = 0 (default)");
}

TEST(BadgeVisibility, TakesTheUsersValue) {
  const BadgeVisibilityChoice choice = ChooseBadgeVisibility(kMissing, Dword(1));
  EXPECT_EQ(choice.setting, BadgeVisibility::WhenNeeded);
  EXPECT_FALSE(choice.ignoredSomething);
  EXPECT_EQ(choice.logLine, L"badge visibility = 1 (user setting)");
}

TEST(BadgeVisibility, ThePolicyWinsOverTheUsersValue) {
  const BadgeVisibilityChoice choice = ChooseBadgeVisibility(Dword(2), Dword(0));
  EXPECT_EQ(choice.setting, BadgeVisibility::Never);
  EXPECT_FALSE(choice.ignoredSomething);
  EXPECT_EQ(choice.logLine, L"badge visibility = 2 (policy)");
}

TEST(BadgeVisibility, APolicyOfZeroStillWins) {
  const BadgeVisibilityChoice choice = ChooseBadgeVisibility(Dword(0), Dword(2));
  EXPECT_EQ(choice.setting, BadgeVisibility::Always);
  EXPECT_EQ(choice.logLine, L"badge visibility = 0 (policy)");
}

TEST(BadgeVisibility, AnUnusablePolicyFallsBackToTheUsersValue) {
  const BadgeVisibilityChoice choice = ChooseBadgeVisibility(kNotDword, Dword(2));
  EXPECT_EQ(choice.setting, BadgeVisibility::Never);
  EXPECT_TRUE(choice.ignoredSomething);
  EXPECT_EQ(choice.logLine, L"badge visibility = 2 (user setting; policy value ignored: not a REG_DWORD)");
}

TEST(BadgeVisibility, AnOutOfRangeValueFallsBackToAlways) {
  const BadgeVisibilityChoice choice = ChooseBadgeVisibility(Dword(3), Dword(0xffffffffu));
  EXPECT_EQ(choice.setting, BadgeVisibility::Always);
  EXPECT_TRUE(choice.ignoredSomething);
  EXPECT_EQ(choice.logLine,
            L"badge visibility = 0 (default; policy value ignored: 3 is not 0, 1 or 2; user value ignored: "
            L"4294967295 is not 0, 1 or 2)");
}

TEST(BadgeVisibility, AUsersValueOfTheWrongTypeFallsBackToAlways) {
  const BadgeVisibilityChoice choice = ChooseBadgeVisibility(kMissing, kNotDword);
  EXPECT_EQ(choice.setting, BadgeVisibility::Always);
  EXPECT_TRUE(choice.ignoredSomething);
  EXPECT_EQ(choice.logLine, L"badge visibility = 0 (default; user value ignored: not a REG_DWORD)");
}

TEST(BadgeVisibility, DoesNotMentionAUsersValueThatAUsablePolicyOverrules) {
  const BadgeVisibilityChoice choice = ChooseBadgeVisibility(Dword(1), kNotDword);
  EXPECT_EQ(choice.setting, BadgeVisibility::WhenNeeded);
  EXPECT_FALSE(choice.ignoredSomething);
  EXPECT_EQ(choice.logLine, L"badge visibility = 1 (policy)");
}
