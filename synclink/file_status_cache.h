#pragma once
// The process-wide map from a document's full path (exactly as the host
// gives it, case-sensitive) to its record.
#include <atomic>
#include <map>
#include <mutex>
#include <string>

#include "synclink/file_status_record.h"

class FileStatusCache {
 public:
  // False after an exchange whose answer held no file object: the overlay
  // then draws nothing. Written by the update thread, read by the UI tick.
  std::atomic<bool> syncAppHasData{true};

  // Stores a fresh record with the defaults (taking a reference on each
  // non-null document) and logs it. 1, or 0 when an exception was caught.
  int AddFile(const std::wstring& path, HWND hostWindow, std::uint32_t isEditing, IDispatch* document);
  bool Contains(const std::wstring& path) const;
  // The record under the path; callers check Contains first. References
  // stay valid while other records come and go.
  FileStatusRecord& Find(const std::wstring& path);
  // Erases the record; an unknown path is logged. 1, or 0 on an exception.
  int RemoveFile(const std::wstring& path);
  // At disconnection: hands every record's overlay windows to
  // `destroyWindows` (the overlay's, which lives above this layer), sends
  // the sync app a last request for all files and empties the cache.
  using WindowDestroyer = void (*)(FileStatusRecord& record);
  int RemoveAll(WindowDestroyer destroyWindows);

  // The request text for all records (empty onlyPath) or for one; "ERROR"
  // when it could not be built.
  std::wstring BuildRequest(const std::wstring& onlyPath, std::uint32_t includeUiHide);

  // Writes one answer object into the record under `path` (copy, edit,
  // write back whole), clearing overlayUpToDate on every change.
  void UpdateFile(const std::wstring& path, HWND hostWindow, std::uint32_t isEditing, const AnswerFields& answer);
  // The record's own window and unsaved state, read under the map lock;
  // false when there is no record under the path (any more).
  bool HostStateOf(const std::wstring& path, HWND& hostWindow, std::uint32_t& isEditing) const;

  // For tests and the overlay: the records in key order.
  const std::map<std::wstring, FileStatusRecord>& records() const { return records_; }

 private:
  std::map<std::wstring, FileStatusRecord> records_;
  // Orders insertions, erasures and whole-record write-backs between the UI
  // thread and the update thread inside this process.
  mutable std::recursive_mutex mapLock_;
};

// The one cache of the process; created on first use, never destroyed.
FileStatusCache& TheFileStatusCache();
