#include "synclink/file_status_cache.h"

#include "log/exception_barrier.h"
#include "synclink/record_update.h"
#include "synclink/request_message.h"

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
    {
      std::lock_guard<std::recursive_mutex> lock(mapLock_);
      records_[path] = std::move(record);
    }
    WriteLog(LogLevel::Info, L"file info stored in cache - " + path);
    return 1;
  });
}

bool FileStatusCache::Contains(const std::wstring& path) const {
  std::lock_guard<std::recursive_mutex> lock(mapLock_);
  return records_.count(path) != 0;
}

FileStatusRecord& FileStatusCache::Find(const std::wstring& path) {
  std::lock_guard<std::recursive_mutex> lock(mapLock_);
  return records_.at(path);
}

int FileStatusCache::RemoveFile(const std::wstring& path) {
  return Guarded(L"removing cache data", 0, [&] {
    size_t erased = 0;
    {
      std::lock_guard<std::recursive_mutex> lock(mapLock_);
      erased = records_.erase(path);
    }
    if (erased != 0) {
      WriteLog(LogLevel::Info, L"file info removed from cache - " + path);
    } else {
      WriteLog(LogLevel::Error, L"file info not available in cache - " + path);
    }
    return 1;
  });
}

std::wstring FileStatusCache::BuildRequest(const std::wstring& onlyPath, std::uint32_t includeUiHide) {
  return Guarded(L"getting all cache data", std::wstring(L"ERROR"), [&] {
    std::lock_guard<std::recursive_mutex> lock(mapLock_);
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
    for (const auto& [path, stored] : records_) {
      if (!onlyPath.empty() && path != onlyPath) continue;
      // A copy, so no member changes between two of its fragments.
      const FileStatusRecord record = stored;
      if (!first) request += L',';
      first = false;
      AppendRequestObject(request, path, record, includeUiHide != 0, OfficeApp);
    }
    request += kRequestEnd;
    return request;
  });
}

void FileStatusCache::UpdateFile(const std::wstring& path, HWND hostWindow, std::uint32_t isEditing,
                                 const AnswerFields& answer) {
  GuardedVoid(L"updating cache data", [&] {
    // Copied under the lock: the UI thread may erase the record meanwhile.
    FileStatusRecord working = [&] {
      std::lock_guard<std::recursive_mutex> lock(mapLock_);
      return records_.at(path);
    }();
    ApplyAnswerToRecord(working, hostWindow, isEditing, answer);
    {
      std::lock_guard<std::recursive_mutex> lock(mapLock_);
      const auto stored = records_.find(path);
      // A document closed while its answer was applied stays gone: an
      // answer never brings a record (and its document reference) back.
      if (stored == records_.end()) return;
      stored->second = std::move(working);  // the whole record in one step
    }
    WriteLog(LogLevel::Debug, L"windows cache updated");
  });
}

bool FileStatusCache::HostStateOf(const std::wstring& path, HWND& hostWindow, std::uint32_t& isEditing) const {
  std::lock_guard<std::recursive_mutex> lock(mapLock_);
  const auto stored = records_.find(path);
  if (stored == records_.end()) return false;
  hostWindow = stored->second.hostWindow;
  isEditing = stored->second.isEditing;
  return true;
}
