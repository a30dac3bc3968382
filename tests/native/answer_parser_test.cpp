#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "synclink/answer_parser.h"
#include "tests/native/answer_scanner_reference.h"
#include "tests/native/captured_log.h"

namespace {
class ParseAnswerTest : public testing::Test {
 protected:
  void SetUp() override { ClearCapturedLog(); }
};
}  // namespace

TEST_F(ParseAnswerTest, ReadsTheDocumentedExample) {
  const auto objects = ParseAnswer(
      L"{\"resp\":[{\"file_path\":\"C:\\Users\\ann\\Filewell\\report.docx\",\"is_sync_file\":\"true\","
      L"\"file_combo_id\":\"k3v9x\",\"is_internet_connected\":\"true\",\"is_loading_data_from_server\":\"false\","
      L"\"is_download_present\":\"Already Up-to-date\"}]}");
  ASSERT_EQ(objects.size(), 1u);
  EXPECT_EQ(objects[0], (AnswerObject{{L"file_path", L"C:\\Users\\ann\\Filewell\\report.docx"},
                                      {L"is_sync_file", L"true"},
                                      {L"file_combo_id", L"k3v9x"},
                                      {L"is_internet_connected", L"true"},
                                      {L"is_loading_data_from_server", L"false"},
                                      {L"is_download_present", L"Already Up-to-date"}}));
}

TEST_F(ParseAnswerTest, ReadsSeveralObjectsInOrder) {
  const auto objects = ParseAnswer(L"{\"resp\":[{\"file_path\":\"a\"},{\"file_path\":\"b\"},{\"file_path\":\"c\"}]}");
  ASSERT_EQ(objects.size(), 3u);
  EXPECT_EQ(objects[0].at(L"file_path"), L"a");
  EXPECT_EQ(objects[1].at(L"file_path"), L"b");
  EXPECT_EQ(objects[2].at(L"file_path"), L"c");
}

TEST_F(ParseAnswerTest, GivesNothingForAnEmptyListAndSaysSo) {
  EXPECT_TRUE(ParseAnswer(L"{\"resp\":[]}").empty());
  EXPECT_EQ(CapturedMessages(),
            (std::vector<std::wstring>{L"No data mismatch while converting into json", L"converted into json"}));
  for (const auto& line : CapturedLog()) EXPECT_EQ(line.level, LogLevel::Debug);
}

TEST_F(ParseAnswerTest, RejectsErrorAsADataMismatch) {
  EXPECT_TRUE(ParseAnswer(L"ERROR").empty());
  EXPECT_EQ(CapturedMessages(), (std::vector<std::wstring>{L"Data mismatch while converting into json"}));
}

TEST_F(ParseAnswerTest, RejectsALeadingBlankBeforeTheBrace) {
  EXPECT_TRUE(ParseAnswer(L" {\"resp\":[{\"file_path\":\"a\"}]}").empty());
  EXPECT_EQ(CapturedMessages(), (std::vector<std::wstring>{L"Data mismatch while converting into json"}));
}

TEST_F(ParseAnswerTest, RejectsAnEmptyTextAndATrailingBlankAndAnotherFrame) {
  EXPECT_TRUE(ParseAnswer(L"").empty());
  EXPECT_TRUE(ParseAnswer(L"{\"resp\":[{\"file_path\":\"a\"}]} ").empty());
  EXPECT_TRUE(ParseAnswer(L"{\"files\":[{\"file_path\":\"a\"}]}").empty());
}

TEST_F(ParseAnswerTest, DoesNotReadAnUnquotedBooleanAsTrue) {
  const auto objects = ParseAnswer(L"{\"resp\":[{\"is_sync_file\":true,\"file_path\":\"a\"}]}");
  ASSERT_EQ(objects.size(), 1u);
  // The value runs from the next quote to the next quote-comma or quote-brace.
  EXPECT_NE(objects[0].at(L"is_sync_file"), L"true");
  EXPECT_EQ(ParseFlag(objects[0].at(L"is_sync_file")), 0u);
}

TEST_F(ParseAnswerTest, KeepsTheLaterValueOfARepeatedKey) {
  const auto objects = ParseAnswer(L"{\"resp\":[{\"src\":\"one\",\"src\":\"two\"}]}");
  ASSERT_EQ(objects.size(), 1u);
  EXPECT_EQ(objects[0].at(L"src"), L"two");
}

TEST_F(ParseAnswerTest, KeepsBackslashesAsTheyStand) {
  const auto objects = ParseAnswer(L"{\"resp\":[{\"file_path\":\"C:\\\\x\\n\"}]}");
  ASSERT_EQ(objects.size(), 1u);
  EXPECT_EQ(objects[0].at(L"file_path"), L"C:\\\\x\\n");
}

TEST_F(ParseAnswerTest, CutsAnObjectShortAtABraceInsideAValue) {
  const auto objects = ParseAnswer(L"{\"resp\":[{\"file_path\":\"a}b\",\"src\":\"x\"}]}");
  ASSERT_FALSE(objects.empty());
  EXPECT_EQ(objects[0].count(L"src"), 0u);
}

TEST_F(ParseAnswerTest, ReadsTheObjectAfterALeftOverBraceOnce) {
  // The first value's second "}" is left over after the cut; it closes nothing.
  const auto objects = ParseAnswer(L"{\"resp\":[{\"src\":\"a}b}c\"},{\"file_path\":\"d\"}]}");
  ASSERT_EQ(objects.size(), 2u);
  EXPECT_TRUE(objects[0].empty());
  EXPECT_EQ(objects[1], (AnswerObject{{L"file_path", L"d"}}));
}

TEST_F(ParseAnswerTest, ReadsNothingBetweenALoneQuoteAndItself) {
  // Each lone quote is both the opening and the closing mark of its key or value.
  const auto objects = ParseAnswer(L"{\"resp\":[{\":\",\":\",\"src\":\"x\"}]}");
  ASSERT_EQ(objects.size(), 1u);
  EXPECT_EQ(objects[0], (AnswerObject{{L"", L""}, {L"src", L"x"}}));
}

TEST_F(ParseAnswerTest, LosesTheMembersAfterABrokenPairing) {
  // A blank between the key's quote and the colon breaks the pairing.
  const auto objects = ParseAnswer(L"{\"resp\":[{\"file_path\":\"a\",\"src\" :\"x\",\"dest\":\"y\"}]}");
  ASSERT_EQ(objects.size(), 1u);
  EXPECT_EQ(objects[0].at(L"file_path"), L"a");
  EXPECT_EQ(objects[0].count(L"src"), 0u);
}

TEST_F(ParseAnswerTest, KeepsUnknownKeys) {
  const auto objects = ParseAnswer(L"{\"resp\":[{\"file_path\":\"a\",\"future_key\":\"z\"}]}");
  ASSERT_EQ(objects.size(), 1u);
  EXPECT_EQ(objects[0].at(L"future_key"), L"z");
}

TEST_F(ParseAnswerTest, TracesKeysAndValuesAtDebugLevel) {
  ParseAnswer(L"{\"resp\":[{\"file_path\":\"a\"}]}");
  EXPECT_EQ(CapturedMessages(),
            (std::vector<std::wstring>{L"No data mismatch while converting into json", L"{\"file_path\":\"a\"}",
                                       L"file_path", L"a", L"converted into json"}));
}

TEST(ParseFlag, TakesTrueInAnyLetterCase) {
  EXPECT_EQ(ParseFlag(L"true"), 1u);
  EXPECT_EQ(ParseFlag(L"True"), 1u);
  EXPECT_EQ(ParseFlag(L"TRUE"), 1u);
}

TEST(ParseFlag, TakesNothingElseAsTrue) {
  EXPECT_EQ(ParseFlag(L"1"), 0u);
  EXPECT_EQ(ParseFlag(L"yes"), 0u);
  EXPECT_EQ(ParseFlag(L""), 0u);
  EXPECT_EQ(ParseFlag(L" true"), 0u);
  EXPECT_EQ(ParseFlag(L"false"), 0u);
}

TEST_F(ParseAnswerTest, ReadsObjectsWhoseKeysComeInDifferentOrders) {
  const auto objects = ParseAnswer(
      L"{\"resp\":[{\"b\":\"1\",\"a\":\"2\"},{\"a\":\"3\",\"b\":\"4\"},{\"b\":\"5\",\"a\":\"6\",\"c\":\"7\"},"
      L"{\"b\":\"8\",\"a\":\"9\"},{\"b\":\"x\",\"b\":\"y\"},{\"b\":\"10\",\"a\":\"11\"}]}");
  ASSERT_EQ(objects.size(), 6u);
  EXPECT_EQ(objects[0], (AnswerObject{{L"a", L"2"}, {L"b", L"1"}}));
  EXPECT_EQ(objects[1], (AnswerObject{{L"a", L"3"}, {L"b", L"4"}}));
  EXPECT_EQ(objects[2], (AnswerObject{{L"a", L"6"}, {L"b", L"5"}, {L"c", L"7"}}));
  EXPECT_EQ(objects[3], (AnswerObject{{L"a", L"9"}, {L"b", L"8"}}));
  EXPECT_EQ(objects[4], (AnswerObject{{L"b", L"y"}}));
  EXPECT_EQ(objects[5], (AnswerObject{{L"a", L"11"}, {L"b", L"10"}}));
}

TEST_F(ParseAnswerTest, ReadsAnObjectOfHundredsOfMembersWithItsLastValues) {
  std::wstring text = L"{\"resp\":[{";
  AnswerObject expected;
  for (int i = 0; i < 300; ++i) {
    // Keys repeat every 97 members, so later values replace earlier ones
    // across the whole object.
    const std::wstring key = L"k" + std::to_wstring(i % 97);
    const std::wstring value = L"v" + std::to_wstring(i);
    text += L"\"" + key + L"\":\"" + value + L"\",";
    expected[key] = value;
  }
  text += L"\"file_path\":\"p\"}]}";
  expected[L"file_path"] = L"p";
  const auto objects = ParseAnswer(text);
  ASSERT_EQ(objects.size(), 1u);
  EXPECT_EQ(objects[0], expected);
}

TEST_F(ParseAnswerTest, GivesWhatThePlainStepByStepScanGivesForAnyText) {
  // Texts built from the characters the scanner looks at, most of them in
  // the frame, compared with the plain scan: same maps, same trace lines.
  static const wchar_t* const kPieces[] = {L"\"",      L":",     L",",   L"{",         L"}",          L"a",
                                           L"b",       L"]",     L"\":", L"\",",       L"\"}",        L"\"a\":\"b\",",
                                           L"\"a\":\"", L"},{",  L"\"b\":\"c\"}", L"\"c\":\"\",", L" ",          L"\"\":\"\","};
  std::uint32_t seed = 0x2545f491u;
  auto next = [&seed] {
    seed ^= seed << 13;
    seed ^= seed >> 17;
    seed ^= seed << 5;
    return seed;
  };
  for (int round = 0; round < 20000; ++round) {
    std::wstring text = next() % 8 != 0 ? L"{\"resp\":[" : L"";
    const std::uint32_t pieces = next() % 40;
    for (std::uint32_t i = 0; i < pieces; ++i) text += kPieces[next() % (sizeof(kPieces) / sizeof(kPieces[0]))];
    if (next() % 4 != 0) text += L"]}";
    const ReferenceReading reference = ReferenceScan(text);
    ClearCapturedLog();
    const auto objects = ParseAnswer(text);
    ASSERT_EQ(objects, reference.objects) << testing::PrintToString(text);
    ASSERT_EQ(CapturedMessages(), reference.traceLines) << testing::PrintToString(text);
  }
}

TEST(ParseFlag, FoldsOnlyAsciiLetters) {
  EXPECT_EQ(ParseFlag(L"tRuE"), 1u);
  EXPECT_EQ(ParseFlag(L"\xFF34RUE"), 0u);  // a full-width T
  EXPECT_EQ(ParseFlag(std::wstring_view(L"tru\0", 4)), 0u);
  EXPECT_EQ(ParseFlag(L"truee"), 0u);
}
