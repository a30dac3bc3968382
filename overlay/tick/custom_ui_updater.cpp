#include "overlay/tick/custom_ui_updater.h"

#include <windows.h>

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <vector>

#include "common/dispatch.h"
#include "common/host_application.h"
#include "common/host_profile.h"
#include "common/text.h"
#include "docactions/unsaved_changes.h"
#include "log/exception_barrier.h"
#include "log/log_last_error.h"
#include "log/log_line.h"
#include "log/write_log.h"
#include "overlay/layouts/overlay_geometry.h"
#include "overlay/tick/overlay_state_procedures.h"
#include "overlay/windows/overlay_window_states.h"
#include "overlay/windows/overlay_windows.h"
#include "overlay/windows/window_dpi.h"
#include "synclink/cache_mutex.h"
#include "synclink/file_status_cache.h"
#include "synclink/sync_app_pipe.h"

namespace {
Rect ToRect(const RECT& r) { return {r.left, r.top, r.right, r.bottom}; }
std::wstring Number(long value) { return std::to_wstring(value); }

// A stamp no two ticks share: the time as the log writes it, and a count.
std::wstring NextTickStamp() {
  static unsigned long long ticks = 0;
  SYSTEMTIME now;
  GetLocalTime(&now);
  return FormatLogTimestamp({now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond,
                             now.wMilliseconds}) +
         L" #" + std::to_wstring(++ticks);
}

// The host's active document, recorded if new; empty when there is none.
// With no document open Word and PowerPoint raise an error and Excel
// answers nothing: both mean "no active file", and the tick goes on.
std::wstring FindActiveFile(const HostProfile& profile, DocumentRecorder recordDocument) {
  ComPtr<IDispatch> document;
  try {
    document = GetObjectProperty(HostApplication.get(), DispatchNameFor(profile.activeDocumentMember));
  } catch (const ComError&) {
    return std::wstring();
  }
  if (!document) return std::wstring();
  return recordDocument(document);
}

// A badge dragged out of the Office window (or left there when the window
// shrank) goes back to its home; one wholly inside stays where the user
// put it.
void KeepActiveBadgeInside(const std::wstring& activeFile) {
  const SharedWindowState state = FindWindowState(activeFile);
  if (!state || state->badgeWindow == nullptr) return;
  const ThreadDpiAwarenessOf awareness(state->hostWindow);
  WriteLog(LogLevel::Debug, L"updating window pos: " + activeFile);
  RECT office{};
  if (!GetWindowRect(state->hostWindow, &office)) {
    LogLastError(L"couldn't get parent window rect while updating custom UI for active file");
    return;
  }
  const Point home = BadgeHomePosition(ToRect(office), DpiOfWindow(state->hostWindow));
  if (!HomePositionUsable(home)) return;
  RECT badge{};
  if (!GetWindowRect(state->badgeWindow, &badge)) {
    LogLastError(L"couldn't get child window rect while updating custom UI for active file");
    return;
  }
  const int width = badge.right - badge.left;
  const int height = badge.bottom - badge.top;
  WriteLog(LogLevel::Debug, L"posX=" + Number(state->posX) + L" posY=" + Number(state->posY) + L" office left=" +
                                Number(office.left) + L" right=" + Number(office.right) + L" top=" +
                                Number(office.top) + L" bottom=" + Number(office.bottom));
  if (BadgeStaysInside(ToRect(office), state->posX, state->posY, width, height)) return;
  if (!MoveWindow(state->badgeWindow, home.x, home.y, width, height, TRUE)) {
    LogLastError(L"couldn't move window");
  }
  state->posX = home.x;
  state->posY = home.y;
  if (state->subOverlayWindow) ShowWindow(state->subOverlayWindow, SW_HIDE);  // not moved with the badge
  WriteLog(LogLevel::Debug, L"updated window pos: " + activeFile);
  WriteLog(LogLevel::Debug, L"newPosX=" + Number(home.x) + L" newPosY=" + Number(home.y));
}

// The full names of the documents the host has open, in key order; a
// cached one missing from them has been closed behind the add-in's back.
std::vector<std::wstring> OpenDocumentPaths(const HostProfile& profile) {
  static DispatchName count(L"Count");
  static DispatchName item(L"Item");
  static DispatchName fullName(L"FullName");
  std::vector<std::wstring> paths;
  const ComPtr<IDispatch> documents =
      GetObjectProperty(HostApplication.get(), DispatchNameFor(profile.documentsMember));
  if (!documents) return paths;
  const long open = GetLongProperty(documents.get(), count);
  for (long i = 1; i <= open; ++i) {
    UniqueVariant index = UniqueVariant::Int32(i);
    UniqueVariant document;
    const HRESULT hr = InvokeByName(documents.get(), item, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {index.get()},
                                    document.put());
    if (FAILED(hr)) throw ComError(L"Item", hr);
    if (document.type() != VT_DISPATCH || document.get()->pdispVal == nullptr) continue;
    std::wstring name = GetStringProperty(document.get()->pdispVal, fullName, 0);
    WriteLog(LogLevel::Debug, L"open file: " + name);
    paths.push_back(std::move(name));
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

// A record the tick cannot handle any more (the host would not say whether
// it holds changes): its windows and the record go.
void DropRecord(const std::wstring& path) {
  DropWindowState(path);
  TheFileStatusCache().RemoveFile(path);
}

// A document the host closed without the add-in's close handler letting it
// go: the user closed it with unsaved changes and answered the host's own
// question with "don't save" (Word and Excel tell add-ins before they ask).
// That is an ordinary close: its windows and record go, and the sync app
// hears "isOpen":false once the tick has let the cache lock go.
void ForgetClosedDocument(const std::wstring& path, std::vector<std::wstring>& closedRequests) {
  WriteLog(LogLevel::Info, L"close file - " + path);
  DropWindowState(path);
  const std::wstring request = TheFileStatusCache().CloseRecord(path);
  if (!request.empty()) closedRequests.push_back(request);
}

// Office is per-monitor DPI aware: dragged to a monitor of another DPI, its
// window takes that DPI (WM_DPICHANGED goes to Office's own window, not to
// ours). The overlay built at the old DPI is taken down here and built
// again by this same pass at the new scale, at the badge's home for it.
void FollowHostDpi(const std::wstring& path, FileStatusRecord& working, OverlayWindowState& windows) {
  if (windows.badgeWindow == nullptr || working.hostWindow == nullptr) return;
  const int built = BuiltDpiOf(windows.badgeWindow);
  const int now = DpiOfWindow(working.hostWindow);
  if (built == 0 || built == now) return;
  WriteLog(LogLevel::Info, L"office window dpi changed from " + Number(built) + L" to " + Number(now) +
                               L", rebuilding overlay: " + path);
  DestroyOverlayWindows(windows.subOverlayWindow, windows.badgeWindow);
  windows.posX = 0;
  windows.posY = 0;
  working.overlayUpToDate = 0;
}

// One record's pass on the tick's copy; false when the record is gone (or
// the add-in's own close owns it), so there is nothing to write back.
bool UpdateRecord(const FileStatusCache::TickEntry& entry, FileStatusRecord& working, const std::wstring& stamp,
                  const std::wstring& activeFile, bool syncAppHasData, std::vector<std::wstring>& closedRequests) {
  const std::wstring& path = entry.path;
  // The overlay is measured, built and placed in the Office window's pixels.
  const ThreadDpiAwarenessOf awareness(working.hostWindow);
  // The add-in is closing it for a sync action, and reports that close
  // itself once the host is done.
  if (working.closingForSyncAction) return false;
  // A record whose check fails is dropped, with its windows.
  bool kept = false;
  const bool checked = GuardedWithTexts(
      false,
      [&] {
        WriteLog(LogLevel::Debug, L"checking: " + path);
        if (working.seenStamp != stamp) {
          ForgetClosedDocument(path, closedRequests);
          return true;
        }
        const bool editing = HasUnsavedChanges(working.document);
        WriteLog(LogLevel::Debug, L"checked: " + path);
        const bool editingChanged = editing != (working.isEditing != 0);
        working.isEditing = editing ? 1 : 0;
        const SharedWindowState windows = WindowStateFor(path, working.hostWindow);
        FollowHostDpi(path, working, *windows);
        RecordPass pass{path, activeFile, syncAppHasData, editingChanged};
        UpdateRecordOverlays(pass, working, *windows);
        kept = true;
        return true;
      },
      [&](const std::wstring& what) {
        return L"std exception occurred while checking unsaved changes exists or not - " + path + L", error=" + what;
      },
      [&] { return L"unknown exception occurred while checking unsaved changes exists or not: " + path; });
  if (!checked) DropRecord(path);
  return kept;
}

// The cache's lock is taken a fixed number of times, whatever the number
// of documents: once to copy every record, once to write back what the
// pass changed (and once per document closed behind the add-in's back).
// The windows, the host's objects and the log are all worked outside it.
void Tick(DocumentRecorder recordDocument, std::vector<std::wstring>& closedRequests) {
  const HostProfile* profile = CurrentHostProfile();
  if (profile == nullptr || !HostApplication) return;
  const std::wstring stamp = NextTickStamp();
  const std::wstring activeFile = FindActiveFile(*profile, recordDocument);
  WriteLog(LogLevel::Debug, L"active file: " + activeFile);
  KeepActiveBadgeInside(activeFile);
  FileStatusCache& cache = TheFileStatusCache();
  const std::vector<FileStatusCache::TickEntry> entries = cache.TakeForTick(OpenDocumentPaths(*profile), stamp);
  // The windows of files no longer cached go.
  std::vector<std::wstring> cached;
  cached.reserve(entries.size());
  for (const auto& entry : entries) cached.push_back(entry.path);
  KeepWindowStatesOf(cached);

  const bool syncAppHasData = cache.syncAppHasData.load();
  std::vector<FileStatusRecord> working;
  working.reserve(entries.size());
  std::vector<FileStatusCache::UiChange> changes;
  changes.reserve(entries.size());
  for (const auto& entry : entries) {
    working.push_back(entry.record);
    if (UpdateRecord(entry, working.back(), stamp, activeFile, syncAppHasData, closedRequests)) {
      changes.push_back({&entry.path, &entry.record, &working.back()});
    }
  }
  cache.StoreUiChangesOfAll(changes);
}
}  // namespace

void UpdateCustomUI(DocumentRecorder recordDocument) {
  WriteLog(LogLevel::Debug, L"updating custom ui");
  std::vector<std::wstring> closedRequests;
  {
    // Taken only if free at this moment, released in any case: the tick
    // never waits for the update thread.
    const UiTickCacheLock lock;
    GuardedVoid(L"updating custom ui", [&] { Tick(recordDocument, closedRequests); });
  }
  // Sent without the cache lock: the update thread may be holding the
  // pipe while it waits for that lock.
  GuardedVoid(L"sending closed file info", [&] {
    for (const std::wstring& request : closedRequests) TheSyncAppPipe().Exchange(request);
  });
  WriteLog(LogLevel::Debug, L"updated custom ui");
}
