#pragma once
// The panels that open next to the badge, one builder each: the layout of
// the panel's own file, created by the one layout builder. Each is placed
// against the badge inside the Office window, owned by the badge and
// created hidden; null on failure (logged).
#include <windows.h>

#include <string>

#include "overlay/layouts/active_users_panel.h"

HWND CreateSafeToEditPanel(HWND officeWindow, HWND badgeWindow, const std::wstring& lastModifiedByQuid,
                           const std::wstring& lastModifiedBy, const std::wstring& lastModifiedTime);
HWND CreateActiveUsersPanel(HWND officeWindow, HWND badgeWindow, const std::wstring& lastModifiedByQuid,
                            const std::wstring& lastModifiedBy, const std::wstring& lastModifiedTime,
                            const MemberNames& editors, const MemberNames& viewers);
HWND CreateDownloadPanel(HWND officeWindow, HWND badgeWindow, const std::wstring& lastModifiedByQuid,
                         const std::wstring& lastModifiedBy, const std::wstring& lastModifiedTime, bool editing,
                         bool downloading);
HWND CreateConflictPanel(HWND officeWindow, HWND badgeWindow);
HWND CreateDeletePanel(HWND officeWindow, HWND badgeWindow);
HWND CreateErrorMessagePanel(HWND officeWindow, HWND badgeWindow, bool readOnly);
HWND CreateRenameMovePanel(HWND officeWindow, HWND badgeWindow, bool renamed, bool closeFirst,
                           const std::wstring& previousName, const std::wstring& newName);
HWND CreateConfirmLeavePanel(HWND officeWindow, HWND badgeWindow, bool unsaved, bool conflict, bool download,
                             bool rename, bool move);
