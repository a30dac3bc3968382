// Feeds arbitrary answers through the scanner into a cache of two open
// files, as the update thread does, and checks the record rules: answers
// never add or drop records, a record takes exactly what the last object
// for its path said, and a record that changed is marked for redraw.
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "synclink/answer_apply.h"
#include "synclink/answer_parser.h"
#include "synclink/file_status_cache.h"
#include "synclink/record_update.h"

namespace {
const std::wstring kPaths[] = {L"a", L"C:\\Users\\ann\\Filewell\\report.docx"};

// What a record must hold after the answer, worked out from the raw maps.
struct Expected {
  bool answered = false;
  std::int32_t downloadState = kAlreadyUpToDate;
  AnswerObject last;  // the last object for the path
};

std::wstring Text(const AnswerObject& object, const wchar_t* key) {
  const auto found = object.find(key);
  return found == object.end() ? std::wstring() : found->second;
}

std::uint32_t Flag(const AnswerObject& object, const wchar_t* key, std::uint32_t missing) {
  const auto found = object.find(key);
  return found == object.end() ? missing : ParseFlag(found->second);
}

std::map<std::wstring, std::wstring> Users(const std::wstring& ids, const std::wstring& names) {
  return ids.empty() ? std::map<std::wstring, std::wstring>() : PairUsers(ids, names);
}

void CheckAnswered(const FileStatusRecord& r, const Expected& e) {
  const AnswerObject& o = e.last;
  FUZZ_CHECK(r.sync.is_sync_file == Flag(o, L"is_sync_file", 0));
  FUZZ_CHECK(r.sync.file_combo_id == Text(o, L"file_combo_id"));
  FUZZ_CHECK(r.sync.is_internet_connected == Flag(o, L"is_internet_connected", 1));
  FUZZ_CHECK(r.sync.is_loading_data_from_server == Flag(o, L"is_loading_data_from_server", 1));
  FUZZ_CHECK(r.sync.last_modified_by_quid == Text(o, L"last_modified_by_quid"));
  FUZZ_CHECK(r.sync.last_modified_by == Text(o, L"last_modified_by"));
  FUZZ_CHECK(r.sync.last_modified_time == Text(o, L"last_modified_time"));
  FUZZ_CHECK(r.sync.downloadState == e.downloadState);
  FUZZ_CHECK(r.sync.is_conflict_present == Flag(o, L"is_conflict_present", 0));
  FUZZ_CHECK(r.sync.is_rename_present == Flag(o, L"is_rename_present", 0));
  FUZZ_CHECK(r.sync.is_move_present == Flag(o, L"is_move_present", 0));
  FUZZ_CHECK(r.sync.is_folder_move_present == Flag(o, L"is_folder_move_present", 0));
  FUZZ_CHECK(r.sync.src == Text(o, L"src"));
  FUZZ_CHECK(r.sync.dest == Text(o, L"dest"));
  FUZZ_CHECK(r.sync.is_delete_present == Flag(o, L"is_delete_present", 0));
  FUZZ_CHECK(r.sync.all_viewers_quid == Text(o, L"all_viewers_quid"));
  FUZZ_CHECK(r.sync.all_viewers_names == Text(o, L"all_viewers_names"));
  FUZZ_CHECK(r.sync.all_editors_quid == Text(o, L"all_editors_quid"));
  FUZZ_CHECK(r.sync.all_editors_names == Text(o, L"all_editors_names"));
  FUZZ_CHECK(r.sync.viewersByQuid == Users(r.sync.all_viewers_quid, r.sync.all_viewers_names));
  FUZZ_CHECK(r.sync.editorsByQuid == Users(r.sync.all_editors_quid, r.sync.all_editors_names));
  // A record that ends up unlike a fresh one was changed by the answer, and
  // every change clears the redraw mark.
  const bool differsFromFresh = r.sync.is_sync_file != 0 || !r.sync.file_combo_id.empty() || r.sync.is_internet_connected != 1 ||
                                r.sync.is_loading_data_from_server != 1 || !r.sync.last_modified_by_quid.empty() ||
                                !r.sync.last_modified_by.empty() || !r.sync.last_modified_time.empty() ||
                                r.sync.downloadState != kAlreadyUpToDate || r.sync.is_conflict_present != 0 ||
                                r.sync.is_rename_present != 0 || r.sync.is_move_present != 0 ||
                                r.sync.is_folder_move_present != 0 || !r.sync.src.empty() || !r.sync.dest.empty() ||
                                r.sync.is_delete_present != 0 || !r.sync.all_viewers_quid.empty() ||
                                !r.sync.all_viewers_names.empty() || !r.sync.all_editors_quid.empty() ||
                                !r.sync.all_editors_names.empty();
  if (differsFromFresh) FUZZ_CHECK(r.overlayUpToDate == 0);
}

void CheckUntouched(const FileStatusRecord& r) {
  const FileStatusRecord fresh;
  FUZZ_CHECK(r.overlayUpToDate == 1);
  FUZZ_CHECK(r.sync.is_sync_file == fresh.sync.is_sync_file && r.sync.file_combo_id.empty());
  FUZZ_CHECK(r.sync.is_internet_connected == 1 && r.sync.is_loading_data_from_server == 1);
  FUZZ_CHECK(r.sync.downloadState == kAlreadyUpToDate && r.sync.src.empty() && r.sync.dest.empty());
  FUZZ_CHECK(r.sync.viewersByQuid.empty() && r.sync.editorsByQuid.empty());
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<AnswerObject> objects = ParseAnswer(UnitsFromBytes(data, size));

  FileStatusCache cache;
  const HWND window = reinterpret_cast<HWND>(static_cast<std::uintptr_t>(0x1234));
  for (const std::wstring& path : kPaths) {
    FUZZ_CHECK(cache.AddFile(path, window, 1, nullptr) == 1);
    cache.Change(path, [&](FileStatusRecord& r) { r.overlayUpToDate = 1; });
  }

  std::map<std::wstring, Expected> expected;
  for (const AnswerObject& object : objects) {
    const std::wstring path = Text(object, L"file_path");
    if (!cache.Contains(path)) continue;
    Expected& e = expected[path];
    e.answered = true;
    e.last = object;
    const int state = DownloadStateFromText(Text(object, L"is_download_present"));
    if (state >= 0) e.downloadState = state;
  }

  ApplyAnswer(cache, objects);

  FUZZ_CHECK(cache.syncAppHasData == !objects.empty());
  FUZZ_CHECK(cache.Size() == 2);
  for (const std::wstring& path : kPaths) {
    FUZZ_CHECK(cache.Contains(path));
    const FileStatusRecord record = *cache.Find(path);
    // The update thread passes the record's own window and editing state.
    FUZZ_CHECK(record.hostWindow == window && record.isEditing == 1);
    if (expected[path].answered) {
      CheckAnswered(record, expected[path]);
    } else {
      CheckUntouched(record);
    }
  }

  // Whatever the answer said, the next request lists both files with the
  // identifiers the answer gave them.
  const std::wstring request = cache.BuildRequest(L"", false);
  FUZZ_CHECK(request.compare(0, 10, L"{\"files\":[") == 0);
  FUZZ_CHECK(request.size() >= 2 && request.compare(request.size() - 2, 2, L"]}") == 0);
  for (const std::wstring& path : kPaths) {
    FUZZ_CHECK(request.find(L"{\"filepath\":\"" + path + L"\",\"isOpen\":true,\"isEditing\":true,") !=
               std::wstring::npos);
    FUZZ_CHECK(request.find(L"\"file_combo_id\":\"" + cache.Find(path)->sync.file_combo_id + L"\",\"officeApp\":\"") !=
               std::wstring::npos);
  }
  return 0;
}
