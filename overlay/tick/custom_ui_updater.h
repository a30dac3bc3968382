#pragma once
// The UI tick: every 4000 ms, on the host's UI thread, it finds the active
// document, keeps its badge inside the Office window, notes which cached
// documents the host still has open (dropping the others), and decides for
// every record what its badge and panel show.
#include <oaidl.h>

#include <string>

#include "common/com_ptr.h"

// The document routine that gives an open document's full name and
// records it if it is not cached yet (the add-in host's).
using DocumentRecorder = std::wstring (*)(ComPtr<IDispatch> document);

// One tick. Never throws and never waits: the cache mutex is only taken if
// it is free at that moment.
void UpdateCustomUI(DocumentRecorder recordDocument);
