#include "overlay/windows/panels.h"

#include "log/write_log.h"
#include "overlay/layouts/active_users_panel.h"
#include "overlay/layouts/confirm_leave_panel.h"
#include "overlay/layouts/conflict_panel.h"
#include "overlay/layouts/delete_panel.h"
#include "overlay/layouts/download_panel.h"
#include "overlay/layouts/error_message_panel.h"
#include "overlay/windows/layout_builder.h"
#include "overlay/layouts/rename_move_panel.h"
#include "overlay/layouts/safe_to_edit_panel.h"

namespace {
HWND BuildPanel(const PanelLayout& layout, HWND officeWindow, HWND badgeWindow) {
  return BuildLayout(layout, officeWindow, badgeWindow, {0, 0}, nullptr);
}
}  // namespace

HWND CreateSafeToEditPanel(HWND officeWindow, HWND badgeWindow, const std::wstring& lastModifiedByQuid,
                           const std::wstring& lastModifiedBy, const std::wstring& lastModifiedTime) {
  return BuildPanel(SafeToEditPanelLayout(lastModifiedByQuid, lastModifiedBy, lastModifiedTime), officeWindow,
                    badgeWindow);
}

HWND CreateActiveUsersPanel(HWND officeWindow, HWND badgeWindow, const std::wstring& lastModifiedByQuid,
                            const std::wstring& lastModifiedBy, const std::wstring& lastModifiedTime,
                            const MemberNames& editors, const MemberNames& viewers) {
  return BuildPanel(ActiveUsersPanelLayout(lastModifiedByQuid, lastModifiedBy, lastModifiedTime, editors, viewers),
                    officeWindow, badgeWindow);
}

HWND CreateDownloadPanel(HWND officeWindow, HWND badgeWindow, const std::wstring& lastModifiedByQuid,
                         const std::wstring& lastModifiedBy, const std::wstring& lastModifiedTime, bool editing,
                         bool downloading) {
  WriteLog(LogLevel::Debug, editing ? L"editing = true" : L"editing = false");
  return BuildPanel(DownloadPanelLayout(lastModifiedByQuid, lastModifiedBy, lastModifiedTime, editing, downloading),
                    officeWindow, badgeWindow);
}

HWND CreateConflictPanel(HWND officeWindow, HWND badgeWindow) {
  return BuildPanel(ConflictPanelLayout(), officeWindow, badgeWindow);
}

HWND CreateDeletePanel(HWND officeWindow, HWND badgeWindow) {
  return BuildPanel(DeletePanelLayout(), officeWindow, badgeWindow);
}

HWND CreateErrorMessagePanel(HWND officeWindow, HWND badgeWindow, bool readOnly) {
  return BuildPanel(ErrorMessagePanelLayout(readOnly), officeWindow, badgeWindow);
}

HWND CreateRenameMovePanel(HWND officeWindow, HWND badgeWindow, bool renamed, bool closeFirst,
                           const std::wstring& previousName, const std::wstring& newName) {
  return BuildPanel(RenameMovePanelLayout(renamed, closeFirst, previousName, newName), officeWindow, badgeWindow);
}

HWND CreateConfirmLeavePanel(HWND officeWindow, HWND badgeWindow, bool unsaved, bool conflict, bool download,
                             bool rename, bool move) {
  return BuildPanel(ConfirmLeavePanelLayout(unsaved, conflict, download, rename, move), officeWindow, badgeWindow);
}
