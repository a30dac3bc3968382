#include "synclink/answer_parser.h"

#include "common/exception_barrier.h"
#include "common/text.h"
#include "log/write_log.h"

namespace {
constexpr std::wstring_view kFrameStart = L"{\"resp\":[";
constexpr size_t npos = std::wstring_view::npos;

// The text between two positions, with the scanner's historical rule for a
// closing mark that stands right on the opening quote: the rest is taken.
std::wstring Between(std::wstring_view text, size_t openQuote, size_t closeQuote) {
  if (closeQuote <= openQuote) return std::wstring(text.substr(openQuote + 1));
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
    WriteLog(LogLevel::Debug, key);
    cursor = keyClose + 1;  // now at the colon

    const size_t valueOpen = object.find(L'"', cursor);
    size_t valueClose = object.find(L"\",", cursor);
    if (valueClose == npos) valueClose = object.find(L"\"}", cursor);  // the last member
    if (valueOpen == npos || valueClose == npos) return members;
    std::wstring value = Between(object, valueOpen, valueClose);
    WriteLog(LogLevel::Debug, value);
    members[std::move(key)] = std::move(value);  // a repeated key keeps its last value
    cursor = valueClose + 1;  // now at the comma or the brace
  }
}

bool HasFrame(std::wstring_view text) {
  return !text.empty() && text.find(L'{') == 0 && text.rfind(L'}') == text.size() - 1 &&
         text.substr(0, kFrameStart.size()) == kFrameStart;
}

// The next position of `mark` at or after `from`, remembered between calls
// so a far-away mark is not searched for again on every object.
struct NextMark {
  wchar_t mark;
  size_t found = 0;
  bool valid = false;
  size_t At(std::wstring_view text, size_t from) {
    if (!valid || (found != npos && found < from)) {
      found = text.find(mark, from);
      valid = true;
    }
    return found;
  }
};
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
    NextMark openBrace{L'{'}, closeBrace{L'}'};
    for (;;) {
      const size_t open = position < text.size() ? openBrace.At(text, position) : npos;
      const size_t close = position < text.size() ? closeBrace.At(text, position) : npos;
      if (open == npos || close == npos) {
        WriteLog(LogLevel::Debug, L"converted into json");
        return;
      }
      // A "}" before the next "{" leaves the object running to the end.
      const std::wstring_view object = close >= open ? text.substr(open, close - open + 1) : text.substr(open);
      WriteLog(LogLevel::Debug, std::wstring(object));
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
