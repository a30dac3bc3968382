#pragma once
#include <oaidl.h>

#include "common/com_ptr.h"

// Saves a copy of the running host's document next to it, named with the
// user and the local time ("report (ann 2026-11-15 22.24.03.007).docx"),
// through the host's own object model; the open document stays attached to
// its own file. 1 when the copy exists afterwards, else 0.
int SaveSeparateCopy(ComPtr<IDispatch> document);
