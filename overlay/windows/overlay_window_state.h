#pragma once
// What the overlay keeps of one file's windows: which badge and panel are
// on screen, where the badge sits, what it shows and how far a press or
// drag on it has gone. Owned by the UI thread alone, so no lock guards it;
// the file's record in the cache holds what the sync app said and what the
// user chose, never a window.
//
// Every badge and panel carries a pointer to its file's state in
// GWLP_USERDATA, bound at WM_NCCREATE from CreateWindowExW's lpParam and
// cleared at WM_NCDESTROY, when the state forgets the window: a message
// finds its state in constant time, whatever the number of open files.
#include <windows.h>

#include <cstdint>
#include <string>

struct OverlayWindowState {
  // The file's path, the key of its record.
  std::wstring path;
  // The Office window the overlays sit on and are kept inside.
  HWND hostWindow = nullptr;
  HWND badgeWindow = nullptr;
  HWND subOverlayWindow = nullptr;
  // The badge's screen position; 0/0 until it is first placed.
  std::int32_t posX = 0;
  std::int32_t posY = 0;
  // The cursor at the last left-button press on the badge.
  std::int32_t pressX = 0;
  std::int32_t pressY = 0;
  // The left button is held on the badge; the badge moved since the press.
  std::uint32_t buttonDown = 0;
  std::uint32_t dragged = 0;
  // The OverlayKind the badge shows.
  std::int32_t overlayKind = 0;
};

// WM_NCCREATE: keeps the state passed as lpParam (it may be null) with the
// window.
void BindWindowState(HWND window, LPARAM createStruct);
// The state the window was created for, or null.
OverlayWindowState* WindowStateOf(HWND window);
// WM_NCDESTROY: the state forgets the window the moment it is gone, and a
// badge destroyed in the middle of a drag ends the drag.
void UnbindWindowState(HWND window);
