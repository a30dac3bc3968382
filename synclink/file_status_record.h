#pragma once
// One open document's state: what the sync app last said about the file
// (SyncReport, written only by the update thread) and the add-in's own
// state for it (open, unsaved, the user's choices, written only by the UI
// thread).
#include <cstdint>
#include <map>
#include <string>

#include "common/com_ptr.h"
#include "common/platform_types.h"
#include "synclink/user_choices.h"

// downloadState values.
enum DownloadState : std::int32_t {
  kDownloading = 0,
  kDownloaded = 1,
  kAlreadyUpToDate = 2,
  kDownloadFailed = 3,
};

// What the sync app reports about a file, with the defaults a new record
// starts from: "loading" and "connected" until the first answer arrives.
struct SyncReport {
  std::uint32_t is_sync_file = 0;
  std::wstring file_combo_id;
  std::uint32_t is_internet_connected = 1;
  std::uint32_t is_loading_data_from_server = 1;
  std::wstring last_modified_by_quid;
  std::wstring last_modified_by;
  std::wstring last_modified_time;
  std::int32_t downloadState = kAlreadyUpToDate;
  std::uint32_t is_rename_present = 0;
  std::uint32_t is_move_present = 0;
  std::uint32_t is_folder_move_present = 0;
  std::wstring src;
  std::wstring dest;
  std::uint32_t is_delete_present = 0;
  std::uint32_t is_conflict_present = 0;
  std::wstring all_viewers_quid;
  std::wstring all_viewers_names;
  std::wstring all_editors_quid;
  std::wstring all_editors_names;
  // Identifier to display name, rebuilt from the two strings of each list.
  std::map<std::wstring, std::wstring> editorsByQuid;
  std::map<std::wstring, std::wstring> viewersByQuid;
};

struct FileStatusRecord {
  HWND hostWindow = nullptr;
  std::uint32_t isEditing = 0;
  // The host's document (Word document, Excel workbook or PowerPoint
  // presentation), an owned reference: copying a record copies it,
  // destroying releases it. Only the UI thread copies whole records.
  ComPtr<IDispatch> document;
  // The user's pending choices and the hiding (retryModify, resolveConflict,
  // retryRenameOrMove, retryDelete and uiHide go into the requests).
  UserChoices choices;
  // The add-in is closing the document for a sync action right now: the
  // before-close handler leaves the report to the action, which tells the
  // sync app only once the host has really closed the document.
  std::uint32_t closingForSyncAction = 0;
  // Cleared by every change an answer brings, set by the overlay once it
  // has drawn the record: the hand-over between the update thread and the
  // tick, so it lives here. The overlay's windows, their place and what
  // they show are the overlay's own (OverlayWindowState), never here.
  std::uint32_t overlayUpToDate = 0;
  std::uint32_t isOpen = 1;
  std::wstring seenStamp;

  SyncReport sync;
  // Counts the answers that changed `sync`: a drawing based on an older
  // count is not the drawing of the record as it is now.
  std::uint64_t syncVersion = 0;
};

// Clears the user's pending choices for a file (uiHide stays).
void ResetUserActionFlags(FileStatusRecord& record);

// What one answer object says about a file, with the defaults that a
// missing member writes into the record.
struct AnswerFields {
  std::wstring file_path;
  std::uint32_t is_sync_file = 0;
  std::wstring file_combo_id;
  std::uint32_t is_internet_connected = 1;
  std::uint32_t is_loading_data_from_server = 1;
  std::wstring last_modified_by_quid;
  std::wstring last_modified_by;
  std::wstring last_modified_time;
  std::wstring is_download_present;
  std::uint32_t is_conflict_present = 0;
  std::uint32_t is_rename_present = 0;
  std::uint32_t is_move_present = 0;
  std::uint32_t is_folder_move_present = 0;
  std::wstring src;
  std::wstring dest;
  std::uint32_t is_delete_present = 0;
  std::wstring all_viewers_quid;
  std::wstring all_viewers_names;
  std::wstring all_editors_quid;
  std::wstring all_editors_names;
};
