#include "overlay/decision/overlay_decision.h"

#include <ostream>

namespace {
// "Downloading" or "Downloaded": the file has news on the web.
bool DownloadPending(const OverlayFacts& f) { return f.downloadState <= 1; }
bool RenamedOrMoved(const OverlayFacts& f) { return f.is_rename_present || f.is_move_present; }

const std::vector<DecisionRow>& Rows() {
  static const std::vector<DecisionRow> rows = {
      {"internet not connected", [](const OverlayFacts& f) { return !f.is_internet_connected; },
       OverlayState::NoInternet},
      {"loading data from server", [](const OverlayFacts& f) { return f.is_loading_data_from_server; },
       OverlayState::Loading},
      {"deleted", [](const OverlayFacts& f) { return f.is_delete_present; }, OverlayState::Delete},
      {"conflict, resolve not clicked",
       [](const OverlayFacts& f) { return f.is_conflict_present && !f.resolveConflictClicked; },
       OverlayState::Conflict},
      {"conflict, resolve clicked",
       [](const OverlayFacts& f) { return f.is_conflict_present && f.resolveConflictClicked; },
       OverlayState::ConflictConfirm},
      {"downloading or downloaded, skip next update",
       [](const OverlayFacts& f) { return DownloadPending(f) && f.skipNextUpdate; }, OverlayState::SkipDownloadTick},
      {"downloaded, download requested",
       [](const OverlayFacts& f) { return f.downloadState == 1 && f.downloadRequested; }, OverlayState::ReloadConfirm},
      {"downloading or downloaded", [](const OverlayFacts& f) { return DownloadPending(f); }, OverlayState::Download},
      {"renamed or moved, skip next update",
       [](const OverlayFacts& f) { return RenamedOrMoved(f) && f.skipNextUpdate; }, OverlayState::SkipRenameMoveTick},
      {"renamed or moved, button not clicked",
       [](const OverlayFacts& f) { return RenamedOrMoved(f) && !f.renameMoveClicked; }, OverlayState::RenameMove},
      {"renamed or moved, button clicked",
       [](const OverlayFacts& f) { return RenamedOrMoved(f) && f.renameMoveClicked; }, OverlayState::RenameMoveConfirm},
      {"editors present", [](const OverlayFacts& f) { return f.editorCount > 0; }, OverlayState::Editing},
      {"viewers present", [](const OverlayFacts& f) { return f.viewerCount > 0; }, OverlayState::ViewingOnly},
      {"otherwise", [](const OverlayFacts&) { return true; }, OverlayState::SafeToEdit},
  };
  return rows;
}

// A panel rebuilt for the kind the badge already shows stays hidden unless
// the user had it open: the timer must not pop it up again on every change.
bool ShownUnlessSameKindHidden(OverlayKind kindBefore, OverlayKind kind, bool panelWasVisible) {
  return kindBefore != kind || panelWasVisible;
}
}  // namespace

std::ostream& operator<<(std::ostream& out, OverlayState state) {
  // In the enumeration's order.
  static const char* const names[] = {
      "NoInternet",        "Loading",       "Delete",      "Conflict",           "ConflictConfirm",
      "SkipDownloadTick",  "ReloadConfirm", "Download",    "SkipRenameMoveTick", "RenameMove",
      "RenameMoveConfirm", "Editing",       "ViewingOnly", "SafeToEdit",
  };
  const auto index = static_cast<std::size_t>(state);
  if (index < sizeof(names) / sizeof(names[0])) return out << names[index];
  return out << "OverlayState(" << static_cast<int>(state) << ")";
}

const std::vector<DecisionRow>& DecisionTable() { return Rows(); }

OverlayState DecideOverlayState(const OverlayFacts& facts) {
  for (const DecisionRow& row : Rows()) {
    if (row.applies(facts)) return row.state;
  }
  return OverlayState::SafeToEdit;  // not reached: the last row always applies
}

std::optional<OverlayKind> KindShownBy(OverlayState state) {
  switch (state) {
    case OverlayState::NoInternet: return OverlayKind::NoInternet;
    case OverlayState::Loading: return OverlayKind::Loading;
    case OverlayState::Delete: return OverlayKind::DeletedOrMoved;
    case OverlayState::Conflict: return OverlayKind::Conflict;
    case OverlayState::Download: return OverlayKind::Download;
    case OverlayState::RenameMove: return OverlayKind::DeletedOrMoved;
    case OverlayState::Editing: return OverlayKind::Editing;
    case OverlayState::ViewingOnly: return OverlayKind::ViewingOnly;
    case OverlayState::SafeToEdit: return OverlayKind::SafeToEdit;
    case OverlayState::ConflictConfirm:
    case OverlayState::SkipDownloadTick:
    case OverlayState::ReloadConfirm:
    case OverlayState::SkipRenameMoveTick:
    case OverlayState::RenameMoveConfirm: return std::nullopt;
  }
  return std::nullopt;
}

const wchar_t* StateLogTag(OverlayState state) {
  switch (state) {
    case OverlayState::NoInternet: return L"no internet: ";
    case OverlayState::Loading: return L"loading: ";
    case OverlayState::Delete: return L"delete: ";
    case OverlayState::Conflict: return L"file conflict: ";
    case OverlayState::Download: return L"download: ";
    case OverlayState::RenameMove: return L"rename/move: ";
    case OverlayState::Editing: return L"editing, may or may not viewing: ";
    case OverlayState::ViewingOnly: return L"viewing only: ";
    case OverlayState::SafeToEdit: return L"safe to edit: ";
    default: return nullptr;
  }
}

bool ShowPanelOnBuild(OverlayState state, OverlayKind kindBefore, bool panelWasVisible) {
  switch (state) {
    case OverlayState::Delete:
    case OverlayState::RenameMove:
    case OverlayState::Editing:
    case OverlayState::ViewingOnly: return true;
    case OverlayState::Conflict:
    case OverlayState::ConflictConfirm:
      return ShownUnlessSameKindHidden(kindBefore, OverlayKind::Conflict, panelWasVisible);
    case OverlayState::Download:
    case OverlayState::ReloadConfirm:
      return ShownUnlessSameKindHidden(kindBefore, OverlayKind::Download, panelWasVisible);
    case OverlayState::SafeToEdit:
      return ShownUnlessSameKindHidden(kindBefore, OverlayKind::SafeToEdit, panelWasVisible);
    case OverlayState::RenameMoveConfirm:
      return ShownUnlessSameKindHidden(kindBefore, OverlayKind::DeletedOrMoved, panelWasVisible);
    default: return false;  // no panel: the status overlays and the skipped ticks
  }
}

bool LoadingWorthShowing(const OverlayFacts& facts, OverlayKind currentKind) {
  const bool nothingToShow = currentKind == OverlayKind::None && !facts.is_delete_present && !facts.is_rename_present &&
                             !facts.is_move_present && !facts.is_conflict_present && facts.downloadState >= 2 &&
                             facts.editorCount == 0 && facts.viewerCount == 0;
  return !nothingToShow;
}

bool KeepsDownloadPress(const OverlayFacts& facts) { return facts.downloadRequested && facts.downloadState == 0; }
