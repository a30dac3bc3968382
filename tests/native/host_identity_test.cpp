#include <gtest/gtest.h>

#include "addin/host_identity.h"

TEST(IdentifyHost, FindsEachHostInItsUsualOfficeFolder) {
  EXPECT_EQ(IdentifyHost(L"c:\\program files\\microsoft office\\root\\office16\\winword.exe"), OfficeHost::Word);
  EXPECT_EQ(IdentifyHost(L"c:\\program files\\microsoft office\\root\\office16\\excel.exe"), OfficeHost::Excel);
  EXPECT_EQ(IdentifyHost(L"c:\\program files\\microsoft office\\root\\office16\\powerpnt.exe"),
            OfficeHost::PowerPoint);
}

TEST(IdentifyHost, LeavesOutlookIdle) {
  EXPECT_EQ(IdentifyHost(L"c:\\program files\\microsoft office\\root\\office16\\outlook.exe"), OfficeHost::None);
}

TEST(IdentifyHost, TakesWordFirstWhenThePathHoldsBothWordAndExcel) {
  EXPECT_EQ(IdentifyHost(L"c:\\tools\\excel\\winword.exe"), OfficeHost::Word);
  EXPECT_EQ(IdentifyHost(L"c:\\word\\excel.exe"), OfficeHost::Word);
}

TEST(IdentifyHost, SearchesFolderNamesToo) {
  EXPECT_EQ(IdentifyHost(L"c:\\users\\ann\\passwords\\outlook.exe"), OfficeHost::Word);
}

TEST(IdentifyHost, ComparesOnlyTheLowerCasedText) {
  // The caller lower-cases the path first; upper case here is not found.
  EXPECT_EQ(IdentifyHost(L"C:\\OFFICE\\WINWORD.EXE"), OfficeHost::None);
}
