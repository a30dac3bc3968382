#include "docactions/close_file.h"

#include "addin/connection_state.h"
#include "common/dispatch.h"
#include "common/office_app.h"
#include "docactions/unsaved_changes.h"
#include "log/write_log.h"
#include "synclink/file_status_cache.h"
#include "synclink/sync_app_pipe.h"

namespace {
// Calls whose outcome shows in the next unsaved-changes check or in the
// cache rather than in their HRESULT.
void CallIgnoringResult(IDispatch* object, DispatchName& member, std::initializer_list<const VARIANT*> args,
                        LCID lcid = 0) {
  UniqueVariant result;
  InvokeByName(object, member, DISPATCH_METHOD, args, result.put(), lcid);
}

// After the add-in's own close: the last document's close ends the host.
void QuitWhenNoDocumentIsLeft(IDispatch* application, DispatchName& collection, bool passMissingArguments) {
  static DispatchName count(L"Count");
  static DispatchName quit(L"Quit");
  ComPtr<IDispatch> documents = GetObjectProperty(application, collection);
  if (!documents || GetLongProperty(documents.get(), count) != 0) return;
  if (passMissingArguments) {
    UniqueVariant missing1 = UniqueVariant::Missing(), missing2 = UniqueVariant::Missing(),
                  missing3 = UniqueVariant::Missing();
    CallIgnoringResult(application, quit, {missing1.get(), missing2.get(), missing3.get()});
  } else {
    CallIgnoringResult(application, quit, {});
  }
}

void CloseWordDocument(const ComPtr<IDispatch>& document, CloseMode mode) {
  static DispatchName save(L"Save");
  static DispatchName close(L"Close");
  static DispatchName documents(L"Documents");
  long saveChanges = 0;  // wdDoNotSaveChanges
  if (mode == CloseMode::SaveThenClose) {
    CallIgnoringResult(document.get(), save, {});
    if (HasUnsavedChanges(document, nullptr, nullptr)) {
      WriteLog(LogLevel::Error, L"we didn't close file since file has unsaved changes");
      return;
    }
    saveChanges = -1;  // wdSaveChanges
  } else if (mode == CloseMode::CloseLettingTheHostAsk) {
    saveChanges = -2;  // wdPromptToSaveChanges
  }
  UniqueVariant changes = UniqueVariant::Int32(saveChanges);
  UniqueVariant format = UniqueVariant::Missing(), route = UniqueVariant::Missing();
  CallIgnoringResult(document.get(), close, {changes.get(), format.get(), route.get()});
  QuitWhenNoDocumentIsLeft(WordApplication.get(), documents, true);
}

void CloseExcelWorkbook(const ComPtr<IDispatch>& workbook, CloseMode mode) {
  static DispatchName save(L"Save");
  static DispatchName close(L"Close");
  static DispatchName workbooks(L"Workbooks");
  UniqueVariant changes, fileName = UniqueVariant::Missing(), route = UniqueVariant::Missing();
  if (mode == CloseMode::SaveThenClose) {
    CallIgnoringResult(workbook.get(), save, {}, 0);
    if (HasUnsavedChanges(nullptr, workbook, nullptr)) {
      WriteLog(LogLevel::Error, L"we didn't close file since file has unsaved changes");
      return;
    }
    changes = UniqueVariant::Bool(true);
  } else if (mode == CloseMode::CloseWithoutSaving) {
    changes = UniqueVariant::Bool(false);
  } else {
    changes = UniqueVariant::Missing();  // Excel asks the user itself
  }
  CallIgnoringResult(workbook.get(), close, {changes.get(), fileName.get(), route.get()}, 0);
  QuitWhenNoDocumentIsLeft(ExcelApplication.get(), workbooks, false);
}

void ClosePowerPointPresentation(const ComPtr<IDispatch>& presentation, CloseMode mode) {
  static DispatchName save(L"Save");
  static DispatchName close(L"Close");
  if (mode == CloseMode::SaveThenClose) {
    CallIgnoringResult(presentation.get(), save, {});
    if (HasUnsavedChanges(nullptr, nullptr, presentation)) {
      WriteLog(LogLevel::Error, L"we didn't close file since file has unsaved changes (during SaveChanges)");
      return;
    }
  } else if (mode == CloseMode::CloseLettingTheHostAsk) {
    // PowerPoint's Close cannot ask the user, so a modified presentation stays open.
    if (HasUnsavedChanges(nullptr, nullptr, presentation)) {
      WriteLog(LogLevel::Error, L"we didn't close file since file has unsaved changes (during PromptToSaveChanges)");
      return;
    }
  }
  CallIgnoringResult(presentation.get(), close, {});
}
}  // namespace

void CloseFile(ComPtr<IDispatch> wordDocument, ComPtr<IDispatch> excelWorkbook,
               ComPtr<IDispatch> powerPointPresentation, CloseMode mode) {
  WriteLog(LogLevel::Info, L"going to close file");
  switch (OfficeApp) {
    case OfficeHost::Word:
      CloseWordDocument(wordDocument, mode);
      break;
    case OfficeHost::Excel:
      CloseExcelWorkbook(excelWorkbook, mode);
      break;
    case OfficeHost::PowerPoint:
      ClosePowerPointPresentation(powerPointPresentation, mode);
      break;
    default:
      break;
  }
}

namespace {
void HideAndDestroy(HWND& window) {
  if (window == nullptr) return;
  ShowWindow(window, SW_HIDE);
  DestroyWindow(window);
  window = nullptr;  // forgotten the moment it is gone
}
}  // namespace

void OnFileClosing(ComPtr<IDispatch> wordDocument, ComPtr<IDispatch> excelWorkbook,
                   ComPtr<IDispatch> powerPointPresentation) {
  static DispatchName wordFullName(L"FullName");
  static DispatchName excelFullName(L"FullName");
  static DispatchName powerPointFullName(L"FullName");
  std::wstring path;
  switch (OfficeApp) {
    case OfficeHost::Word: path = GetStringProperty(wordDocument.get(), wordFullName); break;
    case OfficeHost::Excel: path = GetStringProperty(excelWorkbook.get(), excelFullName, 0); break;
    case OfficeHost::PowerPoint: path = GetStringProperty(powerPointPresentation.get(), powerPointFullName); break;
    default: return;
  }

  FileStatusCache& cache = TheFileStatusCache();
  if (!cache.Contains(path)) {
    WriteLog(LogLevel::Warning, L"close file - file info not available in cache - " + path);
    return;
  }
  const bool unsaved = HasUnsavedChanges(wordDocument, excelWorkbook, powerPointPresentation);
  FileStatusRecord& record = cache.Find(path);
  const bool addinIsClosingIt = record.retryModify || record.resolveConflict || record.retryRenameOrMove;
  if (unsaved && !addinIsClosingIt) {
    // The user's own close of a modified file: the host now asks about
    // saving, and the document may well stay open.
    WriteLog(LogLevel::Info, L"user tried to close file, but has unsaved changes - " + path);
    return;
  }
  WriteLog(LogLevel::Info, (unsaved ? L"we close this file to sync event - " : L"close file - ") + path);
  record.isOpen = 0;
  HideAndDestroy(record.subOverlayWindow);
  HideAndDestroy(record.badgeWindow);
  record.overlayKind = 0;
  const std::wstring request = cache.BuildRequest(path, 0);
  cache.RemoveFile(path);
  TheSyncAppPipe().Exchange(request);
}
