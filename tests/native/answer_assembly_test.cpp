#include <gtest/gtest.h>

#include <string>

#include "synclink/answer_assembly.h"

namespace {
// Hands `units` to the assembly as one read of that many UTF-16 units.
AnswerAssembly::Step AddUnits(AnswerAssembly& assembly, const std::wstring& units, bool last) {
  return assembly.Add(units.data(), units.size(), units.size() * 2, last);
}

// The answer of 500 open documents, each with 50 viewers and 50 editors and
// every member at the length a real one can reach: the largest answer a
// user's session realistically produces.
std::wstring LargestRealisticAnswer() {
  const std::wstring path = L"C:\\" + std::wstring(257, L'p');  // MAX_PATH
  const std::wstring quid(36, L'q');                              // a GUID's text
  const std::wstring name(64, L'n');
  std::wstring quids, names;
  for (int i = 0; i < 50; ++i) {
    quids += (i ? L"|" : L"") + quid;
    names += (i ? L"|" : L"") + name;
  }
  const std::wstring object =
      L"{\"file_path\":\"" + path + L"\",\"is_sync_file\":\"false\",\"file_combo_id\":\"" + std::wstring(64, L'c') +
      L"\",\"is_internet_connected\":\"false\",\"is_loading_data_from_server\":\"false\",\"last_modified_by_quid\":\"" +
      quid + L"\",\"last_modified_by\":\"" + name + L"\",\"last_modified_time\":\"" + std::wstring(32, L't') +
      L"\",\"is_download_present\":\"Already Up-to-date\",\"is_conflict_present\":\"false\","
      L"\"is_rename_present\":\"false\",\"is_move_present\":\"false\",\"is_folder_move_present\":\"false\","
      L"\"src\":\"" + path + L"\",\"dest\":\"" + path + L"\",\"is_delete_present\":\"false\",\"all_viewers_quid\":\"" +
      quids + L"\",\"all_viewers_names\":\"" + names + L"\",\"all_editors_quid\":\"" + quids +
      L"\",\"all_editors_names\":\"" + names + L"\"}";
  std::wstring answer = L"{\"resp\":[";
  for (int i = 0; i < 500; ++i) answer += (i ? L"," : L"") + object;
  return answer + L"]}";
}
}  // namespace

TEST(AnswerAssembly, TheCapIsTwiceTheLargestRealisticAnswerRoundedUpToAMebibyte) {
  const size_t largestBytes = (1 + LargestRealisticAnswer().size()) * 2;  // with the lead unit
  EXPECT_EQ(largestBytes, 11671022u);
  EXPECT_EQ(kMaxAnswerBytes, 24117248u);
  EXPECT_GE(kMaxAnswerBytes, 2 * largestBytes);
  EXPECT_LT(kMaxAnswerBytes - 2 * largestBytes, 1048576u);
}

TEST(AnswerAssembly, DropsTheLeadUnitOfTheFirstReadOnly) {
  AnswerAssembly assembly;
  EXPECT_EQ(AddUnits(assembly, L"\xFEFF{\"resp\"", false), AnswerAssembly::Step::More);
  EXPECT_EQ(AddUnits(assembly, L":[]}", true), AnswerAssembly::Step::Complete);
  EXPECT_EQ(assembly.text(), L"{\"resp\":[]}");
  EXPECT_FALSE(assembly.endedAtNul());
}

TEST(AnswerAssembly, ANulEndsTheAnswerThereAndNothingAfterItIsAdded) {
  AnswerAssembly assembly;
  EXPECT_EQ(AddUnits(assembly, std::wstring(L"\xFEFF{\"resp\":[]}\0{\"resp\":[{\"file_path\":\"x\"}]}", 40), false),
            AnswerAssembly::Step::Complete);
  EXPECT_EQ(assembly.text(), L"{\"resp\":[]}");
  EXPECT_TRUE(assembly.endedAtNul());
}

TEST(AnswerAssembly, ANulInALaterReadEndsTheAnswerToo) {
  AnswerAssembly assembly;
  EXPECT_EQ(AddUnits(assembly, L"\xFEFF{\"resp\":[", false), AnswerAssembly::Step::More);
  EXPECT_EQ(AddUnits(assembly, std::wstring(L"]}\0tail", 7), false), AnswerAssembly::Step::Complete);
  EXPECT_EQ(assembly.text(), L"{\"resp\":[]}");
}

TEST(AnswerAssembly, AnAnswerOfExactlyTheCapIsTaken) {
  AnswerAssembly assembly(16);
  EXPECT_EQ(AddUnits(assembly, L"\xFEFF" L"abc", false), AnswerAssembly::Step::More);
  EXPECT_EQ(AddUnits(assembly, L"defg", true), AnswerAssembly::Step::Complete);
  EXPECT_EQ(assembly.text(), L"abcdefg");
}

TEST(AnswerAssembly, OneByteOverTheCapAbandonsTheAnswerAndGivesItsMemoryBack) {
  AnswerAssembly assembly(16);
  EXPECT_EQ(AddUnits(assembly, L"\xFEFF" L"abcdefg", false), AnswerAssembly::Step::More);  // 16 bytes
  const wchar_t odd = L'h';
  EXPECT_EQ(assembly.Add(&odd, 0, 1, true), AnswerAssembly::Step::TooLong);
  EXPECT_EQ(assembly.bytesRead(), 17u);
  EXPECT_EQ(assembly.text(), L"");
  EXPECT_EQ(assembly.text().capacity(), std::wstring().capacity());
}

TEST(AnswerAssembly, AnAnswerWithNoUnitAtAllIsEmpty) {
  AnswerAssembly assembly;
  EXPECT_EQ(assembly.Add(nullptr, 0, 0, true), AnswerAssembly::Step::Complete);
  EXPECT_EQ(assembly.text(), L"");
}
