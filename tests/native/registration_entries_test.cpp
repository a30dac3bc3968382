#include <gtest/gtest.h>

#include "addin/registration_entries.h"

TEST(RegistrationEntries, ListTheClassKeysWithTheModulePath) {
  const auto values = ClassRootValues(L"C:\\Addin\\QSyncMSOfficeAddin.dll");
  ASSERT_EQ(values.size(), 11u);
  EXPECT_EQ(values[0].key, L"QelvoFilewellSync.OfficeAddin.1");
  EXPECT_EQ(values[0].text, L"Connect class");
  EXPECT_EQ(values[3].key, L"QelvoFilewellSync.OfficeAddin\\CurVer");
  EXPECT_EQ(values[3].text, L"QelvoFilewellSync.OfficeAddin.1");
  EXPECT_EQ(values[7].key, L"CLSID\\{A1763C80-EE08-402F-9099-AF98401AA069}\\InprocServer32");
  EXPECT_EQ(values[7].text, L"C:\\Addin\\QSyncMSOfficeAddin.dll");
  EXPECT_EQ(values[8].name, L"ThreadingModel");
  EXPECT_EQ(values[8].text, L"Apartment");
}

TEST(RegistrationEntries, GiveEachHostItsAddinKeyWithLoadBehaviorThree) {
  const auto values = OfficeAddinValues();
  ASSERT_EQ(values.size(), 9u);
  EXPECT_EQ(values[0].key, L"Software\\Microsoft\\Office\\Word\\Addins\\QelvoFilewellSync.OfficeAddin");
  EXPECT_EQ(values[3].key, L"Software\\Microsoft\\Office\\Excel\\Addins\\QelvoFilewellSync.OfficeAddin");
  EXPECT_EQ(values[6].key, L"Software\\Microsoft\\Office\\PowerPoint\\Addins\\QelvoFilewellSync.OfficeAddin");
  EXPECT_EQ(values[1].name, L"FriendlyName");
  EXPECT_EQ(values[1].text, L"Qelvo Filewell Sync Add-in for Microsoft Office");
  EXPECT_TRUE(values[2].isDword);
  EXPECT_EQ(values[2].number, 3u);
}
