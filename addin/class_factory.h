#pragma once
#include <windows.h>
#include <unknwn.h>

// Answers DllGetClassObject from the table of creatable classes.
HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** object);
