#include "synclink/answer_apply.h"

#include "log/write_log.h"

AnswerFields CollectAnswerFields(const AnswerObject& object) {
  AnswerFields fields;
  for (const auto& [key, value] : object) {
    if (key == L"file_path") fields.file_path = value;
    else if (key == L"is_sync_file") fields.is_sync_file = ParseFlag(value);
    else if (key == L"file_combo_id") fields.file_combo_id = value;
    else if (key == L"is_internet_connected") fields.is_internet_connected = ParseFlag(value);
    else if (key == L"is_loading_data_from_server") fields.is_loading_data_from_server = ParseFlag(value);
    else if (key == L"last_modified_by_quid") fields.last_modified_by_quid = value;
    else if (key == L"last_modified_by") fields.last_modified_by = value;
    else if (key == L"last_modified_time") fields.last_modified_time = value;
    else if (key == L"is_download_present") fields.is_download_present = value;
    else if (key == L"is_conflict_present") fields.is_conflict_present = ParseFlag(value);
    else if (key == L"is_rename_present") fields.is_rename_present = ParseFlag(value);
    else if (key == L"is_move_present") fields.is_move_present = ParseFlag(value);
    else if (key == L"is_folder_move_present") fields.is_folder_move_present = ParseFlag(value);
    else if (key == L"src") fields.src = value;
    else if (key == L"dest") fields.dest = value;
    else if (key == L"is_delete_present") fields.is_delete_present = ParseFlag(value);
    else if (key == L"all_viewers_quid") fields.all_viewers_quid = value;
    else if (key == L"all_viewers_names") fields.all_viewers_names = value;
    else if (key == L"all_editors_quid") fields.all_editors_quid = value;
    else if (key == L"all_editors_names") fields.all_editors_names = value;
    // Unknown keys are left alone: newer sync apps may say more.
  }
  return fields;
}

void ApplyAnswer(FileStatusCache& cache, const std::vector<AnswerObject>& objects) {
  cache.syncAppHasData = !objects.empty();
  // Asked once: the trace lines below are built only when the log keeps them.
  const bool tracing = LogWrites(LogLevel::Debug);
  for (const AnswerObject& object : objects) {
    const AnswerFields fields = CollectAnswerFields(object);
    if (!cache.Contains(fields.file_path)) {
      if (tracing) WriteLog(LogLevel::Debug, L"no, data doesn't exists");
      continue;
    }
    if (tracing) WriteLog(LogLevel::Debug, L"yes, data exists");
    // The UI thread may drop the record at any moment (the document was
    // closed), and then the answer for it no longer matters; an update
    // that finds it gone changes nothing either.
    if (!cache.Contains(fields.file_path)) continue;
    cache.UpdateFile(fields.file_path, fields);
  }
}
