#pragma once
#include <oaidl.h>

#include "common/com_ptr.h"

// Whether the running host's document (the one of the three references
// that belongs to it) holds changes that are not saved. The references are
// given to the check and released by it, whichever way it returns. A
// failing read throws ComError to the caller.
bool HasUnsavedChanges(ComPtr<IDispatch> wordDocument, ComPtr<IDispatch> excelWorkbook,
                       ComPtr<IDispatch> powerPointPresentation);
