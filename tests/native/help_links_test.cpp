#include "overlay/help_links.h"

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
