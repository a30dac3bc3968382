#pragma once
// Opening a help article in the user's browser (ShellExecuteW "open"). The
// one place the overlay starts another program, so tests can put an
// observer in its stead and see exactly which addresses would be opened.
#include <string>

// Opens the address. Callers have already checked it is one of the help
// links' own addresses.
void OpenHelpLink(const std::wstring& address);

// For tests: replaces what OpenHelpLink does (null restores ShellExecuteW)
// and returns the opener that was in place.
using HelpLinkOpener = void (*)(const std::wstring& address);
HelpLinkOpener SetHelpLinkOpener(HelpLinkOpener opener);
