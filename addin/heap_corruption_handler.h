#pragma once
#include <windows.h>

// Notes heap corruption in the log and passes the exception on, so that
// Windows ends the process as it would without us: running on over a
// corrupt heap could write damaged documents or give a hostile process a
// foothold. Every other exception goes on to the next handler unlogged.
LONG CALLBACK HeapCorruptionHandler(EXCEPTION_POINTERS* exception);
