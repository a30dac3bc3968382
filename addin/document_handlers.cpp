#include "addin/document_handlers.h"

#include "addin/connection_state.h"
#include "common/dispatch.h"
#include "docactions/unsaved_changes.h"
#include "log/write_log.h"
#include "synclink/file_status_cache.h"

namespace {
// What differs between the three hosts: which slot of the record holds
// the document, how its window is found, and the word used in the log.
struct HostDocumentKind {
  int slot;  // 0 Word document, 1 Excel workbook, 2 PowerPoint presentation
  const wchar_t* logWord;
};

const HostDocumentKind kWord{0, L"document"};
const HostDocumentKind kExcel{1, L"workbook"};
const HostDocumentKind kPowerPoint{2, L"presentation"};

HWND HostWindowOf(const HostDocumentKind& kind, IDispatch* document) {
  static DispatchName activeWindow(L"ActiveWindow");
  static DispatchName wordHwnd(L"Hwnd");
  static DispatchName excelHwnd(L"Hwnd");
  static DispatchName powerPointHwnd(L"HWND");
  long handle = 0;
  if (kind.slot == 0) {
    // Word's Application has no window handle; the document's window has.
    ComPtr<IDispatch> window = GetObjectProperty(document, activeWindow);
    handle = GetLongProperty(window.get(), wordHwnd);
  } else if (kind.slot == 1) {
    handle = GetLongProperty(ExcelApplication.get(), excelHwnd);
  } else {
    handle = GetLongProperty(PowerPointApplication.get(), powerPointHwnd);
  }
  // Window handles are 32-bit values even in 64-bit processes.
  return reinterpret_cast<HWND>(static_cast<INT_PTR>(handle));
}

std::wstring RecordDocument(const HostDocumentKind& kind, ComPtr<IDispatch> document) {
  static DispatchName fullNames[3] = {DispatchName(L"FullName"), DispatchName(L"FullName"), DispatchName(L"FullName")};
  static DispatchName names[3] = {DispatchName(L"Name"), DispatchName(L"Name"), DispatchName(L"Name")};
  FileStatusCache& cache = TheFileStatusCache();

  const std::wstring path = GetStringProperty(document.get(), fullNames[kind.slot], 0);
  // The first open or activate event makes the record; later ones leave it.
  if (cache.Contains(path)) return path;

  const std::wstring name = GetStringProperty(document.get(), names[kind.slot], 0);
  if (path == name) {
    // Never saved to a folder: the sync app cannot know anything about it.
    WriteLog(LogLevel::Debug, std::wstring(kind.logWord) + L" opens/activates, but unsaved " + kind.logWord + L" - " +
                                  path);
    return path;
  }
  WriteLog(LogLevel::Info, std::wstring(kind.logWord) + L" open/activate/save - " + path);

  const HWND hostWindow = HostWindowOf(kind, document.get());
  ComPtr<IDispatch> slots[3];
  slots[kind.slot] = document;
  const bool isEditing = HasUnsavedChanges(slots[0], slots[1], slots[2]);
  cache.AddFile(path, hostWindow, isEditing ? 1 : 0, slots[0].get(), slots[1].get(), slots[2].get());
  SetEvent(ImmediateUpdateEvent.get());
  return path;
}
}  // namespace

std::wstring RecordWordDocument(ComPtr<IDispatch> document) { return RecordDocument(kWord, std::move(document)); }

std::wstring RecordExcelWorkbook(ComPtr<IDispatch> workbook) { return RecordDocument(kExcel, std::move(workbook)); }

std::wstring RecordPowerPointPresentation(ComPtr<IDispatch> presentation) {
  return RecordDocument(kPowerPoint, std::move(presentation));
}
