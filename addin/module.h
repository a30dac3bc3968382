#pragma once
#include <windows.h>
#include <string>

// The DLL's own instance handle (never GetModuleHandle(NULL), which is
// Office's executable).
HINSTANCE ModuleInstance();
// The DLL's full path.
std::wstring ModulePath();

// Counts live objects and server locks; DllCanUnloadNow reads it.
void ModuleAddRef();
void ModuleRelease();
long ModuleReferenceCount();
