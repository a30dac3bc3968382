// The probe's judgement of an answer, apart from any pipe: where a text
// leaves the shape the add-in's reader needs, and which values it reads
// differently from what the sync app meant.
#include <gtest/gtest.h>

#include "synclink/answer_parser.h"
#include "tools/syncprobe/answer_rules.h"
#include "tools/syncprobe/answer_shape.h"

TEST(ProbeAnswerShape, AcceptsTheAnswerTheAddinReads) {
  const AnswerShape shape = CheckAnswerShape(
      L"{\"resp\":[{\"file_path\":\"C:\\a.docx\",\"is_sync_file\":\"true\"},{\"file_path\":\"C:\\b.xlsx\"}]}");
  EXPECT_TRUE(shape.framed);
  EXPECT_EQ(shape.shapeProblem, L"");
  EXPECT_EQ(shape.unquotedValue, L"");
  EXPECT_EQ(shape.objects, 2u);
  EXPECT_EQ(shape.members, 3u);
}

TEST(ProbeAnswerShape, AcceptsAnAnswerWithoutFiles) {
  const AnswerShape shape = CheckAnswerShape(L"{\"resp\":[]}");
  EXPECT_TRUE(shape.framed);
  EXPECT_EQ(shape.shapeProblem, L"");
  EXPECT_EQ(shape.objects, 0u);
}

TEST(ProbeAnswerShape, FindsNoFrameInTheClientsErrorText) {
  EXPECT_FALSE(CheckAnswerShape(L"ERROR").framed);
  EXPECT_FALSE(CheckAnswerShape(L" {\"resp\":[]}").framed);
  EXPECT_FALSE(CheckAnswerShape(L"").framed);
}

TEST(ProbeAnswerShape, NamesABlankBeforeAColonWithItsPlace) {
  const AnswerShape shape = CheckAnswerShape(L"{\"resp\":[{\"file_path\" :\"a\"}]}");
  EXPECT_TRUE(shape.framed);
  EXPECT_EQ(shape.shapeProblem,
            L"expected \":\" right after the key \"file_path\" at unit 21: \u2026\"resp\":[{\"file_path\" :\"a\"}]}\u2026");
}

TEST(ProbeAnswerShape, NamesAnUnquotedValueAndGoesOnChecking) {
  const AnswerShape shape =
      CheckAnswerShape(L"{\"resp\":[{\"file_path\":\"a\",\"is_sync_file\":true,\"is_delete_present\":\"false\"}]}");
  EXPECT_EQ(shape.unquotedValue, L"\"is_sync_file\":true");
  EXPECT_EQ(shape.shapeProblem, L"");
  EXPECT_EQ(shape.members, 3u);
}

TEST(ProbeAnswerShape, NamesABraceInsideAValue) {
  const AnswerShape shape = CheckAnswerShape(L"{\"resp\":[{\"file_path\":\"a}b\"}]}");
  EXPECT_EQ(shape.shapeProblem.rfind(L"a \"}\" inside the value of \"file_path\"", 0), 0u) << shape.shapeProblem;
}

TEST(ProbeFieldValues, TakesTrueInAnyCaseAsTheAddinDoes) {
  const Judgement judgement =
      JudgeFieldValues(ParseAnswer(L"{\"resp\":[{\"file_path\":\"a\",\"is_sync_file\":\"True\"}]}"));
  EXPECT_TRUE(judgement.ok) << judgement.seen;
}

TEST(ProbeFieldValues, RefusesAFlagWrittenAsOne) {
  const Judgement judgement =
      JudgeFieldValues(ParseAnswer(L"{\"resp\":[{\"file_path\":\"a\",\"is_conflict_present\":\"1\"}]}"));
  EXPECT_FALSE(judgement.ok);
  EXPECT_EQ(judgement.seen,
            L"\"is_conflict_present\":\"1\" for a: only \"true\" or \"false\"; the add-in reads anything else as false");
}

TEST(ProbeFieldValues, RefusesADownloadStateTheAddinIgnores) {
  const Judgement judgement =
      JudgeFieldValues(ParseAnswer(L"{\"resp\":[{\"file_path\":\"a\",\"is_download_present\":\"Done\"}]}"));
  EXPECT_FALSE(judgement.ok);
  EXPECT_EQ(judgement.seen.rfind(L"\"is_download_present\":\"Done\" for a: not one of", 0), 0u) << judgement.seen;
}

TEST(ProbeFieldValues, RefusesUserListsThatDoNotPairUp) {
  const Judgement judgement = JudgeFieldValues(ParseAnswer(
      L"{\"resp\":[{\"file_path\":\"a\",\"all_editors_quid\":\"u1|u2\",\"all_editors_names\":\"Ann\"}]}"));
  EXPECT_FALSE(judgement.ok);
  EXPECT_EQ(judgement.seen, L"all_editors_quid has 2 item(s) but all_editors_names has 1 for a");
}

TEST(ProbeFieldValues, RefusesAnObjectWithoutItsFile) {
  const Judgement judgement = JudgeFieldValues(ParseAnswer(L"{\"resp\":[{\"is_sync_file\":\"true\"}]}"));
  EXPECT_FALSE(judgement.ok);
}

TEST(ProbeFieldValues, NamesUnknownKeysWithoutFailing) {
  const Judgement judgement = JudgeFieldValues(ParseAnswer(L"{\"resp\":[{\"file_path\":\"a\",\"pad\":\"xx\"}]}"));
  EXPECT_TRUE(judgement.ok);
  EXPECT_NE(judgement.seen.find(L"unknown keys the add-in ignores: pad"), std::wstring::npos) << judgement.seen;
}

TEST(ProbeFilesAnswered, ComparesPathsCaseSensitively) {
  const Judgement judgement =
      JudgeFilesAnswered(ParseAnswer(L"{\"resp\":[{\"file_path\":\"C:\\A.docx\"}]}"), {L"C:\\a.docx"});
  EXPECT_FALSE(judgement.ok);
  EXPECT_EQ(judgement.seen.rfind(L"no object for C:\\a.docx (of 1 file(s) asked about)", 0), 0u) << judgement.seen;
}

TEST(ProbeFilesAnswered, CountsFilesTheAddinDidNotAskAbout) {
  const Judgement judgement = JudgeFilesAnswered(
      ParseAnswer(L"{\"resp\":[{\"file_path\":\"a\"},{\"file_path\":\"b\"}]}"), {L"a"});
  EXPECT_TRUE(judgement.ok);
  EXPECT_EQ(judgement.seen, L"an object for each of the 1 file(s) asked about, and 1 more that the add-in drops");
}
