#pragma once
#include <oaidl.h>

#include "common/com_ptr.h"

// The host's before-close event for any document, whoever closes it: a
// cached document that really goes is reported to the sync app as closed
// and dropped from the cache, its overlays taken down. The host's close is
// never cancelled.
void OnFileClosing(ComPtr<IDispatch> document);
