#pragma once
#include <windows.h>
#include <string>

// The DLL's full path.
std::wstring ModulePath();

// Keeps the DLL mapped until the process ends; false (with the error in
// GetLastError) when Windows refused.
bool PinModule();

// Counts live objects and server locks; DllCanUnloadNow reads it.
void ModuleAddRef();
void ModuleRelease();
long ModuleReferenceCount();
