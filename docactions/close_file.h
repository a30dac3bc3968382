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
// A save that leaves the document modified stops the close. The host's
// before-close event fires inside, as it does for the user's own close.
// True when the host was asked to close the document and did not refuse;
// false when the save or the unsaved changes stopped the close (logged) or
// the host's Close failed.
bool CloseFile(ComPtr<IDispatch> document, CloseMode mode);
