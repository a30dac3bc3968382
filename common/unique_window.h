#pragma once
// An owned window: destroyed when its owner goes, unless something else
// destroyed it first (a window's owner or parent takes it down with
// itself). Release it once the window is handed on.
#include <windows.h>

#include "common/unique_resource.h"

struct WindowTraits {
  using Type = HWND;
  static Type Invalid() { return nullptr; }
  static bool IsValid(Type h) { return h != nullptr && IsWindow(h); }
  static void Close(Type h) { DestroyWindow(h); }
};

using UniqueWindow = UniqueResource<WindowTraits>;
