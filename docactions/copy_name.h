#pragma once
#include <string>

#include "log/log_line.h"

// A file name split at its last dot: "data.tar.gz" → "data.tar" + "gz";
// a name without a dot is all base and no extension.
struct SplitFileName {
  std::wstring base;
  std::wstring extension;
};
SplitFileName SplitAtLastDot(const std::wstring& fileName);

// "2026-11-15 22.24.03.007": dots instead of colons, so it can stand in a
// file name.
std::wstring FormatCopyStamp(const LocalTimeParts& time);

// The separate copy's name: "report (ann 2026-11-15 22.24.03.007).docx",
// or without the user when the user name is not known.
std::wstring SeparateCopyName(const SplitFileName& name, const std::wstring& userName, const std::wstring& stamp);

// Whether a document's folder is one on disk: a drive ("C:\…") or a
// share ("\\server\…"). Empty (a never-saved document) or an address such as
// "https://…" is not.
bool IsFolderOnDisk(const std::wstring& folder);

// Whether the separate copy is the user's: the host said it saved it, and
// the file is new, absent before the save and present after it. A file
// that was there already would only have been overwritten, and says
// nothing about this save.
bool IsNewSeparateCopy(bool existedBefore, bool hostSucceeded, bool existsAfter);
