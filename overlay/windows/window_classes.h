#pragma once
#include <windows.h>

// Registers one of the eight overlay window classes with the module's own
// instance (its brush, the hand cursor, icon 201, and the window procedure
// of its kind); an unknown name gets the overlay procedure and no
// background brush. The class atom, or 0 (a name registered twice fails the
// second time without other effect).
ATOM RegisterOverlayWindowClass(HINSTANCE instance, const wchar_t* className);

// Takes back every class registered above, and their brushes (when the DLL
// may be unloaded: a class left behind would point at unmapped code).
void UnregisterOverlayWindowClasses(HINSTANCE instance);
