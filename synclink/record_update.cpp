#include "synclink/record_update.h"

#include <vector>

#include "log/write_log.h"

namespace {
template <class T>
void Take(bool& changed, T& field, const T& value, const wchar_t* tag) {
  if (field == value) return;
  field = value;
  changed = true;
  WriteLog(LogLevel::Debug, tag);
}

std::vector<std::wstring> SplitOnBar(const std::wstring& text) {
  std::vector<std::wstring> parts;
  size_t start = 0;
  for (;;) {
    const size_t bar = text.find(L'|', start);
    parts.push_back(text.substr(start, bar == std::wstring::npos ? std::wstring::npos : bar - start));
    if (bar == std::wstring::npos) return parts;
    start = bar + 1;
  }
}

void TakeUsers(bool& changed, std::wstring& ids, std::wstring& names,
               std::map<std::wstring, std::wstring>& users, const std::wstring& newIds, const std::wstring& newNames,
               const wchar_t* tag) {
  if (ids == newIds && names == newNames) return;
  ids = newIds;
  names = newNames;
  users.clear();
  if (!newIds.empty()) users = PairUsers(newIds, newNames);
  changed = true;
  WriteLog(LogLevel::Debug, tag);
}
}  // namespace

int DownloadStateFromText(const std::wstring& text) {
  if (text == L"Downloading") return kDownloading;
  if (text == L"Downloaded") return kDownloaded;
  if (text == L"Already Up-to-date") return kAlreadyUpToDate;
  if (text == L"Download Failed") return kDownloadFailed;
  return -1;
}

std::map<std::wstring, std::wstring> PairUsers(const std::wstring& ids, const std::wstring& names) {
  std::map<std::wstring, std::wstring> users;
  const std::vector<std::wstring> idList = SplitOnBar(ids);
  const std::vector<std::wstring> nameList = SplitOnBar(names);
  for (size_t i = 0; i < idList.size(); ++i) users[idList[i]] = i < nameList.size() ? nameList[i] : std::wstring();
  return users;
}

bool ApplyAnswerToReport(SyncReport& r, const AnswerFields& a) {
  // The host window and the unsaved state (tags "1" and "2") are the
  // add-in's own and never come from an answer; there are no tags 3 and 4.
  bool changed = false;
  Take(changed, r.is_sync_file, a.is_sync_file, L"5");
  Take(changed, r.file_combo_id, a.file_combo_id, L"6");
  Take(changed, r.is_internet_connected, a.is_internet_connected, L"7a");
  Take(changed, r.is_loading_data_from_server, a.is_loading_data_from_server, L"7b");
  Take(changed, r.last_modified_by_quid, a.last_modified_by_quid, L"8 a");
  Take(changed, r.last_modified_by, a.last_modified_by, L"8 b");
  Take(changed, r.last_modified_time, a.last_modified_time, L"9");
  static const wchar_t* const kDownloadTags[] = {L"10 a", L"10 b", L"10 c", L"10 d"};
  const int state = DownloadStateFromText(a.is_download_present);
  if (state >= 0) Take(changed, r.downloadState, static_cast<std::int32_t>(state), kDownloadTags[state]);
  Take(changed, r.is_conflict_present, a.is_conflict_present, L"11");
  Take(changed, r.is_rename_present, a.is_rename_present, L"12");
  Take(changed, r.is_move_present, a.is_move_present, L"13 a");
  Take(changed, r.is_folder_move_present, a.is_folder_move_present, L"13 b");
  Take(changed, r.src, a.src, L"14");
  Take(changed, r.dest, a.dest, L"15");
  Take(changed, r.is_delete_present, a.is_delete_present, L"16");
  TakeUsers(changed, r.all_viewers_quid, r.all_viewers_names, r.viewersByQuid, a.all_viewers_quid,
            a.all_viewers_names, L"17");
  TakeUsers(changed, r.all_editors_quid, r.all_editors_names, r.editorsByQuid, a.all_editors_quid,
            a.all_editors_names, L"18");
  return changed;
}
