#pragma once
#include <oaidl.h>

#include <functional>

#include "common/com_ptr.h"

// How the add-in closes a document for a sync action.
enum class CloseMode : int {
  SaveThenClose = 0,
  CloseWithoutSaving = 1,
  CloseLettingTheHostAsk = 2,
};

// Closes the running host's document. Closing the last Word document or
// Excel workbook also quits the host; PowerPoint is never told to quit.
// A save that leaves the document modified stops the close. The host's
// before-close event fires inside, as it does for the user's own close,
// but that event comes before the host's own save question and before
// another add-in's say: only the host's list of open documents tells
// whether the document really went. True when it did, after `whenClosed`
// (if any) has run, before the host is told to quit; false when the save,
// the unsaved changes (logged), the user or the host kept it open.
bool CloseFile(ComPtr<IDispatch> document, CloseMode mode, const std::function<void()>& whenClosed = nullptr);

// Whether the running host still lists the document among its open ones
// (compared by COM identity: a document saved under another name is still
// the same document).
bool IsStillOpenInHost(IDispatch* document);
