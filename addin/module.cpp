// The DLL's entry points for COM: the class object, the unload check, and
// DllMain, which only keeps the instance handle.
#include "addin/module.h"

#include <atomic>

#include "addin/class_factory.h"
#include "log/addin_log.h"
#include "overlay/window_classes.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace {
std::atomic<long> g_moduleReferences{0};
}

HINSTANCE ModuleInstance() { return reinterpret_cast<HINSTANCE>(&__ImageBase); }

std::wstring ModulePath() {
  wchar_t path[MAX_PATH * 4];
  const DWORD length = GetModuleFileNameW(ModuleInstance(), path, static_cast<DWORD>(std::size(path)));
  return std::wstring(path, length);
}

void ModuleAddRef() { ++g_moduleReferences; }
void ModuleRelease() { --g_moduleReferences; }
long ModuleReferenceCount() { return g_moduleReferences.load(); }

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(instance);
  return TRUE;
}

extern "C" HRESULT __stdcall DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  return GetClassObject(clsid, iid, object);
}

extern "C" HRESULT __stdcall DllCanUnloadNow() {
  if (ModuleReferenceCount() != 0) return S_FALSE;
  // Windows does not unregister a DLL's window classes when the DLL goes;
  // a class left behind would point at code that is no longer mapped.
  UnregisterOverlayWindowClasses(ModuleInstance());
  // Nor does it close a file that an unloaded DLL left open: the log would
  // stay held without delete sharing, and every other Office process's
  // rotation would fail for as long as this process lives.
  CloseAddinLogFile();
  return S_OK;
}
