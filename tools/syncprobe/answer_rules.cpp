#include "tools/syncprobe/answer_rules.h"

#include <algorithm>
#include <set>

#include "common/text.h"

namespace {
const wchar_t* const kFlagKeys[] = {L"is_sync_file",       L"is_internet_connected", L"is_loading_data_from_server",
                                    L"is_conflict_present", L"is_rename_present",     L"is_move_present",
                                    L"is_folder_move_present", L"is_delete_present"};
const wchar_t* const kDownloadStates[] = {L"", L"Downloading", L"Downloaded", L"Already Up-to-date",
                                          L"Download Failed"};
const wchar_t* const kTextKeys[] = {L"file_path", L"file_combo_id", L"last_modified_by_quid", L"last_modified_by",
                                    L"last_modified_time", L"is_download_present", L"src", L"dest",
                                    L"all_viewers_quid", L"all_viewers_names", L"all_editors_quid",
                                    L"all_editors_names"};

size_t Items(const std::wstring& list) {
  return list.empty() ? 0 : static_cast<size_t>(std::count(list.begin(), list.end(), L'|')) + 1;
}

std::wstring Member(const AnswerObject& object, const wchar_t* key) {
  const auto found = object.find(key);
  return found == object.end() ? std::wstring() : found->second;
}

std::wstring FileOf(const AnswerObject& object) {
  const auto found = object.find(L"file_path");
  return found == object.end() ? std::wstring(L"(no file_path)") : found->second;
}

// "all_viewers_quid" with "all_viewers_names": the add-in pairs them by
// position, so a names list shorter than the identifiers leaves members
// without a name.
bool CheckPair(const AnswerObject& object, const wchar_t* quidKey, const wchar_t* namesKey, std::wstring& problem) {
  const size_t quids = Items(Member(object, quidKey));
  const size_t names = Items(Member(object, namesKey));
  if (quids == names) return true;
  problem = std::wstring(quidKey) + L" has " + std::to_wstring(quids) + L" item(s) but " + namesKey + L" has " +
            std::to_wstring(names) + L" for " + FileOf(object);
  return false;
}
}  // namespace

Judgement JudgeFieldValues(const std::vector<AnswerObject>& objects) {
  std::set<std::wstring> ignored;
  for (const AnswerObject& object : objects) {
    if (object.find(L"file_path") == object.end()) {
      return {false, L"an object without \"file_path\": the add-in cannot tell which file it is about and drops it"};
    }
    for (const auto& member : object) {
      const std::wstring& key = member.first;
      const std::wstring& value = member.second;
      const bool isFlag = std::find_if(std::begin(kFlagKeys), std::end(kFlagKeys),
                                       [&](const wchar_t* k) { return key == k; }) != std::end(kFlagKeys);
      if (isFlag) {
        std::wstring lower = value;
        LowerAsciiInPlace(lower);
        if (lower != L"true" && lower != L"false") {
          return {false, L"\"" + key + L"\":\"" + value + L"\" for " + FileOf(object) +
                             L": only \"true\" or \"false\"; the add-in reads anything else as false"};
        }
        continue;
      }
      if (key == L"is_download_present") {
        if (std::find(std::begin(kDownloadStates), std::end(kDownloadStates), value) == std::end(kDownloadStates)) {
          return {false, L"\"is_download_present\":\"" + value + L"\" for " + FileOf(object) +
                             L": not one of \"Downloading\", \"Downloaded\", \"Already Up-to-date\", "
                             L"\"Download Failed\"; the add-in ignores it"};
        }
        continue;
      }
      const bool isText = std::find_if(std::begin(kTextKeys), std::end(kTextKeys),
                                       [&](const wchar_t* k) { return key == k; }) != std::end(kTextKeys);
      if (!isText) ignored.insert(key);
    }
    std::wstring problem;
    if (!CheckPair(object, L"all_viewers_quid", L"all_viewers_names", problem) ||
        !CheckPair(object, L"all_editors_quid", L"all_editors_names", problem)) {
      return {false, problem};
    }
  }
  std::wstring seen = std::to_wstring(objects.size()) + L" object(s), every flag \"true\" or \"false\", "
                      L"download states and user lists as the add-in reads them";
  if (!ignored.empty()) {
    seen += L"; unknown keys the add-in ignores:";
    for (const std::wstring& key : ignored) seen += L" " + key;
  }
  return {true, seen};
}

Judgement JudgeFilesAnswered(const std::vector<AnswerObject>& objects, const std::vector<std::wstring>& requested) {
  std::vector<std::wstring> missing;
  for (const std::wstring& path : requested) {
    const bool answered = std::any_of(objects.begin(), objects.end(), [&](const AnswerObject& object) {
      const auto found = object.find(L"file_path");
      return found != object.end() && found->second == path;
    });
    if (!answered) missing.push_back(path);
  }
  if (!missing.empty()) {
    std::wstring seen = L"no object for";
    for (const std::wstring& path : missing) seen += L" " + path;
    seen += L" (of " + std::to_wstring(requested.size()) +
            L" file(s) asked about): the add-in leaves an unanswered file as it was, so a newly opened one "
            L"shows nothing";
    return {false, seen};
  }
  std::wstring seen = L"an object for each of the " + std::to_wstring(requested.size()) + L" file(s) asked about";
  const size_t extra = objects.size() > requested.size() ? objects.size() - requested.size() : 0;
  if (extra > 0) seen += L", and " + std::to_wstring(extra) + L" more that the add-in drops";
  return {true, seen};
}
