#pragma once
// Reads the add-in's request the way the sync app does: the add-in writes
// paths raw (single backslashes, quotes unescaped), so the text is taken
// apart by its fixed fragments, not by a JSON parser.
#include <map>
#include <string>
#include <vector>

struct RequestedFile {
  std::wstring path;
  // Every "name":true / "name":false member after the path, e.g. isOpen,
  // retryModify, uiHide.
  std::map<std::wstring, bool> flags;
  std::wstring fileComboId;
  std::wstring officeApp;
};

// The files of a request in the order they stand; text that is not a
// request (for instance "ERROR") yields none.
std::vector<RequestedFile> ReadRequest(const std::wstring& text);
