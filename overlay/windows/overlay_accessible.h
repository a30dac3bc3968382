#pragma once
// Names and roles for screen readers (Active Accessibility, and UI
// Automation through its MSAA proxy). Our windows answer WM_GETOBJECT for
// OBJID_CLIENT with the system's standard object for the window wrapped in
// a small object of ours that gives the name and role (and, for buttons,
// the default action) the standard one cannot know: the layered badge's
// state, a panel's title, an owner-drawn caption as drawn (an "&" shown,
// not taken for a mnemonic), a link's text without its markup. Everything
// else is the standard object's answer.
#include <windows.h>

enum class AccessibleControl {
  // A badge or status strip: the sentence of its file's kind.
  Badge,
  // A panel (a top-level window owned by a badge): its window text.
  Panel,
  OwnerDrawnButton,
  OwnerDrawnTitle,
  Link,
};

// WM_GETOBJECT of a top-level overlay window (a badge, a strip or a panel).
// False for other object ids and for the overlay's child areas: the caller
// passes the message on to the default procedure.
bool AnswerOverlayGetObject(HWND window, WPARAM wParam, LPARAM lParam, LRESULT& result);

// Makes a child control answer WM_GETOBJECT as `control` for as long as it
// lives (a subclass that goes at WM_NCDESTROY). False, logged, when the
// control could not be subclassed: it keeps the standard answer.
bool GiveAccessibleAnswer(HWND control, AccessibleControl kind);

// The wrapping objects alive now; tests check none outlives its callers.
long LiveOverlayAccessibleObjects();
