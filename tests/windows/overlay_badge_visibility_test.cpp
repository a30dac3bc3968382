// The BadgeVisibility setting end to end, in the simulated Word with the
// simulated sync app: what the user sees under each value, that a panel
// the user has open stays, and that the sync app receives the very same
// bytes whatever the value.
#include <windows.h>

#include <gtest/gtest.h>

#include "addin/badge_visibility_setting.h"
#include "common/text.h"
#include "overlay/tick/badge_visibility_in_use.h"
#include "overlay/windows/overlay_window_states.h"
#include "tests/windows/flow_test_support.h"

namespace {
const wchar_t kPolicyKey[] = L"Software\\Policies\\QelvoFilewell\\OfficeAddin";
const wchar_t kUserKey[] = L"Software\\QelvoFilewell\\OfficeAddin";

// Bo views the file; from the second request on it is also in conflict.
const wchar_t kViewedThenConflict[] =
    L"set all_viewers_quid=u1bo\n"
    L"set all_viewers_names=Bo Chan\n"
    L"after 1\n"
    L"set is_conflict_present=true\n";
// Bo edits the file; from the second request on Bo only views it.
const wchar_t kEditedThenViewed[] =
    L"set all_editors_quid=u1bo\n"
    L"set all_editors_names=Bo Chan\n"
    L"after 1\n"
    L"unset all_editors_quid\n"
    L"unset all_editors_names\n"
    L"set all_viewers_quid=u1bo\n"
    L"set all_viewers_names=Bo Chan\n";

bool OnScreen(HWND window) { return window != nullptr && IsWindowVisible(window); }

void SetDword(HKEY root, const wchar_t* key, DWORD value) {
  ASSERT_EQ(RegSetKeyValueW(root, key, L"BadgeVisibility", REG_DWORD, &value, sizeof(value)), ERROR_SUCCESS);
}

class BadgeVisibilitySetting : public testing::Test {
 protected:
  void TearDown() override {
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kPolicyKey, L"BadgeVisibility");
    RegDeleteKeyValueW(HKEY_CURRENT_USER, kUserKey, L"BadgeVisibility");
    UseBadgeVisibility(BadgeVisibility::Always);
  }

  // The user opens a synced file whose story the sync app tells, and the
  // sync app's first answer reaches the screen.
  void OpenSynced(const std::wstring& story, Caller caller = {}) {
    TRACE_CALLER(caller);
    path_ = flow_.PathOf(L"Visibility.docx");
    ASSERT_TRUE(flow_.StartSyncApp(SyncedFileScenario(path_) + story));
    ASSERT_NE(flow_.Open(L"Visibility.docx"), nullptr);
    flow_.CycleAndTick();
  }

  void ExpectOnScreen(bool badge, bool panel, Caller caller = {}) {
    TRACE_CALLER(caller);
    EXPECT_EQ(OnScreen(OfficeFlow::BadgeOf(path_)), badge);
    EXPECT_EQ(OnScreen(OfficeFlow::PanelOf(path_)), panel) << DescribePanel(OfficeFlow::PanelOf(path_));
  }

  // The kind the file's badge shows (-1 without an overlay state).
  int KindShown() const {
    const SharedWindowState state = FindWindowState(path_);
    return state ? state->overlayKind : -1;
  }

  // The two requests of these stories, byte for byte: the same under every
  // value of the setting.
  void ExpectTheTwoUsualRequests(Caller caller = {}) {
    TRACE_CALLER(caller);
    RequestFields first;
    first.fileComboId = L"";
    const std::vector<std::string> expected = {MessageBytes(ExpectedRequest(path_, first, SimHost::Word)),
                                               MessageBytes(ExpectedRequest(path_, {}, SimHost::Word))};
    EXPECT_EQ(flow_.RawRequests(), expected);
  }

  OfficeFlow flow_{SimHost::Word};
  std::wstring path_;
};
}  // namespace

TEST_F(BadgeVisibilitySetting, AlwaysShowsViewingOnlyAndTheConflict) {
  SetDword(HKEY_CURRENT_USER, kUserKey, 0);
  EXPECT_EQ(ReadBadgeVisibilitySetting(), BadgeVisibility::Always);
  OpenSynced(kViewedThenConflict);
  ExpectOnScreen(true, true);
  flow_.CycleAndTick();
  ExpectOnScreen(true, true);
  EXPECT_EQ(KindShown(), static_cast<std::int32_t>(OverlayKind::Conflict));
  ExpectTheTwoUsualRequests();
}

TEST_F(BadgeVisibilitySetting, WhenNeededHidesViewingOnlyAndShowsTheConflict) {
  SetDword(HKEY_CURRENT_USER, kUserKey, 1);
  EXPECT_EQ(ReadBadgeVisibilitySetting(), BadgeVisibility::WhenNeeded);
  EXPECT_EQ(OfficeFlow::Messages().back(), "badge visibility = 1 (user setting)");
  OpenSynced(kViewedThenConflict);
  ExpectOnScreen(false, false);
  flow_.CycleAndTick();
  ExpectOnScreen(true, true);
  EXPECT_EQ(KindShown(), static_cast<std::int32_t>(OverlayKind::Conflict));
  ExpectTheTwoUsualRequests();
}

TEST_F(BadgeVisibilitySetting, NeverShowsNothingAndThePolicyWinsOverTheUsersValue) {
  SetDword(HKEY_CURRENT_USER, kUserKey, 0);
  SetDword(HKEY_LOCAL_MACHINE, kPolicyKey, 2);
  EXPECT_EQ(ReadBadgeVisibilitySetting(), BadgeVisibility::Never);
  EXPECT_EQ(OfficeFlow::Messages().back(), "badge visibility = 2 (policy)");
  OpenSynced(kViewedThenConflict);
  ExpectOnScreen(false, false);
  flow_.CycleAndTick();
  ExpectOnScreen(false, false);
  ExpectTheTwoUsualRequests();
}

TEST_F(BadgeVisibilitySetting, WhenNeededLeavesAPanelTheUserHasOpen) {
  SetDword(HKEY_CURRENT_USER, kUserKey, 1);
  ReadBadgeVisibilitySetting();
  OpenSynced(kEditedThenViewed);
  ExpectOnScreen(true, true);
  // Bo stops editing while the user reads the panel: it stays, now saying
  // who views the file.
  flow_.CycleAndTick();
  ExpectOnScreen(true, true);
  EXPECT_EQ(KindShown(), static_cast<std::int32_t>(OverlayKind::ViewingOnly));
  // The user clicks the badge to close the panel: with nothing left that
  // needs them, the badge goes at the next tick.
  HWND badge = OfficeFlow::BadgeOf(path_);
  SendMessageW(badge, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, 10));
  SendMessageW(badge, WM_LBUTTONUP, 0, MAKELPARAM(10, 10));
  ExpectOnScreen(true, false);
  flow_.Tick();
  ExpectOnScreen(false, false);
  ExpectTheTwoUsualRequests();
}

TEST_F(BadgeVisibilitySetting, AValueOfTheWrongTypeFallsBackToAlways) {
  ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, kUserKey, L"BadgeVisibility", REG_SZ, L"2", 4), ERROR_SUCCESS);
  UseBadgeVisibility(BadgeVisibility::Never);
  EXPECT_EQ(ReadBadgeVisibilitySetting(), BadgeVisibility::Always);
  EXPECT_EQ(OfficeFlow::Messages().back(), "badge visibility = 0 (default; user value ignored: not a REG_DWORD)");
  EXPECT_EQ(BadgeVisibilityInUse(), BadgeVisibility::Always);
}
