#include "overlay/layouts/help_links.h"

#include <gtest/gtest.h>

#include <string>

TEST(HelpLinks, PointAtTheQelvoHelpCentre) { EXPECT_EQ(std::wstring(kHelpHost), L"https://help.qelvo.com"); }

TEST(HelpLinks, LinkTheCollaborationWidgetArticleAsLearnMore) {
  EXPECT_EQ(CollaborationWidgetLinkText(),
            L"<a href=\"https://help.qelvo.com/portal/kb/filewell/sync/filewell-sync/articles/"
            L"track-live-user-activity-in-ms-office-files-using-filewell-collaboration-widget\">Learn More</a>");
}

TEST(HelpLinks, LinkTheRolesAndPermissionsArticleAsLearnMoreInLowerCase) {
  EXPECT_EQ(RolesAndPermissionsLinkText(),
            L"<a href=\"https://help.qelvo.com/portal/kb/articles/team-folder-roles-and-permissions\">Learn more</a>");
}

TEST(HelpLinks, KnowTheirOwnAddressesExactly) {
  EXPECT_TRUE(IsHelpLinkAddress(
      L"https://help.qelvo.com/portal/kb/filewell/sync/filewell-sync/articles/"
      L"track-live-user-activity-in-ms-office-files-using-filewell-collaboration-widget"));
  EXPECT_TRUE(IsHelpLinkAddress(L"https://help.qelvo.com/portal/kb/articles/team-folder-roles-and-permissions"));
}

TEST(HelpLinks, RefuseAnyOtherAddress) {
  EXPECT_FALSE(IsHelpLinkAddress(L""));
  EXPECT_FALSE(IsHelpLinkAddress(L"https://help.qelvo.com"));
  EXPECT_FALSE(IsHelpLinkAddress(L"https://help.qelvo.com/portal/kb/articles/team-folder-roles-and-permissions/"));
  EXPECT_FALSE(IsHelpLinkAddress(L"https://help.qelvo.com.evil.example/portal/kb/articles/team-folder-roles-and-permissions"));
  EXPECT_FALSE(IsHelpLinkAddress(L"HTTPS://HELP.QELVO.COM/portal/kb/articles/team-folder-roles-and-permissions"));
  EXPECT_FALSE(IsHelpLinkAddress(L"C:\\Windows\\System32\\calc.exe"));
  EXPECT_FALSE(IsHelpLinkAddress(L"file:///C:/Windows/System32/calc.exe"));
}
