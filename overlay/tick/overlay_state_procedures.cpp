#include "overlay/tick/overlay_state_procedures.h"

#include <windows.h>

#include "log/log_last_error.h"
#include "log/write_log.h"
#include "overlay/layouts/confirm_leave_panel.h"
#include "overlay/images/image_file_names.h"
#include "overlay/images/image_loading.h"
#include "overlay/images/layering.h"
#include "overlay/decision/badge_visibility.h"
#include "overlay/decision/overlay_decision.h"
#include "overlay/decision/tick_plan.h"
#include "overlay/layouts/overlay_geometry.h"
#include "overlay/images/overlay_images.h"
#include "overlay/tick/badge_visibility_in_use.h"
#include "overlay/windows/overlay_windows.h"
#include "overlay/windows/panels.h"
#include "overlay/windows/status_overlays.h"
#include "overlay/windows/window_dpi.h"

namespace {
OverlayKind KindOf(const OverlayWindowState& w) { return static_cast<OverlayKind>(w.overlayKind); }
void SetKind(OverlayWindowState& w, OverlayKind kind) { w.overlayKind = static_cast<std::int32_t>(kind); }

OverlayFacts FactsOf(const FileStatusRecord& record) {
  OverlayFacts facts;
  facts.is_internet_connected = record.sync.is_internet_connected != 0;
  facts.is_loading_data_from_server = record.sync.is_loading_data_from_server != 0;
  facts.is_delete_present = record.sync.is_delete_present != 0;
  facts.is_conflict_present = record.sync.is_conflict_present != 0;
  facts.resolveConflictClicked = record.choices.Has(UserChoice::resolveConflictClicked);
  facts.downloadState = static_cast<std::uint32_t>(record.sync.downloadState);
  facts.downloadRequested = record.choices.Has(UserChoice::downloadRequested);
  facts.skipNextUpdate = record.choices.Has(UserChoice::skipNextUpdate);
  facts.is_rename_present = record.sync.is_rename_present != 0;
  facts.is_move_present = record.sync.is_move_present != 0;
  facts.renameMoveClicked = record.choices.Has(UserChoice::renameMoveClicked);
  facts.editorCount = record.sync.editorsByQuid.size();
  facts.viewerCount = record.sync.viewersByQuid.size();
  return facts;
}

// Asked first: a window already hidden costs no round trip to the window
// server, and most files' windows are hidden on most ticks.
void Hide(HWND window) {
  if (window && IsWindowVisible(window)) ShowWindow(window, SW_HIDE);
}

void DestroyPanel(OverlayWindowState& w) { DestroyOverlayWindow(w.subOverlayWindow); }
void DestroyBadge(OverlayWindowState& w) { DestroyOverlayWindow(w.badgeWindow); }

// A panel the user had not opened would pop up again on every rebuild; the
// panel is kept from activation, which goes back to the document.
void GiveActivationBack(const FileStatusRecord& record, const OverlayWindowState& w, const wchar_t* trace) {
  if (w.subOverlayWindow && GetActiveWindow() == w.subOverlayWindow) {
    SetActiveWindow(record.hostWindow);
    WriteLog(LogLevel::Debug, trace);
  }
}

// The kind's badge picture, drawn for the Office window's DPI: the layered
// badge takes the picture's size.
HBITMAP BadgePicture(const FileStatusRecord& record, OverlayKind kind) {
  return SharedImage(BadgeImageFile(kind), kOverlayColourKey, DpiOfWindow(record.hostWindow));
}

// The badge of a kind other than safe to edit is shown again when its file
// is the active one; a safe-to-edit badge stays away once hidden.
void ShowBadgeOfActiveFile(const OverlayWindowState& w, const std::wstring& activeFile) {
  if (w.badgeWindow && !IsWindowVisible(w.badgeWindow) && KindOf(w) != OverlayKind::SafeToEdit) {
    ShowWindow(w.badgeWindow, SW_SHOWNA);
  }
  WriteLog(LogLevel::Debug, L"shown overlay UI in active file: " + activeFile);
}

// CLEAR: nothing of the file is shown; its choices are forgotten.
void Clear(FileStatusRecord& record, OverlayWindowState& w) {
  DestroyOverlayWindows(w.subOverlayWindow, w.badgeWindow);
  SetKind(w, OverlayKind::None);
  ResetUserActionFlags(record);
}

// The badge's home, the first time the file is drawn.
void PlaceBadgeOnce(const std::wstring& path, const FileStatusRecord& record, OverlayWindowState& w) {
  if (w.posX != 0 || w.posY != 0 || record.hostWindow == nullptr) return;
  WriteLog(LogLevel::Debug, L"updating window position: " + path);
  RECT office{};
  if (!GetWindowRect(record.hostWindow, &office)) {
    LogLastError(L"couldn't get parent window rect while updating custom UI");
    return;
  }
  const Point home =
      BadgeHomePosition({office.left, office.top, office.right, office.bottom}, DpiOfWindow(record.hostWindow));
  w.posX = home.x;
  w.posY = home.y;
  WriteLog(LogLevel::Debug, L"updated window position: " + path);
}

HWND BuildPanelFor(OverlayState state, const FileStatusRecord& record, const OverlayWindowState& w) {
  const SyncReport& sync = record.sync;
  switch (state) {
    case OverlayState::Delete:
      return CreateDeletePanel(record.hostWindow, w.badgeWindow);
    case OverlayState::Conflict:
      return CreateConflictPanel(record.hostWindow, w.badgeWindow);
    case OverlayState::Download:
      return CreateDownloadPanel(record.hostWindow, w.badgeWindow, sync.last_modified_by_quid,
                                 sync.last_modified_by, sync.last_modified_time, record.isEditing != 0,
                                 record.choices.Has(UserChoice::downloadRequested));
    case OverlayState::RenameMove:
      // A rename names the old and new file names, a move the old and new
      // places; a moved parent folder means the file must be closed first.
      return CreateRenameMovePanel(record.hostWindow, w.badgeWindow, sync.is_rename_present != 0,
                                   sync.is_folder_move_present != 0, sync.src, sync.dest);
    case OverlayState::Editing:
    case OverlayState::ViewingOnly:
      return CreateActiveUsersPanel(record.hostWindow, w.badgeWindow, sync.last_modified_by_quid,
                                    sync.last_modified_by, sync.last_modified_time, sync.editorsByQuid,
                                    sync.viewersByQuid);
    case OverlayState::SafeToEdit:
      return CreateSafeToEditPanel(record.hostWindow, w.badgeWindow, sync.last_modified_by_quid,
                                   sync.last_modified_by, sync.last_modified_time);
    default:
      return nullptr;
  }
}

void ResetChoices(ChoiceReset reset, FileStatusRecord& record) {
  if (reset == ChoiceReset::Keep) return;
  const bool saveSeparateCopy = record.choices.Has(UserChoice::saveSeparateCopy);
  ResetUserActionFlags(record);
  if (reset != ChoiceReset::ClearKeepingDownloadPress) return;
  record.choices.Set(UserChoice::downloadRequested);
  record.choices.Set(UserChoice::saveSeparateCopy, saveSeparateCopy);
}

// A badge or strip of the plan's sort, at the badge's place; null on
// failure (logged by the builder).
HWND BuildBadge(BadgeBuild build, OverlayKind kind, const FileStatusRecord& record, OverlayWindowState& w) {
  switch (build) {
    case BadgeBuild::Main:
      return CreateMainOverlay(record.hostWindow, w.posX, w.posY, &w);
    case BadgeBuild::LoadingStrip:
      // The drive sits on the strip's own colour, not on the badge's key.
      return CreateLoadingOverlay(record.hostWindow, SharedImage(BadgeImageFile(kind), kLoadingStripBlue, DpiOfWindow(record.hostWindow)), w.posX,
                                  w.posY, &w);
    case BadgeBuild::NoInternetStrip:
      return CreateNoInternetOverlay(record.hostWindow, SharedImage(BadgeImageFile(kind), kPanelWhite, DpiOfWindow(record.hostWindow)), w.posX,
                                     w.posY, &w);
    default:
      return nullptr;
  }
}

// Carries out what the plan says, in its order: the choices, the windows
// taken down, the badge built (a main badge gets its picture), the log
// line, the panel, then the kind and the drawn mark.
void CarryOut(const TickPlan& plan, OverlayState state, const std::wstring& path, FileStatusRecord& record,
              OverlayWindowState& w) {
  ResetChoices(plan.choices, record);
  if (plan.clearSkipNextUpdate) record.choices.Set(UserChoice::skipNextUpdate, false);
  if (plan.destroyPanel) DestroyPanel(w);
  if (plan.destroyBadge) DestroyBadge(w);
  bool badgeBuilt = false;
  if (plan.buildBadge != BadgeBuild::None && w.badgeWindow == nullptr) {
    const OverlayKind kind = plan.newKind.value_or(OverlayKind::None);
    if (plan.buildBadge != BadgeBuild::Main) WriteLog(LogLevel::Info, plan.logTag + path);
    w.badgeWindow = BuildBadge(plan.buildBadge, kind, record, w);
    badgeBuilt = w.badgeWindow != nullptr;
    // A new badge is transparent until its picture is laid onto it.
    if (badgeBuilt && plan.buildBadge == BadgeBuild::Main) {
      ApplyLayering(w.badgeWindow, BadgePicture(record, kind), kOverlayColourKey);
    }
  }
  if (plan.buildBadge == BadgeBuild::Main && plan.logTag && (w.badgeWindow || plan.logWithoutBadge)) {
    WriteLog(LogLevel::Info, plan.logTag + path);
  }
  if (plan.buildPanel && w.badgeWindow) {
    w.subOverlayWindow = BuildPanelFor(state, record, w);
    if (w.subOverlayWindow && plan.showPanel) ShowWindow(w.subOverlayWindow, SW_SHOWNA);
  }
  if (plan.newKind) SetKind(w, *plan.newKind);
  if (plan.hideBoth) {
    Hide(w.subOverlayWindow);
    Hide(w.badgeWindow);
  }
  if (plan.markUpToDate) record.overlayUpToDate = 1;
}

// Which confirmation a confirm state asks for: its situation and its kind.
struct Confirmation {
  OverlayKind kind;
  bool conflict;
  bool download;
  bool rename;
  bool move;
};

// Whether the record's panel is this confirmation in the form that asks
// about unsaved changes (asking) or in the other. After an action whose
// close or save did not happen, the panel may be the save error, the other
// form, or gone with the badge.
bool IsOnScreen(const OverlayWindowState& w, const Confirmation& c, bool asking) {
  const int id = ConfirmLeaveFirstChoiceIds(c.conflict, c.download, c.rename, c.move)[asking ? 1 : 0];
  return w.subOverlayWindow != nullptr && id != 0 && GetDlgItem(w.subOverlayWindow, id) != nullptr;
}
bool IsOnScreenInEitherForm(const OverlayWindowState& w, const Confirmation& c) {
  return IsOnScreen(w, c, false) || IsOnScreen(w, c, true);
}

// The badge of the kind, built again where an action took it down and the
// document then stayed open; true when it was built now.
bool BringBadgeBack(const FileStatusRecord& record, OverlayWindowState& w, OverlayKind kind) {
  if (w.badgeWindow != nullptr) return false;
  w.badgeWindow = CreateMainOverlay(record.hostWindow, w.posX, w.posY, &w);
  if (w.badgeWindow == nullptr) return false;
  ApplyLayering(w.badgeWindow, BadgePicture(record, kind), kOverlayColourKey);
  return true;
}

// The confirmation built in the form asked for. A confirmation re-formed
// in place stays closed if the user had closed it; one that comes back
// after an action that did not happen is shown, for the user to try again.
void RebuildConfirmation(const FileStatusRecord& record, OverlayWindowState& w, const Confirmation& c,
                         bool panelWasVisible, bool unsaved) {
  const bool reformed = IsOnScreenInEitherForm(w, c);
  const bool badgeIsNew = BringBadgeBack(record, w, c.kind);
  if (w.badgeWindow == nullptr) return;  // tried again on the next tick
  DestroyPanel(w);
  w.subOverlayWindow =
      CreateConfirmLeavePanel(record.hostWindow, w.badgeWindow, unsaved, c.conflict, c.download, c.rename, c.move);
  const bool keepClosed = reformed && !badgeIsNew && KindOf(w) == c.kind && !panelWasVisible;
  if (w.subOverlayWindow && !keepClosed) ShowWindow(w.subOverlayWindow, SW_SHOWNA);
}

// CONFLICT CONFIRM and RENAME/MOVE CONFIRM keep their question in step with
// the unsaved state: with changes it asks whether to save them.
void KeepAskingInStep(UserChoice askShown, OverlayKind kind, FileStatusRecord& record, OverlayWindowState& w,
                      bool panelWasVisible,
                      bool conflict) {
  const bool editing = record.isEditing != 0;
  const Confirmation c{kind, conflict, false, !conflict && record.sync.is_rename_present,
                       !conflict && record.sync.is_move_present};
  if (record.choices.Has(askShown) == editing && IsOnScreen(w, c, editing)) return;
  RebuildConfirmation(record, w, c, panelWasVisible, editing);
  record.choices.Set(askShown, editing);
}

// RELOAD CONFIRM: without changes "Reload"; with them the question whether
// to keep a separate copy, unless the user already chose to keep one.
void KeepReloadConfirmationInStep(FileStatusRecord& record, OverlayWindowState& w, bool panelWasVisible) {
  const Confirmation c{OverlayKind::Download, false, true, false, false};
  // The form on screen: asking whenever the last build or the user's
  // "Reload" asked about the changes.
  const bool onScreen = IsOnScreen(w, c, record.choices.Has(UserChoice::reloadPromptAskSave));
  if (!record.isEditing) {
    if (record.choices.Has(UserChoice::reloadPromptPlain) && onScreen) return;
    RebuildConfirmation(record, w, c, panelWasVisible, false);
    record.choices.Set(UserChoice::reloadPromptPlain);
    record.choices.Set(UserChoice::reloadPromptAskSave, false);
    return;
  }
  const bool keepsCopy = record.choices.Has(UserChoice::saveSeparateCopy);
  if (onScreen && ((keepsCopy && record.choices.Has(UserChoice::reloadPromptPlain)) || (!keepsCopy && record.choices.Has(UserChoice::reloadPromptAskSave)))) return;
  record.choices.Set(UserChoice::reloadPromptPlain, keepsCopy);
  record.choices.Set(UserChoice::reloadPromptAskSave, !keepsCopy);
  RebuildConfirmation(record, w, c, panelWasVisible, !keepsCopy);
}

void RunState(OverlayState state, const std::wstring& path, FileStatusRecord& record, OverlayWindowState& w,
              bool panelWasVisible) {
  switch (state) {
    case OverlayState::ConflictConfirm:
      KeepAskingInStep(UserChoice::conflictAskShown, OverlayKind::Conflict, record, w, panelWasVisible, true);
      return;
    case OverlayState::RenameMoveConfirm:
      KeepAskingInStep(UserChoice::renameMoveAskShown, OverlayKind::DeletedOrMoved, record, w, panelWasVisible,
                       false);
      return;
    case OverlayState::ReloadConfirm:
      WriteLog(LogLevel::Debug, L"downloaded: " + path);
      WriteLog(LogLevel::Debug, L"can download: " + path);
      KeepReloadConfirmationInStep(record, w, panelWasVisible);
      return;
    case OverlayState::Download:
      if (record.sync.downloadState == kDownloaded) WriteLog(LogLevel::Debug, L"downloaded: " + path);
      break;
    default:
      break;
  }
  const OnScreen screen{KindOf(w), w.badgeWindow != nullptr, panelWasVisible, record.overlayUpToDate != 0};
  CarryOut(PlanTick(state, FactsOf(record), screen), state, path, record, w);
}

void HideBoth(const std::wstring& path, OverlayWindowState& w) {
  Hide(w.subOverlayWindow);
  Hide(w.badgeWindow);
  WriteLog(LogLevel::Debug, L"hidden overlay UI in non-active file: " + path);
}

// The badge setting keeps this file's overlays off screen for now: the
// state is not carried out (so nothing is built to be hidden again) and
// runs as usual once it is something the setting shows.
bool HeldBackBySetting(const FileStatusRecord& record, const OverlayWindowState& w) {
  const bool panelOnScreen = w.subOverlayWindow != nullptr && IsWindowVisible(w.subOverlayWindow);
  return HoldsBackOverlays(BadgeVisibilityInUse(), DecideOverlayState(FactsOf(record)), panelOnScreen);
}
}  // namespace

void UpdateRecordOverlays(const RecordPass& pass, FileStatusRecord& record, OverlayWindowState& w) {
  if (!pass.syncAppHasData) {
    Clear(record, w);
    return;
  }
  if (record.sync.is_sync_file && w.badgeWindow == nullptr) record.overlayUpToDate = 0;
  if (record.choices.Has(UserChoice::uiHide)) {
    Clear(record, w);
    return;
  }
  const bool active = pass.path == pass.activeFile;
  const bool minimised = record.hostWindow != nullptr && IsIconic(record.hostWindow);
  const bool heldBack = HeldBackBySetting(record, w);
  if (record.overlayUpToDate && !pass.editingChanged) {
    WriteLog(LogLevel::Debug, L"no changes: " + pass.path);
    if (active && !minimised && !heldBack) {
      GiveActivationBack(record, w, L"suboverlay wnd is not active now 2");
      ShowBadgeOfActiveFile(w, pass.activeFile);
    } else {
      HideBoth(pass.path, w);
    }
    return;
  }
  if (!record.sync.is_sync_file) {
    WriteLog(LogLevel::Debug, L"not a sync file: " + pass.path);
    DestroyOverlayWindows(w.subOverlayWindow, w.badgeWindow);
    SetKind(w, OverlayKind::None);
    record.overlayUpToDate = 1;
    return;
  }
  if (!active || minimised || heldBack) {
    HideBoth(pass.path, w);
    return;
  }
  GiveActivationBack(record, w, L"suboverlay wnd is not active now 1");
  ShowBadgeOfActiveFile(w, pass.activeFile);
  const bool panelWasVisible = w.subOverlayWindow != nullptr && IsWindowVisible(w.subOverlayWindow);
  PlaceBadgeOnce(pass.path, record, w);
  RunState(DecideOverlayState(FactsOf(record)), pass.path, record, w, panelWasVisible);
}
