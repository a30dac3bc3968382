#pragma once
#include <windows.h>

// Activates the DLL's own manifest (common controls v6) for the lifetime of
// the object. Office's process may run under a different context; anything
// that creates common controls for us does so inside this scope.
class ScopedModuleActivation {
 public:
  // `wanted` false: does nothing (for code that activates only around the
  // creation of common controls).
  explicit ScopedModuleActivation(bool wanted = true);
  ~ScopedModuleActivation();
  ScopedModuleActivation(const ScopedModuleActivation&) = delete;
  ScopedModuleActivation& operator=(const ScopedModuleActivation&) = delete;

 private:
  ULONG_PTR cookie_ = 0;
  bool active_ = false;
};
