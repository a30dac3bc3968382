#pragma once
// What the timer does for the active, visible sync file: the first row of
// the decision table whose condition holds names the state to carry out.
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <vector>

#include "overlay/decision/overlay_kind.h"

// The record's fields that the table reads, as plain values. The defaults
// describe a quiet file: online, loaded, up to date, nobody else in it.
struct OverlayFacts {
  bool is_internet_connected = true;
  bool is_loading_data_from_server = false;
  bool is_delete_present = false;
  bool is_conflict_present = false;
  bool resolveConflictClicked = false;
  // 0 Downloading, 1 Downloaded, 2 Already Up-to-date, 3 Download Failed.
  // Unsigned on purpose: any value the sync app invents counts as "not
  // downloading", never as "downloading".
  std::uint32_t downloadState = 2;
  bool downloadRequested = false;
  bool skipNextUpdate = false;
  bool is_rename_present = false;
  bool is_move_present = false;
  bool renameMoveClicked = false;
  std::size_t editorCount = 0;
  std::size_t viewerCount = 0;
};

enum class OverlayState {
  NoInternet,
  Loading,
  Delete,
  Conflict,
  ConflictConfirm,
  // An error panel is up after a finished download action: this tick only
  // clears skipNextUpdate and leaves the panel.
  SkipDownloadTick,
  ReloadConfirm,
  Download,
  // The same after a rename/move action.
  SkipRenameMoveTick,
  RenameMove,
  RenameMoveConfirm,
  Editing,
  ViewingOnly,
  SafeToEdit,
};

std::ostream& operator<<(std::ostream& out, OverlayState state);

struct DecisionRow {
  // What the row asks, in words, for traces and test messages.
  const char* condition;
  bool (*applies)(const OverlayFacts& facts);
  OverlayState state;
};

// The rows in the order they are tried; the last one always applies.
const std::vector<DecisionRow>& DecisionTable();

// The state of the first row that applies.
OverlayState DecideOverlayState(const OverlayFacts& facts);

// The kind a state leaves on the badge; none for the states that keep the
// kind as it is (the confirmations and the skipped ticks).
std::optional<OverlayKind> KindShownBy(OverlayState state);

// The tag logged at Info, before the file's path, when the state builds its
// overlay ("delete: ", ...); null for the states that log none.
const wchar_t* StateLogTag(OverlayState state);

// Whether a panel just built for this state is shown at once. The states
// that would otherwise pop their panel up again on every rebuild (conflict,
// download, safe to edit and the three confirmations) show it only when the
// badge's kind changes or the user had the panel open; the others always.
// kindBefore is the badge's kind before the state ran.
bool ShowPanelOnBuild(OverlayState state, OverlayKind kindBefore, bool panelWasVisible);

// The loading badge is for files that already show something or have news
// coming; a plain file still loading gets none.
bool LoadingWorthShowing(const OverlayFacts& facts, OverlayKind currentKind);

// A download the user asked for is still on its way: the press (and the
// choice of the separate-copy box made with it) holds until the sync app
// reports the download finished or failed, so the panel keeps saying
// "Downloading..." and the reload confirmation follows.
bool KeepsDownloadPress(const OverlayFacts& facts);
