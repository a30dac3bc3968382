#pragma once
// Loads COM add-ins the way Office does at start-up: the Addins keys of the
// host (HKCU, then HKLM), LoadBehavior 3, the ProgID resolved through the
// classes root, _IDTExtensibility2.
#include <windows.h>

#include <string>
#include <vector>

#include "addin/extensibility.h"
#include "common/com_ptr.h"
#include "common/unique_resource.h"
#include "tools/officesim/host_kind.h"

struct LoadedAddin {
  std::wstring progId;
  ComPtr<_IDTExtensibility2> addin;
  UniqueModule module;  // set when the class was found without COM's help
  // The COMAddIn object Office hands to OnConnection as AddInInst.
  ComPtr<IDispatch> instance;
};

// Creates every add-in listed for the host with LoadBehavior 3, prints the
// road taken for each, and returns them (not yet connected).
std::vector<LoadedAddin> CreateListedAddins(SimHost host);

// Lets go of an add-in's DLL when it says it may go (the manual road's
// CoFreeUnusedLibraries).
void FreeAddinModule(LoadedAddin& addin);
