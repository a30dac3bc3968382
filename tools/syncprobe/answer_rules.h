#pragma once
// Judges what the add-in reads out of an answer (the maps of its own
// reader) against what it relies on: allowed values of each member, and an
// object for every file it asked about.
#include <string>
#include <vector>

#include "synclink/answer_parser.h"

struct Judgement {
  bool ok = false;
  std::wstring seen;  // what was seen, for the report line
};

// Flags are "true" or "false"; the download state one of the four texts
// (or empty); user lists pair identifiers and names one for one; every
// object names its file.
Judgement JudgeFieldValues(const std::vector<AnswerObject>& objects);

// Every requested path has an object whose "file_path" is exactly that
// path (the add-in compares case-sensitively and never guesses).
Judgement JudgeFilesAnswered(const std::vector<AnswerObject>& objects, const std::vector<std::wstring>& requested);
