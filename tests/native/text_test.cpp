#include <gtest/gtest.h>

#include "common/text.h"

TEST(Utf8, RoundTripsTextOfEveryLength) {
  const std::wstring text = L"report \u00e9t\u00e9 \u20ac \U0001F600.docx";
  EXPECT_EQ(FromUtf8(ToUtf8(text)), text);
}

TEST(Utf8, DecodesTheByteSequencesOfEachLength) {
  EXPECT_EQ(FromUtf8("a\xC3\xA9\xE2\x82\xAC"), L"a\u00e9\u20ac");
  EXPECT_EQ(FromUtf8("\xF0\x9F\x98\x80"), L"\U0001F600");
}

TEST(Utf8, ReplacesBrokenAndOverlongSequencesWithTheReplacementCharacter) {
  EXPECT_EQ(FromUtf8("a\xC3"), L"a\uFFFD");                 // cut short
  EXPECT_EQ(FromUtf8("\xC0\xAF"), L"\uFFFD\uFFFD");          // overlong "/"
  EXPECT_EQ(FromUtf8("\xED\xA0\x80"), L"\uFFFD\uFFFD\uFFFD");  // a surrogate
  EXPECT_EQ(FromUtf8("\xFFx"), L"\uFFFDx");
}

TEST(LowerAsciiInPlace, ChangesOnlyTheLettersAToZ) {
  std::wstring text = L"C:\\PROGRAM FILES\\WINWORD.EXE \u00c9";
  LowerAsciiInPlace(text);
  EXPECT_EQ(text, L"c:\\program files\\winword.exe \u00c9");
}
