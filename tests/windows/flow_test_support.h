#pragma once
// A user's way through the badge's panels, played in this process: the
// simulated Word, Excel or PowerPoint (its main window shown, its
// before-close events reaching the add-in's close handler), the overlay's
// window classes and UI toolkit as the connection sets them up, and the
// simulated sync app answering from a scenario and recording every request
// it receives. No thread runs by itself: the test asks the sync app when it
// wants (Cycle, the update thread's exchange), runs the UI timer's tick when
// it wants (Tick) and presses buttons as a user does.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "addin/event_sinks.h"
#include "overlay/layouts/control_id.h"
#include "tests/caller.h"
#include "tests/windows/in_process_host.h"
#include "tests/windows/sync_sim_process.h"
#include "tests/windows/tick_test_support.h"

// The id every scenario of these tests gives its files.
inline constexpr wchar_t kFileComboId[] = L"k3v9x";

// The fields of one request's file object that a flow changes; the rest
// are the fixed ones of a synced file.
struct RequestFields {
  bool isOpen = true;
  bool isEditing = false;
  bool resolveConflict = false;
  bool retryModify = false;
  bool retryRenameOrMove = false;
  // Only the hide request carries uiHide.
  bool withUiHide = false;
  bool uiHide = false;
  // Empty in the first request, before the sync app has given the id.
  const wchar_t* fileComboId = kFileComboId;
};

// The request for one file, as the add-in builds it for `host`.
std::wstring ExpectedRequest(const std::wstring& path, const RequestFields& fields, SimHost host);
// The bytes the sync app receives for a request text: UTF-16LE with its
// terminating NUL.
std::string MessageBytes(const std::wstring& text);

// The scenario lines of a synced file that the sync app has fully loaded,
// last modified by Bo Chan; a test appends what happens to it.
std::wstring SyncedFileScenario(const std::wstring& path);

// One child window of a panel, as a user sees it.
struct PanelChild {
  HWND window = nullptr;
  std::wstring className;
  std::wstring text;
  ControlId id = ControlId::None;
  DWORD style = 0;
  RECT rect{};  // in the panel's client coordinates
};
std::vector<PanelChild> PanelChildrenOf(HWND panel);
// The panel as text for a failure message: its size, whether it is on
// screen, and each child's class, id and text.
std::string DescribePanel(HWND panel);
std::wstring WindowTextOf(HWND window);
// The panel's outer size.
SIZE WindowSizeOf(HWND window);
// The control ids of the panel's buttons, in creation order.
std::vector<ControlId> ButtonIdsOf(HWND panel);
// The direct child whose class name ends in `classSuffix` (the common
// controls may carry a version before the name), or null.
HWND ChildOfClass(HWND panel, const wchar_t* classSuffix);

// The local time as the separate copies' names carry it.
std::string CopyStampNow();
// The files in a folder, sorted by name.
std::vector<std::wstring> FilesIn(const std::wstring& folder);

class OfficeFlow {
 public:
  explicit OfficeFlow(SimHost host);
  ~OfficeFlow();
  OfficeFlow(const OfficeFlow&) = delete;
  OfficeFlow& operator=(const OfficeFlow&) = delete;

  SimHost hostKind() const { return host_.host(); }
  InProcessHost& host() { return host_; }
  SimApplication& app() { return host_.app(); }

  // The full path a document of that name has in the test's folder.
  std::wstring PathOf(const std::wstring& name) const { return host_.folder() + L"\\" + name; }

  // Starts the sync app answering from `scenario` (written to a file),
  // recording every request as text and as bytes; the recordings start
  // empty.
  testing::AssertionResult StartSyncApp(const std::wstring& scenario);
  void StopSyncApp() { syncApp_.Stop(); }

  // The simulated user opens a saved file in the test's folder (its
  // content "content\n"), read-only if asked.
  SimDocument* Open(const std::wstring& name, bool readOnly = false);

  // One exchange of the update thread: every open file reported, the
  // answer written into the cache.
  void Cycle();
  // One tick of the UI timer, then what Office's message loop would
  // dispatch meanwhile (painting, the controls' own messages).
  void Tick();
  // Dispatches every message waiting for this thread.
  static void Pump();
  // Cycle, then Tick: the sync app's news reaches the screen.
  void CycleAndTick() {
    Cycle();
    Tick();
  }

  // The record's panel and badge; null when there is none (or no record).
  static HWND PanelOf(const std::wstring& path);
  static HWND BadgeOf(const std::wstring& path);

  // The user presses the panel's button with that control id (asserts it
  // is there and on screen); the messages it leads to are dispatched.
  void Press(HWND panel, ControlId id, Caller caller = {});
  // The button's click as its panel receives it (BN_CLICKED), without the
  // button taking the focus first and so the panel the activation. Under
  // Wine without a window manager, hiding the panel's badge while the
  // activated panel is up costs two seconds each time; rounds that only
  // count resources press this way.
  void Click(HWND panel, ControlId id, Caller caller = {});
  // The user ticks the panel's check box.
  void Check(HWND panel, ControlId id, Caller caller = {});

  // What the sync app received so far: each request's text, and each
  // request's bytes exactly as they arrived.
  std::vector<std::wstring> Requests() const;
  std::vector<std::string> RawRequests() const;

  // The add-in's log lines since the last ClearLog, the messages only.
  static std::vector<std::string> Messages() { return InProcessHost::Messages(); }
  static void ClearLog() { InProcessHost::ClearLog(); }

 private:
  InProcessHost host_;
  HostEventSinks sinks_;
  SyncSimProcess syncApp_;
  std::wstring scenarioFile_;
  std::wstring recordFile_;
  std::wstring recordRawFile_;
};

// Whether the host still has the document of that path open.
inline bool IsOpenInHost(OfficeFlow& flow, const std::wstring& path) {
  return flow.app().FindDocument(path) != nullptr;
}
