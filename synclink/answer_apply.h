#pragma once
#include <vector>

#include "synclink/answer_parser.h"
#include "synclink/file_status_cache.h"

// The working set of one answer object: the twenty known members, flags
// read with ParseFlag, every missing member at its default.
AnswerFields CollectAnswerFields(const AnswerObject& object);

// Writes a parsed answer into the cache: syncAppHasData says whether it
// held any file; each object updates the record of its file_path, if the
// cache has one (answers never create records).
void ApplyAnswer(FileStatusCache& cache, const std::vector<AnswerObject>& objects);
