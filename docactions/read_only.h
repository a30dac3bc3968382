#pragma once
#include <oaidl.h>

#include "common/com_ptr.h"

// Whether the running host opened the document read-only, so a save could
// only fail (Document.ReadOnly, Workbook.ReadOnly, Presentation.ReadOnly;
// PowerPoint's is an MsoTriState, true as -1). A failing read throws
// ComError to the caller.
bool IsReadOnly(const ComPtr<IDispatch>& document);
