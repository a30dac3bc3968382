// What reading the sync app's answer costs in heap blocks while the log
// drops Debug lines, as it does in the add-in: a trace line nobody writes
// must not cost an allocation, and every block the reader takes must still
// be held by what it returns.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "synclink/answer_apply.h"
#include "synclink/answer_parser.h"
#include "synclink/file_status_cache.h"
#include "tests/native/allocations/counting_new.h"
#include "tests/native/allocations/dropping_log.h"

namespace {
// One file as the sync app reports it: all twenty members, long path.
const std::wstring kObject =
    L"{\"file_path\":\"C:\\Users\\ann.berg\\Filewell Drive\\Finance\\2024\\Quarterly\\document-100007.docx\","
    L"\"is_sync_file\":\"true\",\"file_combo_id\":\"8f3c2a91-100007\",\"is_internet_connected\":\"true\","
    L"\"is_loading_data_from_server\":\"false\",\"last_modified_by_quid\":\"u-2087-ann\","
    L"\"last_modified_by\":\"Ann Berg\",\"last_modified_time\":\"2024-05-02 10:41:07\","
    L"\"is_download_present\":\"Already Up-to-date\",\"is_conflict_present\":\"false\","
    L"\"is_rename_present\":\"false\",\"is_move_present\":\"false\",\"is_folder_move_present\":\"false\","
    L"\"src\":\"\",\"dest\":\"\",\"is_delete_present\":\"false\",\"all_viewers_quid\":\"u-7730-cy\","
    L"\"all_viewers_names\":\"Cy Moreau\",\"all_editors_quid\":\"\",\"all_editors_names\":\"\"}";

// The heap blocks a parsed answer holds: the list's buffer, one node per
// member, and each key or value too long for the string's own buffer.
std::int64_t HeldBlocks(const std::vector<AnswerObject>& objects) {
  const std::size_t inline_capacity = std::wstring().capacity();
  std::int64_t blocks = objects.capacity() > 0 ? 1 : 0;
  for (const AnswerObject& object : objects) {
    for (const auto& [key, value] : object) {
      blocks += 1 + (key.capacity() > inline_capacity ? 1 : 0) + (value.capacity() > inline_capacity ? 1 : 0);
    }
  }
  return blocks;
}

class AnswerAllocations : public testing::Test {
 protected:
  void SetUp() override { debugLinesAtStart_ = DebugLinesHandedToTheLog(); }
  std::int64_t DebugLinesHandedOver() const { return DebugLinesHandedToTheLog() - debugLinesAtStart_; }

 private:
  std::int64_t debugLinesAtStart_ = 0;
};
}  // namespace

TEST_F(AnswerAllocations, ARefusedAnswerAllocatesNothing) {
  for (const std::wstring& text : {std::wstring(L"ERROR"), std::wstring(), L" {\"resp\":[" + kObject + L"]}"}) {
    std::int64_t allocations = 0xdeadbeef;
    std::size_t objects = 0xdeadbeef;
    {
      const AllocationCount count;
      objects = ParseAnswer(text).size();
      allocations = count.allocations();
    }
    EXPECT_EQ(objects, 0u) << "for " << testing::PrintToString(text);
    EXPECT_EQ(allocations, 0) << "for " << testing::PrintToString(text);
  }
  EXPECT_EQ(DebugLinesHandedOver(), 0);
}

TEST_F(AnswerAllocations, AnEmptyListAllocatesNothing) {
  std::int64_t allocations = 0xdeadbeef;
  std::size_t objects = 0xdeadbeef;
  {
    const AllocationCount count;
    objects = ParseAnswer(L"{\"resp\":[]}").size();
    allocations = count.allocations();
  }
  EXPECT_EQ(objects, 0u);
  EXPECT_EQ(allocations, 0);
  EXPECT_EQ(DebugLinesHandedOver(), 0);
}

TEST_F(AnswerAllocations, EveryBlockTakenForAFileIsHeldByTheResult) {
  const std::wstring text = L"{\"resp\":[" + kObject + L"]}";
  std::int64_t allocations = 0xdeadbeef;
  std::int64_t frees = 0xdeadbeef;
  std::vector<AnswerObject> objects;
  {
    const AllocationCount count;
    objects = ParseAnswer(text);
    allocations = count.allocations();
    frees = count.frees();
  }
  ASSERT_EQ(objects.size(), 1u);
  EXPECT_EQ(objects[0].size(), 20u);
  EXPECT_EQ(objects[0].at(L"last_modified_by"), L"Ann Berg");
  EXPECT_EQ(allocations, HeldBlocks(objects));
  EXPECT_EQ(frees, 0);
  EXPECT_EQ(DebugLinesHandedOver(), 0);
}

TEST_F(AnswerAllocations, TheListOfSeveralFilesIsAllocatedOnce) {
  const std::wstring text = L"{\"resp\":[" + kObject + L"," + kObject + L"," + kObject + L"]}";
  std::int64_t allocations = 0xdeadbeef;
  std::int64_t frees = 0xdeadbeef;
  std::vector<AnswerObject> objects;
  {
    const AllocationCount count;
    objects = ParseAnswer(text);
    allocations = count.allocations();
    frees = count.frees();
  }
  ASSERT_EQ(objects.size(), 3u);
  EXPECT_EQ(objects.capacity(), 3u);
  EXPECT_EQ(allocations, HeldBlocks(objects));
  EXPECT_EQ(frees, 0);
}

TEST_F(AnswerAllocations, ReadingAFileTakesBlocksOnlyForTheTextsItKeeps) {
  const auto objects = ParseAnswer(L"{\"resp\":[" + kObject + L"]}");
  ASSERT_EQ(objects.size(), 1u);
  std::int64_t allocations = 0xdeadbeef;
  AnswerFields fields;
  {
    const AllocationCount count;
    fields = CollectAnswerFields(objects[0]);
    allocations = count.allocations();
  }
  // The flags are read where they stand, without a copy of their text.
  const std::size_t inline_capacity = std::wstring().capacity();
  std::int64_t kept = 0;
  for (const std::wstring* text :
       {&fields.file_path, &fields.file_combo_id, &fields.last_modified_by_quid, &fields.last_modified_by,
        &fields.last_modified_time, &fields.is_download_present, &fields.src, &fields.dest, &fields.all_viewers_quid,
        &fields.all_viewers_names, &fields.all_editors_quid, &fields.all_editors_names}) {
    if (text->capacity() > inline_capacity) ++kept;
  }
  EXPECT_EQ(fields.is_sync_file, 1u);
  EXPECT_EQ(fields.is_loading_data_from_server, 0u);
  EXPECT_EQ(fields.last_modified_by, L"Ann Berg");
  EXPECT_EQ(allocations, kept);
}

TEST_F(AnswerAllocations, AnswersForFilesNotOpenCostOnlyTheirReading) {
  // Short paths fit the string's own buffer, so looking them up costs nothing.
  const auto objects = ParseAnswer(L"{\"resp\":[{\"file_path\":\"a\"},{\"file_path\":\"b\"}]}");
  ASSERT_EQ(objects.size(), 2u);
  FileStatusCache cache;
  ASSERT_EQ(cache.AddFile(L"C:\\a.docx", nullptr, 0, nullptr), 1);
  std::int64_t reading = 0xdeadbeef;
  {
    const AllocationCount count;
    for (const AnswerObject& object : objects) (void)CollectAnswerFields(object);
    reading = count.allocations();
  }
  std::int64_t applying = 0xdeadbeef;
  {
    const AllocationCount count;
    ApplyAnswer(cache, objects);
    applying = count.allocations();
  }
  EXPECT_EQ(applying, reading);
  EXPECT_TRUE(cache.syncAppHasData);
  EXPECT_EQ(DebugLinesHandedOver(), 0);
}
