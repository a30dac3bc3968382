#pragma once
// Any program on the desktop can send a panel a WM_COMMAND or a WM_NOTIFY.
// A panel acts on one only when it comes from its own control: a button
// press from a visible button of that panel with that id, a link click
// from that panel's own link, for one of the add-in's help addresses.
// Everything else is dropped with one log line, before any document action,
// request or browser.
#include <windows.h>
#include <commctrl.h>

// WM_COMMAND: lParam must be a visible child window of `panel` (the panel
// itself and its own ancestors visible) whose control id is `id`.
bool IsCommandFromOwnControl(HWND panel, int id, LPARAM lParam);

// NM_CLICK or NM_RETURN of a link: sent from this thread, hwndFrom a child
// SysLink of `panel` whose control id is idFrom, on its first link, whose
// address is one of the add-in's help addresses.
bool IsLinkClickFromOwnLink(HWND panel, const NMLINK& link);

// Whether the message being handled (WM_NOTIFY, WM_DRAWITEM) came from a
// window of this thread, so its lParam points into our own memory. From
// another thread or process the pointer means nothing here, and reading it
// could crash Office.
bool IsSentFromThisThread();
