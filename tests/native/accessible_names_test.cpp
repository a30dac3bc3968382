#include "overlay/layouts/accessible_names.h"

#include <gtest/gtest.h>

#include <string>

#include "overlay/layouts/active_users_panel.h"
#include "overlay/layouts/confirm_leave_panel.h"
#include "overlay/layouts/conflict_panel.h"
#include "overlay/layouts/delete_panel.h"
#include "overlay/layouts/download_panel.h"
#include "overlay/layouts/error_message_panel.h"
#include "overlay/layouts/help_links.h"
#include "overlay/layouts/rename_move_panel.h"
#include "overlay/layouts/safe_to_edit_panel.h"
#include "overlay/layouts/status_overlay_layouts.h"

TEST(AccessibleNames, KeepsTheRoleNumbersOfActiveAccessibility) {
  EXPECT_EQ(kRolePane, 16);
  EXPECT_EQ(kRoleDialog, 18);
  EXPECT_EQ(kRoleLink, 30);
  EXPECT_EQ(kRoleStaticText, 41);
  EXPECT_EQ(kRolePushButton, 43);
  EXPECT_EQ(kPanelAccessibleRole, kRoleDialog);
  EXPECT_EQ(std::wstring(kButtonDefaultAction), L"Press");
}

TEST(AccessibleNames, GivesEachBadgeKindItsSentence) {
  EXPECT_EQ(std::wstring(BadgeAccessibleName(OverlayKind::None)), L"Filewell Sync");
  EXPECT_EQ(std::wstring(BadgeAccessibleName(OverlayKind::NoInternet)), L"No Internet Connection");
  EXPECT_EQ(std::wstring(BadgeAccessibleName(OverlayKind::Loading)), L"Filewell Sync is loading this file's status");
  EXPECT_EQ(std::wstring(BadgeAccessibleName(OverlayKind::SafeToEdit)),
            L"No other users are currently viewing or editing this file");
  EXPECT_EQ(std::wstring(BadgeAccessibleName(OverlayKind::Editing)), L"Another user is editing this file");
  EXPECT_EQ(std::wstring(BadgeAccessibleName(OverlayKind::DeletedOrMoved)),
            L"This file has been deleted, renamed or moved on the web");
  EXPECT_EQ(std::wstring(BadgeAccessibleName(OverlayKind::Conflict)), L"File conflict occurred");
  EXPECT_EQ(std::wstring(BadgeAccessibleName(OverlayKind::Download)), L"A newer version of this file is available");
  EXPECT_EQ(std::wstring(BadgeAccessibleName(OverlayKind::ViewingOnly)), L"Another user is viewing this file");
  EXPECT_EQ(std::wstring(BadgeAccessibleName(static_cast<OverlayKind>(42))), L"Filewell Sync");
}

TEST(AccessibleNames, MakesABadgeThatOpensAPanelAPushButtonAndAStripStaticText) {
  EXPECT_EQ(BadgeAccessibleRole(OverlayKind::None), kRoleStaticText);
  EXPECT_EQ(BadgeAccessibleRole(OverlayKind::NoInternet), kRoleStaticText);
  EXPECT_EQ(BadgeAccessibleRole(OverlayKind::Loading), kRoleStaticText);
  EXPECT_EQ(BadgeAccessibleRole(OverlayKind::SafeToEdit), kRolePushButton);
  EXPECT_EQ(BadgeAccessibleRole(OverlayKind::Editing), kRolePushButton);
  EXPECT_EQ(BadgeAccessibleRole(OverlayKind::DeletedOrMoved), kRolePushButton);
  EXPECT_EQ(BadgeAccessibleRole(OverlayKind::Conflict), kRolePushButton);
  EXPECT_EQ(BadgeAccessibleRole(OverlayKind::Download), kRolePushButton);
  EXPECT_EQ(BadgeAccessibleRole(OverlayKind::ViewingOnly), kRolePushButton);
}

TEST(AccessibleNames, NamesEachPanelByItsTitle) {
  EXPECT_EQ(PanelAccessibleName(ConflictPanelLayout()), L"File conflict occurred");
  EXPECT_EQ(PanelAccessibleName(DeletePanelLayout()), L"This file has been deleted");
  EXPECT_EQ(PanelAccessibleName(RenameMovePanelLayout(true, false, L"a.docx", L"b.docx")),
            L"This file has been renamed");
  EXPECT_EQ(PanelAccessibleName(RenameMovePanelLayout(false, true, L"C:\\a", L"C:\\b")),
            L"This file has been moved to a new location");
  EXPECT_EQ(PanelAccessibleName(DownloadPanelLayout(L"u1", L"Ann Lee", L"2026-03-01 10:15", false, false)),
            L"This file has been modified");
  EXPECT_EQ(PanelAccessibleName(SafeToEditPanelLayout(L"u1", L"Ann Lee", L"2026-03-01 10:15")),
            L"No active collaborators");
  EXPECT_EQ(PanelAccessibleName(ActiveUsersPanelLayout(L"", L"", L"", {{L"u1", L"Bo Chan"}}, {})),
            L"Another user is editing this file");
  EXPECT_EQ(PanelAccessibleName(ActiveUsersPanelLayout(L"", L"", L"", {}, {{L"u1", L"Bo Chan"}, {L"u2", L"Cy"}})),
            L"Multiple users are viewing this file");
}

TEST(AccessibleNames, NamesAConfirmationOrErrorByItsFirstSentence) {
  EXPECT_EQ(PanelAccessibleName(ConfirmLeavePanelLayout(false, true, false, false, false)),
            L"Filewell Sync will close this file and open the Resolve Conflict window.");
  EXPECT_EQ(PanelAccessibleName(ConfirmLeavePanelLayout(false, false, true, false, false)),
            L"To load the latest version of this file, click \"Reload\".");
  const std::wstring readOnly = PanelAccessibleName(ErrorMessagePanelLayout(true));
  EXPECT_EQ(readOnly.rfind(L"You can't make changes to this file, because the file has a read-only ", 0), 0u)
      << std::string(readOnly.begin(), readOnly.end());
  const std::wstring saving = PanelAccessibleName(ErrorMessagePanelLayout(false));
  EXPECT_EQ(saving.rfind(L"An error occurred while saving the file.", 0), 0u);
}

TEST(AccessibleNames, GivesNoNameToALayoutWithoutText) {
  EXPECT_EQ(PanelAccessibleName(MainOverlayLayout()), L"");
  EXPECT_EQ(PanelAccessibleName(PanelLayout{}), L"");
}

TEST(AccessibleNames, ReadsALinkAsItsShownText) {
  EXPECT_EQ(LinkAccessibleName(CollaborationWidgetLinkText()), L"Learn More");
  EXPECT_EQ(LinkAccessibleName(RolesAndPermissionsLinkText()), L"Learn more");
  EXPECT_EQ(LinkAccessibleName(L"Read <a href=\"x\">the guide</a> first"), L"Read the guide first");
  EXPECT_EQ(LinkAccessibleName(L"plain"), L"plain");
  EXPECT_EQ(LinkAccessibleName(L""), L"");
}
