#include "overlay/layouts/shown_text.h"

#include <gtest/gtest.h>

#include <string>

TEST(CleanShownText, LeavesAnOrdinaryNameAsItIs) {
  EXPECT_EQ(CleanShownText(L"Ann Lee-O'Brien & Co. (Zürich) 李", 256), L"Ann Lee-O'Brien & Co. (Zürich) 李");
}

TEST(CleanShownText, RemovesCarriageReturnLineFeedTabAndNul) {
  EXPECT_EQ(CleanShownText(std::wstring(L"Ann\r\nLee\t\0X", 12), 256), L"AnnLeeX");
}

TEST(CleanShownText, RemovesEveryC0AndC1ControlAndDelete) {
  std::wstring controls;
  for (wchar_t c = 0; c <= 0x1F; ++c) controls += c;
  for (wchar_t c = 0x7F; c <= 0x9F; ++c) controls += c;
  EXPECT_EQ(CleanShownText(L"a" + controls + L"b", 256), L"ab");
  // The neighbours of the ranges stay.
  EXPECT_EQ(CleanShownText(L" ~\u00A0", 256), L" ~\u00A0");
}

TEST(CleanShownText, RemovesBidirectionalOverridesAndIsolates) {
  // "invoice\u202Egpj.exe" would read as "invoiceexe.jpg".
  EXPECT_EQ(CleanShownText(L"invoice\u202Egpj.exe", 256), L"invoicegpj.exe");
  EXPECT_EQ(CleanShownText(L"\u202A1\u202B2\u202C3\u202D4\u202E5\u2066" L"6\u2067" L"7\u2068" L"8\u2069" L"9", 256),
            L"123456789");
  // Their neighbours and the plain marks are not overrides.
  EXPECT_EQ(CleanShownText(L"\u2029\u202F\u2065\u206A\u200F", 256), L"\u2029\u202F\u2065\u206A\u200F");
}

TEST(CleanShownText, KeepsATextOfExactlyTheCap) {
  const std::wstring name(256, L'n');
  EXPECT_EQ(CleanShownText(name, 256), name);
}

TEST(CleanShownText, CutsALongerTextToTheCapEndingInAnEllipsis) {
  EXPECT_EQ(CleanShownText(L"abcdefgh", 5), L"abcd\u2026");
  const std::wstring shown = CleanShownText(std::wstring(1024 * 1024, L'n'), 256);
  EXPECT_EQ(shown, std::wstring(255, L'n') + L"\u2026");
}

TEST(CleanShownText, CountsTheCapAfterTheRemovedCharacters) {
  EXPECT_EQ(CleanShownText(L"\r\n\r\nabc\u202E", 3), L"abc");
}

TEST(CleanShownText, NeverSplitsASurrogatePairWhenCutting) {
  // U+1F600 as UTF-16 units, written out so the test means the same with a
  // 32-bit wchar_t.
  const std::wstring text = std::wstring(L"ab") + static_cast<wchar_t>(0xD83D) + static_cast<wchar_t>(0xDE00) + L"cd";
  EXPECT_EQ(CleanShownText(text, 4), L"ab\u2026");
  EXPECT_EQ(CleanShownText(text, 5), std::wstring(L"ab") + static_cast<wchar_t>(0xD83D) +
                                         static_cast<wchar_t>(0xDE00) + L"\u2026");
}

TEST(CleanShownText, GivesNothingForACapOfZero) { EXPECT_EQ(CleanShownText(L"Ann", 0), L""); }

TEST(CleanShownText, CapsNamesTimesAndPathsByTheirFields) {
  EXPECT_EQ(kShownNameMaxLength, 256u);
  EXPECT_EQ(kShownTimeMaxLength, 64u);
  EXPECT_EQ(kShownPathMaxLength, 1024u);
}
