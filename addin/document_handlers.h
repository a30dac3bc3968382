#pragma once
// The first open or activate event of a saved document puts it into the
// cache and wakes the update thread, so the sync app is asked about it at
// once. The routine is given one reference to the running host's document
// (empty when the event's object was not a document) and lets go of it; it
// gives back the document's full path.
#include <oaidl.h>

#include <string>

#include "common/com_ptr.h"

std::wstring RecordDocument(ComPtr<IDispatch> document);
