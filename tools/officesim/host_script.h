#pragma once
// The simulated user: a script of one command per line, run on the host's
// UI thread between message pumps so the add-in's timers and windows live
// as they do in Office.
#include <string>
#include <vector>

#include "tools/officesim/sim_application.h"

// Pumps the host's messages for the given time.
void PumpMessages(unsigned long milliseconds);

// Runs the commands; returns false (after printing why) on an unknown or
// failing command. Commands:
//   wait <ms>        let the host run for a while
//   # ...            a comment
bool RunHostScript(const std::vector<std::wstring>& lines, SimApplication& application);
std::vector<std::wstring> ReadScriptFile(const std::wstring& path);
