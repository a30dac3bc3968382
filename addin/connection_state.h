#pragma once
// What only the connection itself keeps between OnConnection and
// OnDisconnection.
#include <windows.h>

#include <string>

// Handle of the heap-corruption handler while it is installed.
extern PVOID VectoredHandlerHandle;

// The host executable's path, lower-cased.
extern std::wstring OfficeAppPath;
