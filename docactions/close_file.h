#pragma once
#include <oaidl.h>

#include "common/com_ptr.h"

// How the add-in closes a document for a sync action.
enum class CloseMode : int {
  SaveThenClose = 0,
  CloseWithoutSaving = 1,
  CloseLettingTheHostAsk = 2,
};

// Closes the running host's document. Closing the last Word document or
// Excel workbook also quits the host; PowerPoint is never told to quit.
// A save that leaves the document modified stops the close.
void CloseFile(ComPtr<IDispatch> wordDocument, ComPtr<IDispatch> excelWorkbook,
               ComPtr<IDispatch> powerPointPresentation, CloseMode mode);

// The host's before-close event for any document, whoever closes it: a
// cached document that really goes is reported to the sync app as closed
// and dropped from the cache. The host's close is never cancelled.
void OnFileClosing(ComPtr<IDispatch> wordDocument, ComPtr<IDispatch> excelWorkbook,
                   ComPtr<IDispatch> powerPointPresentation);
