#pragma once
// The simulated user: a script of one command per line, run on the host's
// UI thread between message pumps so the add-in's timers and windows live
// as they do in Office.
#include <string>
#include <vector>

#include "tools/officesim/sim_application.h"

// Pumps the host's messages for the given time.
void PumpMessages(unsigned long milliseconds);

// Pumps the host's messages until the named event is set (true) or the
// time is up (false).
bool WaitForNamedEvent(const std::wstring& name, unsigned long timeoutMs);

// Runs the commands; returns false (after printing why) on an unknown or
// failing command. Documents are named by Name or FullName. Commands:
//   wait <ms>                  let the host run for a while
//   open <path>                open an existing file (open and activate events)
//   open-readonly <path>       the same, read-only: saves fail
//   new                        a new, never-saved document
//   activate <doc>             activate its window
//   type <doc>                 edit it: it has unsaved changes
//   save <doc>                 save it
//   fail-saves <doc>           from now on its saves fail
//   slow <ms> <doc>            its Save, copy and Close each take that long
//   prompt-answer save|discard|cancel
//                              what the user answers when asked to save
//   close <doc>                the user closes it
//   open-close-many <folder> <count>
//                              opens and closes that many files in turn
//   screenshot <path>          save the whole screen as a PNG file
//   click-button <caption>     press the visible button (or tick the box) with that caption
//   click-at <x> <y>           a left click at that point of the screen
//   wait-for-text <ms> <text>  let the host run until a visible window shows that text
//   windows                    print the host's top-level windows (the overlays included)
//   report                     print the references add-ins hold on documents
//   resources                  print the process's handles, GDI/USER objects and private bytes
//   signal <event>             set a named event (for a test that drives a long run)
//   wait-for-event <ms> <event>
//                              let the host run until that named event is set
//   # ...                      a comment
bool RunHostScript(const std::vector<std::wstring>& lines, SimApplication& application);
std::vector<std::wstring> ReadScriptFile(const std::wstring& path);
