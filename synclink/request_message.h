#pragma once
// The request text the add-in sends to the sync app: which files are open
// and what the user decided about them. Plain concatenation, no escaping:
// the sync app reads exactly this shape.
#include <string>

#include "common/office_app.h"
#include "synclink/file_status_record.h"

inline constexpr const wchar_t* kRequestStart = L"{\"files\":[";
inline constexpr const wchar_t* kRequestEnd = L"]}";

// At least the length of the file object for `record` under `path`, to
// reserve room for a request before it is built.
size_t MaxRequestObjectLength(const std::wstring& path, const FileStatusRecord& record);

// Appends one file object for `record` under `path`.
void AppendRequestObject(std::wstring& out, const std::wstring& path, const FileStatusRecord& record,
                         bool includeUiHide, OfficeHost host);
