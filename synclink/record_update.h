#pragma once
// The rules by which one answer object changes what the sync app reported
// about a file: every field that differs is taken and leaves a short change
// tag in the trace log.
#include <cstdint>
#include <map>
#include <string>

#include "synclink/file_status_record.h"

// True when anything changed (the overlay must then be drawn again).
bool ApplyAnswerToReport(SyncReport& report, const AnswerFields& answer);

// "Downloading" 0, "Downloaded" 1, "Already Up-to-date" 2, "Download Failed"
// 3; -1 for any other text (no change).
int DownloadStateFromText(const std::wstring& text);

// Pairs identifiers and names by position ("a|b" with "Ann|Bo"). An
// identifier without a name of its own gets an empty name.
std::map<std::wstring, std::wstring> PairUsers(const std::wstring& ids, const std::wstring& names);
