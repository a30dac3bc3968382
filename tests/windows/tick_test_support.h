#pragma once
// What the tests of the UI tick and of the overlay's window procedure
// share: the overlay's toolkit and window classes set up once per process
// (as the connection does once per add-in), a simulated host whose main
// window stands visible at a known place, answers of the sync app written
// the way the update thread writes them, ticks run directly (never waited
// for), and readers of the overlay windows and of the log.
#include <windows.h>

#include <string>
#include <vector>

#include "overlay/windows/overlay_window_state.h"
#include "overlay/decision/overlay_kind.h"
#include "overlay/layouts/control_id.h"
#include "synclink/file_status_record.h"
#include "tests/caller.h"
#include "tests/windows/in_process_host.h"

// GDI+, the common controls, the images folder and the eight overlay
// window classes, registered with this program's own instance: once per
// process, whichever test comes first.
void StartOverlayUiOnce();

// Where most tests put the Office window on the 1280 × 800 screen, and the
// badge's home inside it: 300 pixels left of its right edge, 100 above its
// bottom edge.
inline constexpr RECT kOfficeRect{100, 50, 1100, 750};
inline constexpr POINT kBadgeHome{800, 650};
// The badge is a 70 × 70 layered window.
inline constexpr int kBadgeSize = 70;

// Shows `window` at `rect` (screen coordinates) without activating it.
void PlaceWindow(HWND window, const RECT& rect);

// One tick of the overlay, as the 4000 ms timer runs it.
void Tick();
void Ticks(int count);

// Dispatches whatever the thread's queue holds (paints, timers), so the
// overlays draw as they would in Office's message loop.
void PumpMessages();

// A sync app's answer for a synced file with nothing to tell: online,
// loaded, up to date, nobody else in it. Tests change what they need.
AnswerFields QuietAnswer();
// One other person in the file: "|"-separated identifiers and names as
// the sync app sends them.
void AddViewers(AnswerFields& answer, const std::wstring& quids, const std::wstring& names);
void AddEditors(AnswerFields& answer, const std::wstring& quids, const std::wstring& names);
// Writes the answer into the file's record as the update thread does
// (clearing overlayUpToDate when anything changed).
void Answer(const std::wstring& path, const AnswerFields& answer);

// The window's class name, its owner.
std::wstring ClassNameOf(HWND window);
HWND OwnerOf(HWND window);
// The texts of all the window's descendants, depth first.
std::vector<std::wstring> ChildTexts(HWND window);
bool HasChildText(HWND window, const std::wstring& text);

// The first descendant with this control id, or null.
HWND ChildWithId(HWND window, ControlId id);

// The messages of the log's Info lines, in order.
std::vector<std::string> InfoMessages();
// How many log lines carry exactly this message.
size_t CountOf(const std::vector<std::string>& messages, const std::string& message);

testing::AssertionResult RectIs(const RECT& actual, long left, long top, long right, long bottom);

// A simulated host for overlay tests: its main window (every document's
// Office window) visible at `office`, the sync app marked as having data,
// and, at the end, every cached record's windows destroyed before the
// records go.
class OverlayHost : public InProcessHost {
 public:
  explicit OverlayHost(SimHost host, const RECT& office = kOfficeRect);
  ~OverlayHost();

  // Opens a saved file of that base name (the host's extension added),
  // records it as the host's open and activate events would, and makes it
  // the active document.
  SimDocument* OpenRecorded(const std::wstring& baseName);
  // The same, with the sync app's answer for it written at once.
  SimDocument* OpenAnswered(const std::wstring& baseName, const AnswerFields& answer);
  void Activate(SimDocument* document) { app().ActivateDocument(document); }
};

// A copy of the file's overlay window state (an empty one when it has none).
OverlayWindowState WindowsOf(const std::wstring& path);
// The file's windows and the kind its badge shows (-1 for a file not
// cached).
HWND BadgeOf(const std::wstring& path);
HWND PanelOf(const std::wstring& path);
int KindOf(const std::wstring& path);

// The record shows `kind` with a visible 70 × 70 badge at (x, y) and a
// panel window holding `panelText`, visible or not as said.
void ExpectBadgeAndPanel(const std::wstring& path, int kind, const std::wstring& panelText, bool panelVisible,
                         POINT at = kBadgeHome, Caller caller = {});
// The record shows nothing: no windows and kind 0.
void ExpectNothingShown(const std::wstring& path, Caller caller = {});
