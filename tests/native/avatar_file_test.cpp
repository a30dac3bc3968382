#include "overlay/avatar_file.h"

#include <gtest/gtest.h>

TEST(AvatarFileName, DropsTheFirstTwoCharactersOfTheIdentifier) {
  EXPECT_EQ(AvatarFileName(L"u-8f3a2c"), L"8f3a2c");
  EXPECT_EQ(AvatarFileName(L"abc"), L"c");
}

TEST(AvatarFileName, AddsNoExtension) { EXPECT_EQ(AvatarFileName(L"u-ann.lee"), L"ann.lee"); }

TEST(AvatarFileName, IsEmptyForAnIdentifierOfTwoCharactersOrFewer) {
  EXPECT_EQ(AvatarFileName(L"ab"), L"");
  EXPECT_EQ(AvatarFileName(L"a"), L"");
  EXPECT_EQ(AvatarFileName(L""), L"");
}
