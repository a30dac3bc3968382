#include "tools/syncsim/scenario.h"

#include <windows.h>

#include <cwchar>
#include <sstream>

#include "common/text.h"

namespace {
// "word rest of line" -> word, rest (rest keeps its blanks).
void SplitWord(const std::wstring& line, std::wstring& word, std::wstring& rest) {
  const size_t blank = line.find(L' ');
  word = line.substr(0, blank);
  rest = blank == std::wstring::npos ? std::wstring() : line.substr(blank + 1);
}
}  // namespace

bool Scenario::Load(const std::string& utf8Text, std::wstring& error) {
  std::string text = utf8Text;
  if (text.rfind("\xEF\xBB\xBF", 0) == 0) text.erase(0, 3);
  std::istringstream lines(text);
  std::string rawLine;
  int lineNumber = 0;
  File* current = nullptr;
  auto fail = [&](const std::wstring& why) {
    error = L"scenario line " + std::to_wstring(lineNumber) + L": " + why;
    return false;
  };
  while (std::getline(lines, rawLine)) {
    ++lineNumber;
    if (!rawLine.empty() && rawLine.back() == '\r') rawLine.pop_back();
    std::wstring line = FromUtf8(rawLine);
    const size_t first = line.find_first_not_of(L" \t");
    if (first == std::wstring::npos || line[first] == L'#') continue;
    line.erase(0, first);

    std::wstring word, rest;
    SplitWord(line, word, rest);
    if (word == L"unknown-files") {
      if (rest == L"report") {
        reportUnknownFiles_ = true;
      } else if (rest == L"omit") {
        reportUnknownFiles_ = false;
      } else {
        return fail(L"unknown-files takes omit or report");
      }
    } else if (word == L"file") {
      if (rest.empty()) return fail(L"file needs a path");
      if (FindFile(rest) != nullptr) return fail(L"file given twice: " + rest);
      files_.push_back(File{rest, {Stage{}}, {}});
      current = &files_.back();
    } else if (current == nullptr) {
      return fail(L"'" + word + L"' before the first file line");
    } else if (word == L"after") {
      Stage stage;
      stage.trigger = Stage::Trigger::AfterRequests;
      wchar_t* end = nullptr;
      stage.afterRequests = std::wcstol(rest.c_str(), &end, 10);
      if (rest.empty() || *end != L'\0' || stage.afterRequests < 0) return fail(L"after needs a request count");
      current->stages.push_back(stage);
    } else if (word == L"when") {
      if (rest.empty()) return fail(L"when needs a flag name");
      Stage stage;
      stage.trigger = Stage::Trigger::WhenFlag;
      stage.flag = rest;
      current->stages.push_back(stage);
    } else if (word == L"set" || word == L"raw") {
      const size_t equals = rest.find(L'=');
      if (equals == std::wstring::npos || equals == 0) return fail(word + L" needs key=value");
      Change change;
      change.kind = word == L"set" ? Change::Kind::Set : Change::Kind::SetRaw;
      change.key = rest.substr(0, equals);
      change.value = rest.substr(equals + 1);
      current->stages.back().changes.push_back(change);
    } else if (word == L"unset") {
      if (rest.empty()) return fail(L"unset needs a key");
      Change change;
      change.kind = Change::Kind::Unset;
      change.key = rest;
      current->stages.back().changes.push_back(change);
    } else {
      return fail(L"unknown directive '" + word + L"'");
    }
  }
  return true;
}

Scenario::File* Scenario::FindFile(const std::wstring& path) {
  for (File& file : files_) {
    if (file.path == path) return &file;  // exact, case-sensitive, like the add-in's cache
  }
  return nullptr;
}

std::wstring Scenario::ObjectFor(const File& file, const std::wstring& path, long requestNumber) const {
  // Members in the order they were first set; each is its "key":value text.
  std::vector<std::pair<std::wstring, std::wstring>> members;
  members.emplace_back(L"file_path", L"\"" + path + L"\"");
  for (const Stage& stage : file.stages) {
    if (stage.trigger == Stage::Trigger::AfterRequests && requestNumber <= stage.afterRequests) continue;
    if (stage.trigger == Stage::Trigger::WhenFlag && file.flagsSeen.count(stage.flag) == 0) continue;
    for (const Change& change : stage.changes) {
      auto it = members.begin();
      while (it != members.end() && it->first != change.key) ++it;
      if (change.kind == Change::Kind::Unset) {
        if (it != members.end()) members.erase(it);
        continue;
      }
      const std::wstring value = change.kind == Change::Kind::Set ? L"\"" + change.value + L"\"" : change.value;
      if (it != members.end()) {
        it->second = value;
      } else {
        members.emplace_back(change.key, value);
      }
    }
  }
  if (padUnits_ > 0) members.emplace_back(L"pad", L"\"" + std::wstring(padUnits_, L'x') + L"\"");

  std::wstring object = L"{";
  for (size_t i = 0; i < members.size(); ++i) {
    if (i > 0) object += L',';
    object += L"\"" + members[i].first + L"\":" + members[i].second;
  }
  object += L"}";
  return object;
}

std::wstring Scenario::Answer(const std::vector<RequestedFile>& files, long requestNumber) {
  std::wstring answer = L"{\"resp\":[";
  bool first = true;
  for (const RequestedFile& requested : files) {
    File* file = FindFile(requested.path);
    std::wstring object;
    if (file != nullptr) {
      for (const auto& [flag, value] : requested.flags) {
        if (value) file->flagsSeen.insert(flag);
      }
      object = ObjectFor(*file, requested.path, requestNumber);
    } else if (reportUnknownFiles_) {
      File unknown{requested.path, {Stage{}}, {}};
      unknown.stages.back().changes.push_back({Change::Kind::Set, L"is_sync_file", L"false"});
      object = ObjectFor(unknown, requested.path, requestNumber);
    } else {
      continue;
    }
    if (!first) answer += L',';
    first = false;
    answer += object;
  }
  answer += L"]}";
  return answer;
}
