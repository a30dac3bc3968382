#pragma once
#include <oaidl.h>

#include "common/com_ptr.h"

// Whether the running host's document holds changes that are not saved.
// The reference is given to the check and released by it, whichever way
// it returns. A failing read throws ComError to the caller.
bool HasUnsavedChanges(ComPtr<IDispatch> document);
