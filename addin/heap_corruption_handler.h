#pragma once
#include <windows.h>

// Lets the host run on when the heap reports corruption instead of letting
// the process end there; every other exception goes on to the next handler.
LONG CALLBACK HeapCorruptionHandler(EXCEPTION_POINTERS* exception);
