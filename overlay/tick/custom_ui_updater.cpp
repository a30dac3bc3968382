#include "overlay/tick/custom_ui_updater.h"

#include <windows.h>

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
#include "overlay/windows/overlay_windows.h"
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
  FileStatusCache& cache = TheFileStatusCache();
  const std::optional<FileStatusRecord> record = cache.Find(activeFile);
  if (!record || record->badgeWindow == nullptr) return;
  WriteLog(LogLevel::Debug, L"updating window pos: " + activeFile);
  RECT office{};
  if (!GetWindowRect(record->hostWindow, &office)) {
    LogLastError(L"couldn't get parent window rect while updating custom UI for active file");
    return;
  }
  const Point home = BadgeHomePosition(ToRect(office));
  if (!HomePositionUsable(home)) return;
  RECT badge{};
  if (!GetWindowRect(record->badgeWindow, &badge)) {
    LogLastError(L"couldn't get child window rect while updating custom UI for active file");
    return;
  }
  const int width = badge.right - badge.left;
  const int height = badge.bottom - badge.top;
  WriteLog(LogLevel::Debug, L"posX=" + Number(record->posX) + L" posY=" + Number(record->posY) + L" office left=" +
                                Number(office.left) + L" right=" + Number(office.right) + L" top=" +
                                Number(office.top) + L" bottom=" + Number(office.bottom));
  if (BadgeStaysInside(ToRect(office), record->posX, record->posY, width, height)) return;
  if (!MoveWindow(record->badgeWindow, home.x, home.y, width, height, TRUE)) {
    LogLastError(L"couldn't move window");
  }
  cache.Change(activeFile, [&](FileStatusRecord& stored) {
    stored.posX = home.x;
    stored.posY = home.y;
  });
  if (record->subOverlayWindow) ShowWindow(record->subOverlayWindow, SW_HIDE);  // not moved with the badge
  WriteLog(LogLevel::Debug, L"updated window pos: " + activeFile);
  WriteLog(LogLevel::Debug, L"newPosX=" + Number(home.x) + L" newPosY=" + Number(home.y));
}

// Every document the host still has open gets this tick's stamp; a cached
// one without it has been closed behind the add-in's back.
void StampOpenDocuments(const HostProfile& profile, const std::wstring& stamp) {
  static DispatchName count(L"Count");
  static DispatchName item(L"Item");
  static DispatchName fullName(L"FullName");
  const ComPtr<IDispatch> documents =
      GetObjectProperty(HostApplication.get(), DispatchNameFor(profile.documentsMember));
  if (!documents) return;
  const long open = GetLongProperty(documents.get(), count);
  FileStatusCache& cache = TheFileStatusCache();
  for (long i = 1; i <= open; ++i) {
    UniqueVariant index = UniqueVariant::Int32(i);
    UniqueVariant document;
    const HRESULT hr = InvokeByName(documents.get(), item, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {index.get()},
                                    document.put());
    if (FAILED(hr)) throw ComError(L"Item", hr);
    if (document.type() != VT_DISPATCH || document.get()->pdispVal == nullptr) continue;
    const std::wstring name = GetStringProperty(document.get()->pdispVal, fullName, 0);
    WriteLog(LogLevel::Debug, L"open file: " + name);
    cache.Change(name, [&](FileStatusRecord& record) { record.seenStamp = stamp; });
  }
}

// A record the tick cannot handle any more (its document was closed, or
// the host would not say whether it holds changes): its windows and the
// record go.
void DropRecord(const std::wstring& path, FileStatusRecord& working) {
  DestroyOverlayWindows(working.subOverlayWindow, working.badgeWindow);
  DestroyRecordOverlays(path);
  TheFileStatusCache().RemoveFile(path);
}

// A document the host closed without the add-in's close handler letting it
// go: the user closed it with unsaved changes and answered the host's own
// question with "don't save" (Word and Excel tell add-ins before they ask).
// That is an ordinary close: its windows and record go, and the sync app
// hears "isOpen":false once the tick has let the cache lock go.
void ForgetClosedDocument(const std::wstring& path, FileStatusRecord& working,
                          std::vector<std::wstring>& closedRequests) {
  WriteLog(LogLevel::Info, L"close file - " + path);
  DestroyOverlayWindows(working.subOverlayWindow, working.badgeWindow);
  DestroyRecordOverlays(path);
  const std::wstring request = TheFileStatusCache().CloseRecord(path);
  if (!request.empty()) closedRequests.push_back(request);
}

void UpdateRecord(const std::wstring& path, const std::wstring& stamp, const std::wstring& activeFile,
                  std::vector<std::wstring>& closedRequests) {
  FileStatusCache& cache = TheFileStatusCache();
  const std::optional<FileStatusRecord> before = cache.Find(path);
  if (!before) return;
  FileStatusRecord working = *before;
  // The add-in is closing it for a sync action, and reports that close
  // itself once the host is done.
  if (working.closingForSyncAction) return;
  // A record whose check fails is dropped, with its windows.
  const bool checked = GuardedWithTexts(
      false,
      [&] {
        WriteLog(LogLevel::Debug, L"checking: " + path);
        if (working.seenStamp != stamp) {
          ForgetClosedDocument(path, working, closedRequests);
          return true;
        }
        const bool editing = HasUnsavedChanges(working.document);
        WriteLog(LogLevel::Debug, L"checked: " + path);
        const bool editingChanged = editing != (working.isEditing != 0);
        working.isEditing = editing ? 1 : 0;
        RecordPass pass{path, activeFile, cache.syncAppHasData.load(), editingChanged};
        UpdateRecordOverlays(pass, working);
        cache.StoreUiChanges(path, *before, working);
        return true;
      },
      [&](const std::wstring& what) {
        return L"std exception occurred while checking unsaved changes exists or not - " + path + L", error=" + what;
      },
      [&] { return L"unknown exception occurred while checking unsaved changes exists or not: " + path; });
  if (!checked) DropRecord(path, working);
}

void Tick(DocumentRecorder recordDocument, std::vector<std::wstring>& closedRequests) {
  const HostProfile* profile = CurrentHostProfile();
  if (profile == nullptr || !HostApplication) return;
  const std::wstring stamp = NextTickStamp();
  const std::wstring activeFile = FindActiveFile(*profile, recordDocument);
  WriteLog(LogLevel::Debug, L"active file: " + activeFile);
  KeepActiveBadgeInside(activeFile);
  StampOpenDocuments(*profile, stamp);
  // A path list taken now: a record dropped on the way is simply passed.
  for (const std::wstring& path : TheFileStatusCache().Paths()) UpdateRecord(path, stamp, activeFile, closedRequests);
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
