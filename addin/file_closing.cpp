#include "addin/file_closing.h"

#include "common/dispatch.h"
#include "docactions/unsaved_changes.h"
#include "log/write_log.h"
#include "overlay/windows/overlay_window_states.h"
#include "synclink/file_status_cache.h"
#include "synclink/sync_app_pipe.h"
#include "synclink/undelivered_closes.h"

void OnFileClosing(ComPtr<IDispatch> document) {
  static DispatchName fullName(L"FullName");
  const std::wstring path = GetStringProperty(document.get(), fullName, 0);

  FileStatusCache& cache = TheFileStatusCache();
  if (!cache.Contains(path)) {
    WriteLog(LogLevel::Warning, L"close file - file info not available in cache - " + path);
    return;
  }
  const std::optional<FileStatusRecord> record = cache.Find(path);
  if (!record) return;
  if (record->closingForSyncAction) {
    // The add-in's own close for a sync action: the host may still ask
    // about saving, or another add-in may still cancel. The action tells
    // the sync app once the document is really gone.
    WriteLog(LogLevel::Debug, L"close file - the sync action reports it once closed - " + path);
    return;
  }
  const bool unsaved = HasUnsavedChanges(document);
  const UserChoices& choices = record->choices;
  const bool addinIsClosingIt = choices.Has(UserChoice::retryModify) || choices.Has(UserChoice::resolveConflict) ||
                                choices.Has(UserChoice::retryRenameOrMove);
  if (unsaved && !addinIsClosingIt) {
    // The user's own close of a modified file: the host now asks about
    // saving, and the document may well stay open.
    WriteLog(LogLevel::Info, L"user tried to close file, but has unsaved changes - " + path);
    return;
  }
  WriteLog(LogLevel::Info, (unsaved ? L"we close this file to sync event - " : L"close file - ") + path);
  DropWindowState(path);
  // One step: no longer open, shown as nothing, its last request built
  // (saying "isOpen":false) and the record gone.
  std::uint64_t closeId = 0;
  const std::wstring request = cache.CloseRecord(path, &closeId);
  if (request.empty()) return;
  // Office waits for this exchange, within its bound. A close the sync app
  // did not answer is kept, and the update thread's next request carries it
  // until the sync app answers again.
  const std::wstring answer = TheSyncAppPipe().Exchange(request);
  const bool delivered = AnswerConfirmsRequest(answer);
  cache.SettleCloses({closeId}, delivered);
  if (!delivered) WriteLog(LogLevel::Warning, L"close not delivered to sync app, kept for the next request - " + path);
}
