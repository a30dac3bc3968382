#pragma once
// The process-wide map from a document's full path (exactly as the host
// gives it, case-sensitive) to its record.
//
// Two threads share it. The update thread owns each record's SyncReport:
// it copies the report, applies an answer to the copy and puts back only
// the report, so nothing the UI thread stored meanwhile is lost. The UI
// thread owns the rest and reads and writes it only through calls that
// take the lock for a moment and hand out copies, never references, so no
// reference into the map outlives the lock and a closing document's steps
// happen as one.
#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "synclink/file_status_record.h"
#include "synclink/record_lock.h"
#include "synclink/undelivered_closes.h"

class FileStatusCache {
 public:
  // False after an exchange whose answer held no file object: the overlay
  // then draws nothing. Written by the update thread, read by the UI tick.
  std::atomic<bool> syncAppHasData{true};
  // Update cycles in a row whose request the sync app took without
  // answering in time. Written by the update thread only.
  std::atomic<int> cyclesWithoutAnswer{0};

  // Stores a fresh record with the defaults (taking a reference on the
  // document) and logs it. 1, or 0 when an exception was caught.
  int AddFile(const std::wstring& path, HWND hostWindow, std::uint32_t isEditing, IDispatch* document);
  bool Contains(const std::wstring& path) const;
  // A copy of the record, or nothing. The copy holds its own reference on
  // the document, so only the UI thread asks for one.
  std::optional<FileStatusRecord> Find(const std::wstring& path) const;
  // The paths in key order, and how many there are.
  std::vector<std::wstring> Paths() const;
  size_t Size() const;

  // Runs `change` on the stored record under the lock; false when there
  // is no record under the path. `change` makes plain assignments only: no
  // window, COM, pipe, log or cache call.
  bool Change(const std::wstring& path, const std::function<void(FileStatusRecord&)>& change);
  // Writes back what the UI thread changed in its copy: every field of the
  // add-in's own that differs between `before` (as read) and `after` (as
  // changed). overlayUpToDate is set only if no answer changed the record
  // since `before` was read. False when the record is gone.
  bool StoreUiChanges(const std::wstring& path, const FileStatusRecord& before, const FileStatusRecord& after);

  // The UI tick's copy of every record, in key order, taken under the lock
  // once whatever their number: a record whose path is among `openPaths`
  // (in key order; the documents the host has open) gets `stamp` as its
  // seenStamp first.
  struct TickEntry {
    std::wstring path;
    FileStatusRecord record;
  };
  std::vector<TickEntry> TakeForTick(const std::vector<std::wstring>& openPaths, const std::wstring& stamp);
  // What the tick changed in its copies, written back under the lock once,
  // each as StoreUiChanges writes it; records gone meanwhile are passed.
  struct UiChange {
    const std::wstring* path;
    const FileStatusRecord* before;
    const FileStatusRecord* after;
  };
  void StoreUiChangesOfAll(const std::vector<UiChange>& changes);

  // Erases the record; an unknown path is logged. 1, or 0 on an exception.
  int RemoveFile(const std::wstring& path);
  // A closing document in one step: marks it no longer open and shown as
  // nothing, builds its last request (which says "isOpen":false) and erases
  // the record, logging it. The request text, or "ERROR" when it could not
  // be built; empty when there was no record.
  // The close is also kept among the undelivered closes until
  // SettleCloses hears its exchange was answered; `closeId` (optional)
  // names it there.
  std::wstring CloseRecord(const std::wstring& path, std::uint64_t* closeId = nullptr);
  // The update thread's request (and the last one at disconnection): every
  // record, without uiHide, then every close not yet delivered, whose ids
  // go to `carriedCloses`.
  std::wstring BuildUpdateRequest(std::vector<std::uint64_t>& carriedCloses) const;
  // An exchange that carried the closes `ids` ended; `answered`: the sync
  // app answered it. Answered closes are done (their paths are returned);
  // the others stay for the next update request.
  std::vector<std::wstring> SettleCloses(const std::vector<std::uint64_t>& ids, bool answered);
  size_t UndeliveredCloseCount() const;
  // At disconnection, once the overlay has taken its windows down: sends
  // the sync app a last request for all files and empties the cache.
  int RemoveAll();

  // The request text for all records (empty onlyPath) or for one; "ERROR"
  // when it could not be built. includeUiHide adds each record's "uiHide"
  // (the hide option's own request).
  std::wstring BuildRequest(const std::wstring& onlyPath, bool includeUiHide) const;

  // Writes one answer object into the report of the record under `path`,
  // clearing overlayUpToDate when anything changed. The update thread's.
  void UpdateFile(const std::wstring& path, const AnswerFields& answer);

 private:
  std::wstring BuildRequestLocked(const std::wstring& onlyPath, bool includeUiHide) const;

  std::map<std::wstring, FileStatusRecord> records_;
  UndeliveredCloses undeliveredCloses_;
  mutable RecordLock lock_;
};

// The one cache of the process; created on first use, never destroyed.
FileStatusCache& TheFileStatusCache();
