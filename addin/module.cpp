// The DLL's entry points for COM: the class object, the unload check, and
// DllMain, which only keeps the instance handle.
#include "addin/module.h"

#include <atomic>

#include "addin/class_factory.h"
#include "common/module_instance.h"
#include "log/addin_log.h"
#include "overlay/windows/window_classes.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace {
std::atomic<long> g_moduleReferences{0};
}

std::wstring ModulePath() {
  wchar_t path[MAX_PATH * 4];
  const DWORD length = GetModuleFileNameW(ModuleInstance(), path, static_cast<DWORD>(std::size(path)));
  return std::wstring(path, length);
}

// A connected add-in sets up what lives as long as the process: the named
// mutexes, the update thread's stop event, the log object, and the
// statically linked runtime's record of the host's UI thread and its
// emergency exception pool. None of that can be given back when the DLL
// unloads, so each unload and reload would leave another set behind (six
// handles and some 90 KB each time); a DLL that stays keeps the one set.
bool PinModule() {
  HMODULE module = nullptr;
  return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                            reinterpret_cast<LPCWSTR>(&__ImageBase), &module) != FALSE;
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
