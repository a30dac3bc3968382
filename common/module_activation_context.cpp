#include "common/module_activation_context.h"

#include "common/module_instance.h"

namespace {
// Created once from the manifest resource and kept for the process: every
// overlay window creation activates it again.
HANDLE ModuleActivationContext() {
  static const HANDLE context = [] {
    ACTCTXW description{};
    description.cbSize = sizeof(description);
    description.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    description.hModule = ModuleInstance();
    description.lpResourceName = MAKEINTRESOURCEW(2);  // ISOLATIONAWARE_MANIFEST_RESOURCE_ID
    return CreateActCtxW(&description);
  }();
  return context;
}
}  // namespace

ScopedModuleActivation::ScopedModuleActivation(bool wanted) {
  if (!wanted) return;
  const HANDLE context = ModuleActivationContext();
  if (context != INVALID_HANDLE_VALUE) active_ = ActivateActCtx(context, &cookie_) != FALSE;
}

ScopedModuleActivation::~ScopedModuleActivation() {
  if (active_) DeactivateActCtx(0, cookie_);
}
