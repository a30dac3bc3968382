#pragma once
// What the simulated user does with the screen: looks at it (a screenshot
// saved as PNG), presses a button or ticks a box by its caption, clicks a
// point, and waits until a text appears. Buttons and texts are searched in
// every visible window of this (the host's UI) thread, the add-in's
// overlays included.
#include <string>

// Saves the whole screen as a PNG file; false when it could not.
bool SaveScreenshot(const std::wstring& path);

// BM_CLICK on the visible button (or check box) with exactly this caption;
// false when there is none.
bool ClickButton(const std::wstring& caption);

// A left click at a point of the screen, sent to the window under it in its
// own client coordinates; false when no window of ours is there.
bool ClickAt(int x, int y);

// Prints every top-level window of this thread: class, text, place, whether
// it is visible, and its owner (the add-in's badge and panels included).
void PrintWindows();

// Pumps messages until a visible window of this thread shows exactly this
// text, or the time is up; false on time-out.
bool WaitForText(const std::wstring& text, unsigned long timeoutMs);
