#include "synclink/file_status_cache.h"

#include <exception>
#include <mutex>
#include <utility>

#include "log/exception_barrier.h"
#include "synclink/record_update.h"
#include "synclink/request_message.h"

namespace {
using Lock = std::lock_guard<RecordLock>;

// One field of the add-in's own: the UI thread's copy wins where it
// changed the field, the stored value stays where it did not.
template <class T>
void KeepChange(T& stored, const T& before, const T& after) {
  if (!(after == before)) stored = after;
}

void MergeUiChanges(FileStatusRecord& s, const FileStatusRecord& b, const FileStatusRecord& a) {
  KeepChange(s.hostWindow, b.hostWindow, a.hostWindow);
  KeepChange(s.isEditing, b.isEditing, a.isEditing);
  KeepChange(s.document, b.document, a.document);
  s.choices.MergeChanges(b.choices, a.choices);
  KeepChange(s.closingForSyncAction, b.closingForSyncAction, a.closingForSyncAction);
  KeepChange(s.isOpen, b.isOpen, a.isOpen);
  KeepChange(s.seenStamp, b.seenStamp, a.seenStamp);
  if (a.overlayUpToDate != b.overlayUpToDate) {
    // Drawn from a report that an answer has replaced since: not up to date.
    s.overlayUpToDate = a.overlayUpToDate && s.syncVersion == b.syncVersion ? 1 : 0;
  }
}
}  // namespace

FileStatusCache& TheFileStatusCache() {
  static auto* cache = new FileStatusCache();  // outlives every thread that may still use it
  return *cache;
}

int FileStatusCache::AddFile(const std::wstring& path, HWND hostWindow, std::uint32_t isEditing, IDispatch* document) {
  return Guarded(L"adding cache data", 0, [&] {
    FileStatusRecord record;
    record.hostWindow = hostWindow;
    record.isEditing = isEditing;
    record.document = ComPtr<IDispatch>(document);
    FileStatusRecord replaced;  // released outside the lock
    bool closeWithdrawn = false;
    {
      Lock lock(lock_);
      FileStatusRecord& stored = records_[path];
      replaced = std::move(stored);
      stored = std::move(record);
      closeWithdrawn = undeliveredCloses_.Forget(path);
    }
    if (closeWithdrawn) WriteLog(LogLevel::Info, L"undelivered close withdrawn, file open again - " + path);
    WriteLog(LogLevel::Info, L"file info stored in cache - " + path);
    return 1;
  });
}

bool FileStatusCache::Contains(const std::wstring& path) const {
  Lock lock(lock_);
  return records_.count(path) != 0;
}

std::optional<FileStatusRecord> FileStatusCache::Find(const std::wstring& path) const {
  Lock lock(lock_);
  const auto found = records_.find(path);
  if (found == records_.end()) return std::nullopt;
  return found->second;
}

std::vector<std::wstring> FileStatusCache::Paths() const {
  Lock lock(lock_);
  std::vector<std::wstring> paths;
  paths.reserve(records_.size());
  for (const auto& entry : records_) paths.push_back(entry.first);
  return paths;
}

size_t FileStatusCache::Size() const {
  Lock lock(lock_);
  return records_.size();
}

bool FileStatusCache::Change(const std::wstring& path, const std::function<void(FileStatusRecord&)>& change) {
  Lock lock(lock_);
  const auto found = records_.find(path);
  if (found == records_.end()) return false;
  change(found->second);
  return true;
}

bool FileStatusCache::StoreUiChanges(const std::wstring& path, const FileStatusRecord& before,
                                     const FileStatusRecord& after) {
  ComPtr<IDispatch> replacedDocument;  // released outside the lock
  Lock lock(lock_);
  const auto found = records_.find(path);
  if (found == records_.end()) return false;
  if (!(after.document == before.document)) replacedDocument = found->second.document;
  MergeUiChanges(found->second, before, after);
  return true;
}

std::vector<FileStatusCache::TickEntry> FileStatusCache::TakeForTick(const std::vector<std::wstring>& openPaths,
                                                                     const std::wstring& stamp) {
  std::vector<TickEntry> entries;
  Lock lock(lock_);
  entries.reserve(records_.size());
  auto open = openPaths.begin();
  for (auto& [path, record] : records_) {
    // Both in key order: one walk through each.
    while (open != openPaths.end() && *open < path) ++open;
    if (open != openPaths.end() && *open == path) record.seenStamp = stamp;
    entries.push_back({path, record});
  }
  return entries;
}

void FileStatusCache::StoreUiChangesOfAll(const std::vector<UiChange>& changes) {
  std::vector<ComPtr<IDispatch>> replacedDocuments;  // released outside the lock
  Lock lock(lock_);
  for (const UiChange& change : changes) {
    const auto found = records_.find(*change.path);
    if (found == records_.end()) continue;
    if (!(change.after->document == change.before->document)) replacedDocuments.push_back(found->second.document);
    MergeUiChanges(found->second, *change.before, *change.after);
  }
}

int FileStatusCache::RemoveFile(const std::wstring& path) {
  return Guarded(L"removing cache data", 0, [&] {
    std::optional<FileStatusRecord> erased;  // its document is released outside the lock
    {
      Lock lock(lock_);
      const auto found = records_.find(path);
      if (found != records_.end()) {
        erased = std::move(found->second);
        records_.erase(found);
      }
    }
    if (erased) {
      WriteLog(LogLevel::Info, L"file info removed from cache - " + path);
    } else {
      WriteLog(LogLevel::Error, L"file info not available in cache - " + path);
    }
    return 1;
  });
}

std::wstring FileStatusCache::CloseRecord(const std::wstring& path, std::uint64_t* closeId) {
  std::wstring request;
  std::exception_ptr failure;  // logged once the lock is let go
  std::optional<FileStatusRecord> erased;
  std::vector<std::wstring> forgotten;
  {
    Lock lock(lock_);
    const auto found = records_.find(path);
    if (found == records_.end()) return std::wstring();
    // Every request built after this one no longer lists the file, and
    // none built before it can be sent after it (the pipe's turn is held
    // around building and sending).
    found->second.isOpen = 0;
    try {
      std::wstring fileObject;
      AppendRequestObject(fileObject, path, found->second, false, OfficeApp);
      request = kRequestStart + fileObject + kRequestEnd;
      // Kept until an answer shows the sync app has heard it.
      const std::uint64_t id = undeliveredCloses_.Keep(path, std::move(fileObject), forgotten);
      if (closeId != nullptr) *closeId = id;
    } catch (...) {
      failure = std::current_exception();
    }
    erased = std::move(found->second);
    records_.erase(found);
  }
  if (failure) {
    request = Guarded(L"getting all cache data", std::wstring(L"ERROR"), [&]() -> std::wstring {
      std::rethrow_exception(failure);
    });
  }
  for (const std::wstring& lost : forgotten) {
    WriteLog(LogLevel::Error, L"too many undelivered closes, the oldest is dropped - " + lost);
  }
  WriteLog(LogLevel::Info, L"file info removed from cache - " + path);
  return request;
}

std::wstring FileStatusCache::BuildUpdateRequest(std::vector<std::uint64_t>& carriedCloses) const {
  return Guarded(L"getting all cache data", std::wstring(L"ERROR"), [&] {
    Lock lock(lock_);
    if (undeliveredCloses_.size() == 0) return BuildRequestLocked(L"", false);
    std::wstring request = BuildRequestLocked(L"", false);
    request.resize(request.size() - std::char_traits<wchar_t>::length(kRequestEnd));
    request.reserve(request.size() + undeliveredCloses_.AppendedLength() + 2);
    undeliveredCloses_.AppendTo(request, records_.size(), carriedCloses);
    request += kRequestEnd;
    return request;
  });
}

std::vector<std::wstring> FileStatusCache::SettleCloses(const std::vector<std::uint64_t>& ids, bool answered) {
  return Guarded(L"settling undelivered closes", std::vector<std::wstring>(), [&] {
    std::vector<std::wstring> delivered;
    if (ids.empty()) return delivered;
    Lock lock(lock_);
    undeliveredCloses_.Settle(ids, answered, delivered);
    return delivered;
  });
}

size_t FileStatusCache::UndeliveredCloseCount() const {
  Lock lock(lock_);
  return undeliveredCloses_.size();
}

std::wstring FileStatusCache::BuildRequest(const std::wstring& onlyPath, bool includeUiHide) const {
  return Guarded(L"getting all cache data", std::wstring(L"ERROR"), [&] {
    Lock lock(lock_);
    return BuildRequestLocked(onlyPath, includeUiHide);
  });
}

std::wstring FileStatusCache::BuildRequestLocked(const std::wstring& onlyPath, bool includeUiHide) const {
  // One allocation for the whole text: grown by doubling, a request for
  // many files is copied again and again and, once large, every copy is
  // fresh memory the system has to hand out page by page.
  size_t length = std::char_traits<wchar_t>::length(kRequestStart) + std::char_traits<wchar_t>::length(kRequestEnd);
  for (const auto& [path, stored] : records_) {
    if (onlyPath.empty() || path == onlyPath) length += MaxRequestObjectLength(path, stored) + 1;
  }
  std::wstring request;
  request.reserve(length);
  request += kRequestStart;
  bool first = true;
  // Read under the lock, so no member changes between two of a record's
  // fragments and no document reference is touched on the update thread.
  for (const auto& [path, stored] : records_) {
    if (!onlyPath.empty() && path != onlyPath) continue;
    if (!first) request += L',';
    first = false;
    AppendRequestObject(request, path, stored, includeUiHide, OfficeApp);
  }
  request += kRequestEnd;
  return request;
}

void FileStatusCache::UpdateFile(const std::wstring& path, const AnswerFields& answer) {
  GuardedVoid(L"updating cache data", [&] {
    // The report is the update thread's alone: copying it out, applying
    // the answer and putting it back loses nothing the UI thread stored
    // meanwhile. The change tags are logged outside the lock.
    SyncReport report = [&] {
      Lock lock(lock_);
      return records_.at(path).sync;
    }();
    const bool changed = ApplyAnswerToReport(report, answer);
    {
      Lock lock(lock_);
      const auto stored = records_.find(path);
      // A document closed while its answer was applied stays gone: an
      // answer never brings a record (and its document reference) back.
      if (stored == records_.end()) return;
      stored->second.sync = std::move(report);
      if (changed) {
        stored->second.overlayUpToDate = 0;
        ++stored->second.syncVersion;
      }
    }
    WriteLog(LogLevel::Debug, L"windows cache updated");
  });
}
