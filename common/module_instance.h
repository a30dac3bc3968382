#pragma once
#include <windows.h>

// The instance handle of the module this code is linked into: the add-in's
// DLL inside Office (never GetModuleHandle(NULL), which is Office's own
// executable), or the test program that links the layers directly.
HINSTANCE ModuleInstance();
