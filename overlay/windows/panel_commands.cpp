#include "overlay/windows/panel_commands.h"

#include <functional>
#include <optional>
#include <string>

#include "docactions/close_file.h"
#include "docactions/read_only.h"
#include "docactions/save_separate_copy.h"
#include "docactions/unsaved_changes.h"
#include "log/write_log.h"
#include "overlay/windows/overlay_window_states.h"
#include "overlay/windows/overlay_windows.h"
#include "overlay/windows/panels.h"
#include "synclink/file_status_cache.h"
#include "synclink/request_message.h"
#include "synclink/sync_app_pipe.h"

namespace {
// The file whose panel was pressed: its path, the record as it was and its
// windows (held, so a close that drops them leaves the state readable).
struct Pressed {
  HWND panel;
  std::wstring path;
  FileStatusRecord record;
  SharedWindowState windows;
};

FileStatusCache& Cache() { return TheFileStatusCache(); }

void Store(const Pressed& pressed, const std::function<void(FileStatusRecord&)>& change) {
  Cache().Change(pressed.path, change);
}

void Info(const wchar_t* text, const Pressed& pressed) { WriteLog(LogLevel::Info, text + pressed.path); }

// The new panel takes the pressed one's place and is shown at once.
void ReplacePanel(const Pressed& pressed, HWND panel) {
  HWND old = pressed.panel;
  DestroyOverlayWindow(old);
  pressed.windows->subOverlayWindow = panel;
  if (panel) ShowWindow(panel, SW_SHOWNA);
}

// The error panel of a save that could not be made; the next tick that
// reaches the download or rename/move step leaves it on screen.
void ShowErrorPanel(const Pressed& pressed, bool readOnly) {
  Store(pressed, [](FileStatusRecord& record) { record.choices.Set(UserChoice::skipNextUpdate); });
  ReplacePanel(pressed, CreateErrorMessagePanel(pressed.record.hostWindow, pressed.windows->badgeWindow, readOnly));
}

void HideBadge(const Pressed& pressed) {
  if (pressed.windows->badgeWindow) ShowWindow(pressed.windows->badgeWindow, SW_HIDE);
}

void DestroyBadge(const Pressed& pressed) {
  DestroyOverlayWindow(pressed.windows->badgeWindow);
}

// Once the host has really closed the document: its windows go, and one
// request tells the sync app both that the file is closed and what the user
// chose (retryModify, resolveConflict or retryRenameOrMove). The choice is
// never in the cache before this moment, so no cycle of the update thread
// can report a reload, resolve or rename whose save or close then fails.
void ReportClosedForSyncAction(const Pressed& pressed, bool hadUnsavedChanges,
                               UserChoice flag) {
  WriteLog(LogLevel::Info, (hadUnsavedChanges ? L"we close this file to sync event - " : L"close file - ") + pressed.path);
  DropWindowState(pressed.path);
  Store(pressed, [&](FileStatusRecord& record) {
    record.choices.Set(flag);
    record.closingForSyncAction = 0;
  });
  std::wstring request = Cache().CloseRecord(pressed.path);
  if (request.empty()) {
    // The record went while the host was busy closing: the sync app still
    // hears of the close and the choice, from the record as it was.
    FileStatusRecord last = pressed.record;
    last.choices.Set(flag);
    last.isOpen = 0;
    request = kRequestStart;
    AppendRequestObject(request, pressed.path, last, false, OfficeApp);
    request += kRequestEnd;
  }
  TheSyncAppPipe().Exchange(request);
}

// Closes the document for a sync action. A close that does not happen (a
// save that failed, a presentation that cannot ask about its changes, a
// question the user cancelled, a host or another add-in that refused)
// leaves the document open, perhaps with the user's changes in it, and the
// sync app hears nothing of the choice.
bool CloseForSyncAction(const Pressed& pressed, CloseMode mode, UserChoice flag) {
  // A save-then-close saves first: what the host closes holds no changes.
  const bool unsaved = mode != CloseMode::SaveThenClose && HasUnsavedChanges(pressed.record.document);
  const auto notClosing = [](FileStatusRecord& record) { record.closingForSyncAction = 0; };
  Store(pressed, [](FileStatusRecord& record) { record.closingForSyncAction = 1; });
  bool closed = false;
  try {
    closed = CloseFile(pressed.record.document, mode, [&] { ReportClosedForSyncAction(pressed, unsaved, flag); });
  } catch (...) {
    Store(pressed, notClosing);  // the tick and the close handler see the file as theirs again
    throw;
  }
  if (!closed) Store(pressed, notClosing);
  return closed;
}

// A close that did not happen (the host refused it, the user kept the
// document) leaves the document open: the next tick draws what its state
// calls for again, the badge an action took down and the confirmation with
// it, so the user is never left with nothing and can try again.
void ShowAgainAtNextTick(const Pressed& pressed) {
  WriteLog(LogLevel::Warning, L"file not closed, its overlay is shown again: " + pressed.path);
  Store(pressed, [](FileStatusRecord& record) { record.overlayUpToDate = 0; });
}

// A save-then-close that did not happen: the save error only when the
// document still holds the changes (the save failed); a save that worked
// followed by a refused close is no save error.
void AfterSaveThenCloseFailed(const Pressed& pressed) {
  if (HasUnsavedChanges(pressed.record.document)) {
    ShowErrorPanel(pressed, false);
  } else {
    ShowAgainAtNextTick(pressed);
  }
}

// Download: the user wants the newer version; the panel says "Downloading..."
// until the sync app has it.
void Download(const Pressed& pressed) {
  Store(pressed, [](FileStatusRecord& record) {
    record.choices.Set(UserChoice::downloadRequested);
    record.overlayUpToDate = 0;
  });
  if (GetDlgItem(pressed.panel, static_cast<int>(ControlId::SaveSeparateCopy)) == nullptr) {
    Info(L"download - user not editing - so save separate copy checkbox not available: ", pressed);
  } else if (SendDlgItemMessageW(pressed.panel, static_cast<int>(ControlId::SaveSeparateCopy), BM_GETCHECK, 0, 0) ==
             BST_CHECKED) {
    Info(L"download - save separate copy checkbox checked: ", pressed);
    Store(pressed, [](FileStatusRecord& record) { record.choices.Set(UserChoice::saveSeparateCopy); });
  } else {
    Info(L"download - save separate copy checkbox not checked: ", pressed);
  }
  const bool editing = HasUnsavedChanges(pressed.record.document);
  const SyncReport& sync = pressed.record.sync;
  ReplacePanel(pressed, CreateDownloadPanel(pressed.record.hostWindow, pressed.windows->badgeWindow,
                                            sync.last_modified_by_quid, sync.last_modified_by,
                                            sync.last_modified_time, editing, true));
}

// Reload: reload the downloaded version; with unsaved changes the user is
// first asked what becomes of them.
void Reload(const Pressed& pressed) {
  HWND panel = pressed.panel;
  DestroyOverlayWindow(panel);
  if (HasUnsavedChanges(pressed.record.document)) {
    Info(L"download ask save copy or not UI shown: ", pressed);
    // The question stays until the user answers it: the tick leaves the
    // reload confirmation alone while reloadPromptPlain is set for a user
    // who chose the separate copy, and while reloadPromptAskSave is set for
    // one who did not.
    Store(pressed, [](FileStatusRecord& record) {
      record.choices.Set(UserChoice::reloadPromptPlain, record.choices.Has(UserChoice::saveSeparateCopy));
      record.choices.Set(UserChoice::reloadPromptAskSave);
    });
    ReplacePanel(pressed, CreateConfirmLeavePanel(pressed.record.hostWindow, pressed.windows->badgeWindow, true, false,
                                                  true, false, false));
    return;
  }
  Info(L"download reload file in progress: ", pressed);
  DestroyBadge(pressed);
  Store(pressed, [](FileStatusRecord& record) {
    record.choices.Set(UserChoice::reloadPromptPlain, false);
    record.choices.Set(UserChoice::reloadPromptAskSave, false);
  });
  // The close's own request tells the sync app the user wants the web
  // version.
  const bool closed = CloseForSyncAction(pressed, CloseMode::CloseLettingTheHostAsk, UserChoice::retryModify);
  if (!closed) ShowAgainAtNextTick(pressed);
  if (!closed && Cache().Contains(pressed.path) && HasUnsavedChanges(pressed.record.document)) {
    // The host's own save question is still open: the user kept the file.
    Info(L"download ask save copy or not UI shown: ", pressed);
    Store(pressed, [](FileStatusRecord& record) { record.choices.Set(UserChoice::reloadPromptAskSave); });
  }
  WriteLog(LogLevel::Info, L"download reload completed");
}

// SaveCopyAndReload: keep the user's changes in a separate copy next to the document,
// then reload. Once the copy exists the changes are safe in it: the
// document closes without saving and without a second question, in every
// host, and the close tells the sync app the user wants the web version.
void SaveCopyAndReload(const Pressed& pressed) {
  Info(L"download with save copy in progress: ", pressed);
  if (!SaveSeparateCopy(pressed.record.document)) {
    ShowErrorPanel(pressed, false);
    Store(pressed, [](FileStatusRecord& record) {
      record.choices.Set(UserChoice::reloadPromptAskSave, false);
      record.choices.Set(UserChoice::retryModify, false);
      record.overlayUpToDate = 0;
    });
    return;
  }
  HideBadge(pressed);
  Store(pressed, [](FileStatusRecord& record) { record.overlayUpToDate = 0; });
  if (!CloseForSyncAction(pressed, CloseMode::CloseWithoutSaving, UserChoice::retryModify)) {
    // The copy is made; the document stays open and the next tick shows
    // the question again.
    WriteLog(LogLevel::Error, L"couldn't close file after saving separate copy: " + pressed.path);
  }
  WriteLog(LogLevel::Info, L"download with save copy completed");
}

// DiscardAndReload: reload and let the changes go.
void DiscardAndReload(const Pressed& pressed) {
  Info(L"download with discard changes in progress: ", pressed);
  if (!CloseForSyncAction(pressed, CloseMode::CloseWithoutSaving, UserChoice::retryModify)) {
    ShowAgainAtNextTick(pressed);
  }
}

// ResolveConflict and FollowRenameOrMove: the confirmation, asking about unsaved changes when there
// are any.
void AskBeforeResolving(const Pressed& pressed) {
  const bool editing = HasUnsavedChanges(pressed.record.document);
  Info(editing ? L"resolve conflict - ask whether to save changes or not UI shown: "
               : L"resolve conflict - Continue UI shown: ",
       pressed);
  Store(pressed, [&](FileStatusRecord& record) {
    record.choices.Set(UserChoice::resolveConflictClicked);
    record.choices.Set(UserChoice::conflictAskShown, editing);
  });
  ReplacePanel(pressed, CreateConfirmLeavePanel(pressed.record.hostWindow, pressed.windows->badgeWindow, editing, true,
                                                false, false, false));
}

void AskBeforeFollowing(const Pressed& pressed) {
  const bool editing = HasUnsavedChanges(pressed.record.document);
  Info(editing ? L"rename/move - ask whether to save changes or not UI shown: " : L"rename/move - Continue UI shown: ",
       pressed);
  Store(pressed, [&](FileStatusRecord& record) {
    record.choices.Set(UserChoice::renameMoveClicked);
    record.choices.Set(UserChoice::renameMoveAskShown, editing);
  });
  const SyncReport& sync = pressed.record.sync;
  ReplacePanel(pressed, CreateConfirmLeavePanel(pressed.record.hostWindow, pressed.windows->badgeWindow, editing, false,
                                                false, sync.is_rename_present != 0, sync.is_move_present != 0));
}

// "Continue" offers no choice about unsaved changes: it was shown while
// there were none. Changes typed since then would meet the host's own save
// question only after its before-close event has told the sync app the
// file is closing; should the user cancel that question, the file would
// stay open with edits the sync app thinks are gone. So the confirmation
// asks about them first, as the tick would have on its next pass.
bool AskAboutChangesMadeSince(const Pressed& pressed, bool conflict) {
  if (!HasUnsavedChanges(pressed.record.document)) return false;
  const SyncReport& sync = pressed.record.sync;
  Store(pressed, [&](FileStatusRecord& record) {
    record.choices.Set(conflict ? UserChoice::conflictAskShown : UserChoice::renameMoveAskShown);
  });
  ReplacePanel(pressed, CreateConfirmLeavePanel(pressed.record.hostWindow, pressed.windows->badgeWindow, true, conflict,
                                                false, !conflict && sync.is_rename_present != 0,
                                                !conflict && sync.is_move_present != 0));
  return true;
}

// ContinueToResolve, SaveAndResolve, DiscardAndResolve: close the document so the sync app can open its
// resolve-conflict window. A save that cannot be made shows why.
void ResolveConflict(const Pressed& pressed, CloseMode mode) {
  if (mode == CloseMode::CloseLettingTheHostAsk) {
    if (AskAboutChangesMadeSince(pressed, true)) return;
    Info(L"need to open resolve conflict window: ", pressed);
  }
  if (!CloseForSyncAction(pressed, mode, UserChoice::resolveConflict)) {
    if (mode == CloseMode::SaveThenClose) {
      // Until the next tick asks again whether to save the changes.
      AfterSaveThenCloseFailed(pressed);
      Store(pressed, [](FileStatusRecord& record) {
        record.choices.Set(UserChoice::conflictAskShown, false);
        record.overlayUpToDate = 0;
      });
    } else {
      ShowAgainAtNextTick(pressed);
    }
  }
  WriteLog(LogLevel::Info, mode == CloseMode::CloseLettingTheHostAsk ? L"resolve conflict continue completed"
                                                                      : L"resolve conflict save/discard completed");
}

// ContinueToFollow: close the document so it is synced from its new name or place.
void FollowRenameOrMove(const Pressed& pressed) {
  if (AskAboutChangesMadeSince(pressed, false)) return;
  Info(L"retry rename/move: ", pressed);
  if (!CloseForSyncAction(pressed, CloseMode::CloseLettingTheHostAsk, UserChoice::retryRenameOrMove)) {
    ShowAgainAtNextTick(pressed);
  }
  WriteLog(LogLevel::Info, L"rename/move continue completed");
}

// SaveAndFollow and DiscardAndFollow: the same, saving or dropping the changes first. A save
// that cannot be made shows why, and the document stays open with the
// user's changes in it.
void FollowRenameOrMoveSaving(const Pressed& pressed, bool save) {
  HWND panel = pressed.panel;
  DestroyOverlayWindow(panel);
  if (save && IsReadOnly(pressed.record.document)) {
    Info(L"read-only file: ", pressed);
    ShowErrorPanel(pressed, true);
  } else if (!CloseForSyncAction(pressed, save ? CloseMode::SaveThenClose : CloseMode::CloseWithoutSaving,
                                 UserChoice::retryRenameOrMove)) {
    const std::optional<FileStatusRecord> now = Cache().Find(pressed.path);
    if (save && now && !now->choices.Has(UserChoice::skipNextUpdate)) {
      AfterSaveThenCloseFailed(pressed);
    } else {
      ShowAgainAtNextTick(pressed);  // the confirmation comes back, asking again
    }
  }
  Store(pressed, [](FileStatusRecord& record) {
    record.choices.Set(UserChoice::renameMoveAskShown, false);
    record.overlayUpToDate = 0;
  });
  WriteLog(LogLevel::Info, L"rename/move save/discard completed");
}

// Hide: both windows go at once and stay away while uiHide is set; the sync
// app hears of it now, not at the next cycle.
void Hide(const Pressed& pressed) {
  Store(pressed, [](FileStatusRecord& record) {
    record.choices.Set(UserChoice::uiHide);
    ResetUserActionFlags(record);
  });
  pressed.windows->overlayKind = 0;
  DestroyOverlayWindows(pressed.windows->subOverlayWindow, pressed.windows->badgeWindow);
  TheSyncAppPipe().Exchange(Cache().BuildRequest(pressed.path, true));
}

struct Command {
  ControlId id;
  // Logged at level 4 as it stands, then at level 3 with ": " and the path.
  const wchar_t* text;
  void (*act)(const Pressed& pressed);
};

const Command kCommands[] = {
    {ControlId::Download, L"download button clicked", Download},
    {ControlId::Reload, L"download reload button clicked", Reload},
    {ControlId::SaveCopyAndReload, L"download with save copy button clicked", SaveCopyAndReload},
    {ControlId::DiscardAndReload, L"download with discard changes button clicked", DiscardAndReload},
    {ControlId::ResolveConflict, L"resolve conflict button clicked", AskBeforeResolving},
    {ControlId::ContinueToResolve, L"resolve conflict continue button clicked",
     [](const Pressed& p) { ResolveConflict(p, CloseMode::CloseLettingTheHostAsk); }},
    {ControlId::SaveAndResolve, L"resolve conflict save button clicked",
     [](const Pressed& p) { ResolveConflict(p, CloseMode::SaveThenClose); }},
    {ControlId::DiscardAndResolve, L"resolve conflict discard button clicked",
     [](const Pressed& p) { ResolveConflict(p, CloseMode::CloseWithoutSaving); }},
    {ControlId::FollowRenameOrMove, L"rename/move button clicked", AskBeforeFollowing},
    {ControlId::ContinueToFollow, L"rename/move continue button clicked", FollowRenameOrMove},
    {ControlId::SaveAndFollow, L"rename/move save button clicked",
     [](const Pressed& p) { FollowRenameOrMoveSaving(p, true); }},
    {ControlId::DiscardAndFollow, L"rename/move discard button clicked",
     [](const Pressed& p) { FollowRenameOrMoveSaving(p, false); }},
    {ControlId::Hide, L"user clicked hide option", Hide},
};
}  // namespace

void HandlePanelCommand(HWND panel, ControlId id) {
  for (const Command& command : kCommands) {
    if (command.id != id) continue;
    WriteLog(LogLevel::Debug, command.text);
    const OverlayWindowState* state = WindowStateOf(panel);
    if (state == nullptr || state->subOverlayWindow != panel) return;
    SharedWindowState windows = FindWindowState(state->path);
    if (!windows) return;
    std::optional<FileStatusRecord> record = Cache().Find(windows->path);
    if (!record) return;
    const std::wstring path = windows->path;
    WriteLog(LogLevel::Info, std::wstring(command.text) + L": " + path);
    command.act({panel, path, std::move(*record), std::move(windows)});
    return;
  }
}
