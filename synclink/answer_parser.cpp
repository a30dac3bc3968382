#include "synclink/answer_parser.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <tuple>
#include <utility>

#include "log/exception_barrier.h"
#include "log/write_log.h"

namespace {
constexpr std::wstring_view kFrameStart = L"{\"resp\":[";

// A fixed trace line: built only when the log keeps Debug lines, so the
// dropped ones cost no allocation.
void Trace(const wchar_t* line) {
  if (LogWrites(LogLevel::Debug)) WriteLog(LogLevel::Debug, line);
}
// A piece of the answer as a trace line. Callers ask LogWrites(Debug) once
// per answer, not once per key and value, and call this only when it holds.
void Trace(const wchar_t* first, const wchar_t* last) { WriteLog(LogLevel::Debug, std::wstring(first, last)); }

// The first `unit` in [from, end), or end.
const wchar_t* FindUnit(const wchar_t* from, const wchar_t* end, wchar_t unit) {
  const wchar_t* found = std::char_traits<wchar_t>::find(from, static_cast<std::size_t>(end - from), unit);
  return found != nullptr ? found : end;
}

// The first quote in [from, end), or end. In "key":"value","key" the
// opening quotes stand right after the cursor, so the next two units are
// looked at in place; longer spans go to the library's vectorised search.
const wchar_t* FindQuote(const wchar_t* from, const wchar_t* end) {
  for (int step = 0; step < 2 && from != end; ++step, ++from) {
    if (*from == L'"') return from;
  }
  return FindUnit(from, end, L'"');
}

// One "key":"value" pair, as the text between the quotes.
struct Member {
  const wchar_t* key;
  std::size_t keyLength;
  const wchar_t* value;
  std::size_t valueLength;
};

// An object with more members than this is no sync app's; it is still read
// whole, only by plain assignment.
constexpr std::size_t kMembersInOrder = 64;

// The text between two quotes. When the closing mark is the opening quote
// itself (a lone quote before ":" or ","), nothing stands between them: the
// piece is empty, so every character of the answer lands in at most one key
// or value and a hostile answer cannot make the output outgrow it.
void Between(const wchar_t* open, const wchar_t* close, const wchar_t*& start, std::size_t& length) {
  start = open + 1;
  length = close > open ? static_cast<std::size_t>(close - open - 1) : 0;
}

// map[key] = value, a repeated key keeping its last value.
void Assign(AnswerObject& object, const Member& member) {
  object[std::wstring(member.key, member.keyLength)].assign(member.value, member.valueLength);
}

// Keys in std::wstring's order (unit by unit, then the shorter first),
// written out: keys differ within their first few units, where a loop is
// cheaper than a library call.
bool Less(const Member& a, const Member& b) {
  const std::size_t common = std::min(a.keyLength, b.keyLength);
  for (std::size_t i = 0; i < common; ++i) {
    if (a.key[i] != b.key[i]) return std::char_traits<wchar_t>::lt(a.key[i], b.key[i]);
  }
  return a.keyLength < b.keyLength;
}

// Reads the members of one object, [open, close] with *close == '}', in
// one walk from quote to quote. A key ends at the first quote directly
// followed by a colon, a value at the first quote directly followed by a
// comma or by the object's closing brace; the members after the first
// pairing that does not close are lost. Calls `take` with each pair in
// text order.
template <class Take>
void ScanMembers(bool tracing, const wchar_t* open, const wchar_t* close, Take&& take) {
  const wchar_t* cursor = open;
  for (;;) {
    const wchar_t* keyOpen = FindQuote(cursor, close);
    const wchar_t* keyClose = keyOpen;
    while (keyClose != close && keyClose[1] != L':') keyClose = FindQuote(keyClose + 1, close);
    if (keyClose == close) return;
    Member member{};
    Between(keyOpen, keyClose, member.key, member.keyLength);
    if (tracing) Trace(member.key, member.key + member.keyLength);
    cursor = keyClose + 1;  // now at the colon

    const wchar_t* valueOpen = FindQuote(cursor, close);
    const wchar_t* valueClose = valueOpen;
    while (valueClose != close && valueClose[1] != L',' && valueClose[1] != L'}') {
      valueClose = FindQuote(valueClose + 1, close);
    }
    if (valueClose == close) return;
    Between(valueOpen, valueClose, member.value, member.valueLength);
    if (tracing) Trace(member.value, member.value + member.valueLength);
    take(member);
    cursor = valueClose + 1;  // now at the comma or the brace
  }
}

// Builds the maps. The sync app sends the same keys in the same order for
// every file, so the order that sorts one object's keys is kept and tried
// on the next: when it sorts that one too (checked, one comparison per
// neighbouring pair), every key goes in at the map's end without a search.
class ObjectBuilder {
 public:
  // `object` is empty; `count` is at most kMembersInOrder.
  void Build(const Member* members, std::size_t count, AnswerObject& object) {
    if (!SortedBy(members, count)) {
      Sort(members, count);
      if (!SortedBy(members, count)) {
        // A repeated key: the later value wins, as plain assignment gives.
        orderSize_ = 0;
        for (std::size_t i = 0; i < count; ++i) Assign(object, members[i]);
        return;
      }
    }
    for (std::size_t j = 0; j < count; ++j) {
      const Member& member = members[order_[j]];
      object.emplace_hint(object.end(), std::piecewise_construct, std::forward_as_tuple(member.key, member.keyLength),
                          std::forward_as_tuple(member.value, member.valueLength));
    }
  }

 private:
  // Whether the kept order lists these members' keys strictly ascending:
  // then they are distinct and sorted.
  bool SortedBy(const Member* members, std::size_t count) const {
    if (orderSize_ != count) return false;
    for (std::size_t j = 1; j < count; ++j) {
      if (!Less(members[order_[j - 1]], members[order_[j]])) return false;
    }
    return true;
  }

  void Sort(const Member* members, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) order_[i] = static_cast<unsigned char>(i);
    std::sort(order_, order_ + count,
              [members](unsigned char a, unsigned char b) { return Less(members[a], members[b]); });
    orderSize_ = count;
  }

  unsigned char order_[kMembersInOrder] = {};
  std::size_t orderSize_ = 0;
};

// The next object at or after `position`: from its "{" to the first "}"
// after it. A "}" left over before the next "{" (from a value that held a
// brace) closes nothing, so no object is read twice and the scan stays
// linear. Moves `position` past the "}" and the separator after it.
bool NextObject(std::wstring_view text, std::size_t& position, const wchar_t*& open, const wchar_t*& close) {
  const wchar_t* const end = text.data() + text.size();
  open = position < text.size() ? FindUnit(text.data() + position, end, L'{') : end;
  close = open == end ? end : FindUnit(open, end, L'}');
  if (close == end) return false;
  position = static_cast<std::size_t>(close - text.data()) + 2;
  return true;
}

bool HasFrame(std::wstring_view text) {
  return !text.empty() && text.front() == L'{' && text.back() == L'}' &&
         text.substr(0, kFrameStart.size()) == kFrameStart;
}
}  // namespace

std::vector<AnswerObject> ParseAnswer(std::wstring_view text) {
  // On an exception, what was read up to then is kept.
  std::vector<AnswerObject> objects;
  GuardedVoid(L"parsing the sync app's answer", [&] {
    if (!HasFrame(text)) {
      Trace(L"Data mismatch while converting into json");
      return;
    }
    Trace(L"No data mismatch while converting into json");
    const bool tracing = LogWrites(LogLevel::Debug);
    // The list is allocated once, at its final size: counting the objects
    // first costs one quick pass over the text and saves moving every map
    // each time the list would grow.
    std::size_t position = kFrameStart.size();  // past the first "["
    const wchar_t* open = nullptr;
    const wchar_t* close = nullptr;
    std::size_t count = 0;
    while (NextObject(text, position, open, close)) ++count;
    objects.reserve(count);

    position = kFrameStart.size();
    Member members[kMembersInOrder];
    ObjectBuilder builder;
    for (;;) {
      if (!NextObject(text, position, open, close)) {
        Trace(L"converted into json");
        return;
      }
      if (tracing) Trace(open, close + 1);
      AnswerObject& object = objects.emplace_back();
      try {
        count = 0;
        bool direct = false;  // past what any sync app sends: straight into the map
        ScanMembers(tracing, open, close, [&](const Member& member) {
          if (!direct && count == kMembersInOrder) {
            for (std::size_t i = 0; i < count; ++i) Assign(object, members[i]);
            direct = true;
          }
          if (direct) {
            Assign(object, member);
          } else {
            members[count++] = member;
          }
        });
        if (!direct) builder.Build(members, count, object);
      } catch (...) {
        objects.pop_back();  // an object is listed whole or not at all
        throw;
      }
    }
  });
  return objects;
}

std::uint32_t ParseFlag(std::wstring_view value) {
  // Read in place: only ASCII letters fold, so "true" in any letter case
  // gives 1 and nothing else does. No copy of the text is made.
  static constexpr wchar_t kTrue[] = L"true";
  if (value.size() != 4) return 0u;
  for (std::size_t i = 0; i < 4; ++i) {
    wchar_t unit = value[i];
    if (unit >= L'A' && unit <= L'Z') unit = static_cast<wchar_t>(unit - L'A' + L'a');
    if (unit != kTrue[i]) return 0u;
  }
  return 1u;
}
