#include "bench/realistic_files.h"

namespace {
const wchar_t* const kFolders[] = {L"Finance\\2024\\Quarterly", L"Sales\\Proposals", L"Engineering\\Designs\\Drafts",
                                   L"HR\\Policies"};
const wchar_t* const kExtensions[] = {L".docx", L".xlsx", L".pptx"};

std::wstring Member(const wchar_t* key, const std::wstring& value, bool last = false) {
  return std::wstring(L"\"") + key + L"\":\"" + value + (last ? L"\"" : L"\",");
}
}  // namespace

std::wstring DocumentPath(std::size_t i) {
  return std::wstring(L"C:\\Users\\ann.berg\\Filewell Drive\\") + kFolders[i % 4] + L"\\document-" +
         std::to_wstring(100000 + i) + kExtensions[i % 3];
}

std::wstring AnswerObjectText(std::size_t i, int variant) {
  const bool b = variant != 0;
  const std::wstring n = std::to_wstring(100000 + i);
  std::wstring text = L"{";
  text += Member(L"file_path", DocumentPath(i));
  text += Member(L"is_sync_file", L"true");
  text += Member(L"file_combo_id", L"8f3c2a91-" + n);
  text += Member(L"is_internet_connected", b ? L"false" : L"true");
  text += Member(L"is_loading_data_from_server", b ? L"true" : L"false");
  text += Member(L"last_modified_by_quid", b ? L"u-4411-bo" : L"u-2087-ann");
  text += Member(L"last_modified_by", b ? L"Bo Lindqvist" : L"Ann Berg");
  text += Member(L"last_modified_time", b ? L"2024-05-03 08:12:55" : L"2024-05-02 10:41:07");
  text += Member(L"is_download_present", b ? L"Downloading" : L"Already Up-to-date");
  text += Member(L"is_conflict_present", b ? L"true" : L"false");
  text += Member(L"is_rename_present", b ? L"true" : L"false");
  text += Member(L"is_move_present", L"false");
  text += Member(L"is_folder_move_present", L"false");
  text += Member(L"src", b ? DocumentPath(i) : L"");
  text += Member(L"dest", b ? DocumentPath(i + 1) : L"");
  text += Member(L"is_delete_present", L"false");
  text += Member(L"all_viewers_quid", b ? L"u-4411-bo|u-7730-cy|u-1200-di" : L"u-7730-cy");
  text += Member(L"all_viewers_names", b ? L"Bo Lindqvist|Cy Moreau|Di Okafor" : L"Cy Moreau");
  text += Member(L"all_editors_quid", b ? L"u-4411-bo" : L"");
  text += Member(L"all_editors_names", b ? L"Bo Lindqvist" : L"", true);
  text += L"}";
  return text;
}

std::wstring AnswerText(std::size_t count) {
  std::wstring text = L"{\"resp\":[";
  for (std::size_t i = 0; i < count; ++i) {
    if (i != 0) text += L',';
    text += AnswerObjectText(i, static_cast<int>(i % 2));
  }
  text += L"]}";
  return text;
}
