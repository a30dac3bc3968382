#include "overlay/images/avatar_file.h"

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

namespace {
std::wstring Verdict(const std::wstring& fileName) {
  const wchar_t* refusal = AvatarFileNameRefusal(fileName);
  return refusal ? refusal : L"(accepted)";
}
}  // namespace

TEST(AvatarFileNameRefusal, AcceptsAPlainName) {
  EXPECT_EQ(Verdict(L"8f3a2c"), L"(accepted)");
  EXPECT_EQ(Verdict(L"ann.lee"), L"(accepted)");
  EXPECT_EQ(Verdict(L"bo"), L"(accepted)");
  EXPECT_EQ(Verdict(L"Zoë_42-x.png"), L"(accepted)");
  EXPECT_EQ(Verdict(L"CONSOLE"), L"(accepted)");
  EXPECT_EQ(Verdict(L"COM10"), L"(accepted)");
  EXPECT_EQ(Verdict(L"LPT"), L"(accepted)");
  EXPECT_EQ(Verdict(L"x.CON"), L"(accepted)");
}

TEST(AvatarFileNameRefusal, RefusesAnEmptyName) { EXPECT_EQ(Verdict(L""), L"empty name"); }

TEST(AvatarFileNameRefusal, AcceptsOneHundredTwentyEightCharactersAndNoMore) {
  EXPECT_EQ(kAvatarFileNameMaxLength, 128u);
  EXPECT_EQ(Verdict(std::wstring(128, L'a')), L"(accepted)");
  EXPECT_EQ(Verdict(std::wstring(129, L'a')), L"name too long");
  EXPECT_EQ(Verdict(std::wstring(1024 * 1024, L'a')), L"name too long");
}

TEST(AvatarFileNameRefusal, RefusesSeparatorsAndDrives) {
  EXPECT_EQ(Verdict(L"..\\..\\Windows\\win.ini"), L"path separator or drive in name");
  EXPECT_EQ(Verdict(L"a\\b"), L"path separator or drive in name");
  EXPECT_EQ(Verdict(L"a/b"), L"path separator or drive in name");
  EXPECT_EQ(Verdict(L"C:x"), L"path separator or drive in name");
  EXPECT_EQ(Verdict(L"ann:stream"), L"path separator or drive in name");
  EXPECT_EQ(Verdict(L"\\\\server\\share\\x.png"), L"path separator or drive in name");
}

TEST(AvatarFileNameRefusal, RefusesTheParentFolder) {
  EXPECT_EQ(Verdict(L".."), L"parent folder in name");
  EXPECT_EQ(Verdict(L"..ann"), L"parent folder in name");
  EXPECT_EQ(Verdict(L"ann..png"), L"parent folder in name");
}

TEST(AvatarFileNameRefusal, RefusesControlCharacters) {
  EXPECT_EQ(Verdict(L"ann\r\n"), L"control character in name");
  EXPECT_EQ(Verdict(std::wstring(L"ann\0.png", 8)), L"control character in name");
  EXPECT_EQ(Verdict(L"a\tb"), L"control character in name");
  EXPECT_EQ(Verdict(L"a\u007Fb"), L"control character in name");
  EXPECT_EQ(Verdict(L"a\u0085b"), L"control character in name");
}

TEST(AvatarFileNameRefusal, RefusesCharactersWindowsDoesNotAllowInNames) {
  for (const wchar_t* name : {L"a<b", L"a>b", L"a\"b", L"a|b", L"a?b", L"a*"}) {
    EXPECT_EQ(Verdict(name), L"character not allowed in file names") << name;
  }
}

TEST(AvatarFileNameRefusal, RefusesTrailingDotsAndBlanks) {
  EXPECT_EQ(Verdict(L"ann."), L"name ends in a dot or blank");
  EXPECT_EQ(Verdict(L"ann "), L"name ends in a dot or blank");
  EXPECT_EQ(Verdict(L"."), L"name ends in a dot or blank");
}

TEST(AvatarFileNameRefusal, RefusesReservedDeviceNamesInAnyCaseAndWithAnExtension) {
  for (const wchar_t* name : {L"CON", L"con", L"Prn", L"AUX", L"NUL", L"nul.png", L"CON.png", L"CON .png",
                              L"COM1", L"com9", L"LPT1", L"lpt9.txt", L"COM0", L"CONIN$", L"conout$",
                              L"COM\u00B9", L"LPT\u00B3.png", L"NUL.tar.gz"}) {
    EXPECT_EQ(Verdict(name), L"reserved device name") << name;
  }
}
