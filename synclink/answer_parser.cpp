#include "synclink/answer_parser.h"

#include "log/exception_barrier.h"
#include "common/text.h"
#include "log/write_log.h"

namespace {
constexpr std::wstring_view kFrameStart = L"{\"resp\":[";
constexpr size_t npos = std::wstring_view::npos;

// The text between two quotes. When the closing mark is the opening quote
// itself (a lone quote before ":" or ","), nothing stands between them: the
// result is empty, so every character of the answer lands in at most one
// key or value and a hostile answer cannot make the output outgrow it.
std::wstring Between(std::wstring_view text, size_t openQuote, size_t closeQuote) {
  if (closeQuote <= openQuote) return std::wstring();
  return std::wstring(text.substr(openQuote + 1, closeQuote - openQuote - 1));
}

// Members of one object's text, "key":"value" pairs, until a pairing breaks.
AnswerObject ParseMembers(std::wstring_view object) {
  AnswerObject members;
  size_t cursor = 0;
  for (;;) {
    const size_t keyOpen = object.find(L'"', cursor);
    const size_t keyClose = object.find(L"\":", cursor);
    if (keyOpen == npos || keyClose == npos) return members;
    std::wstring key = Between(object, keyOpen, keyClose);
    if (LogWrites(LogLevel::Debug)) WriteLog(LogLevel::Debug, key);
    cursor = keyClose + 1;  // now at the colon

    const size_t valueOpen = object.find(L'"', cursor);
    size_t valueClose = object.find(L"\",", cursor);
    if (valueClose == npos) valueClose = object.find(L"\"}", cursor);  // the last member
    if (valueOpen == npos || valueClose == npos) return members;
    std::wstring value = Between(object, valueOpen, valueClose);
    if (LogWrites(LogLevel::Debug)) WriteLog(LogLevel::Debug, value);
    members[std::move(key)] = std::move(value);  // a repeated key keeps its last value
    cursor = valueClose + 1;  // now at the comma or the brace
  }
}

bool HasFrame(std::wstring_view text) {
  return !text.empty() && text.find(L'{') == 0 && text.rfind(L'}') == text.size() - 1 &&
         text.substr(0, kFrameStart.size()) == kFrameStart;
}
}  // namespace

std::vector<AnswerObject> ParseAnswer(std::wstring_view text) {
  // On an exception, what was read up to then is kept.
  std::vector<AnswerObject> objects;
  GuardedVoid(L"parsing the sync app's answer", [&] {
    if (!HasFrame(text)) {
      WriteLog(LogLevel::Debug, L"Data mismatch while converting into json");
      return;
    }
    WriteLog(LogLevel::Debug, L"No data mismatch while converting into json");
    size_t position = text.find(L'[') + 1;
    for (;;) {
      // An object runs from its "{" to the first "}" after it. A "}" left
      // over before the next "{" (from a value that held a brace) closes
      // nothing, so no object is read twice and the scan stays linear.
      const size_t open = text.find(L'{', position);
      const size_t close = open == npos ? npos : text.find(L'}', open);
      if (open == npos || close == npos) {
        WriteLog(LogLevel::Debug, L"converted into json");
        return;
      }
      const std::wstring_view object = text.substr(open, close - open + 1);
      if (LogWrites(LogLevel::Debug)) WriteLog(LogLevel::Debug, std::wstring(object));
      objects.push_back(ParseMembers(object));
      position = close + 2;  // past the "}" and the separator after it
    }
  });
  return objects;
}

std::uint32_t ParseFlag(std::wstring value) {
  LowerAsciiInPlace(value);
  return value == L"true" ? 1u : 0u;
}
