#pragma once
#include "tools/syncprobe/probe_options.h"

// Plays the add-in's exchanges against the pipe and prints one line per
// rule; the process's exit code (0 all passed, 1 a rule failed).
int RunProbe(const ProbeOptions& options);
