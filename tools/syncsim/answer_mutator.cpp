#include "tools/syncsim/answer_mutator.h"

#include <algorithm>

namespace {
// What copying members or objects may add to one answer: a few MB, so a
// copy of a copy of a huge value cannot run syncsim out of memory.
constexpr std::size_t kMaxCopiedUnits = 2000000;

// Units that matter to a reader of the answer, a log or a window text.
constexpr wchar_t kHostileUnits[] = {L'\0', L'"', L'{', L'}', L'[', L']', L':', L',', L'|', L'\\', L'\r', L'\n',
                                     L'\x1b', L'\x7f', L'&', L'\x202e', L'\xFEFF', L'\xD800', L'\xDC00', L'\xFFFF'};

// Where the members of the first object begin, or npos.
std::size_t FirstMember(const std::wstring& answer) {
  const std::size_t brace = answer.find(L'{', 1);
  return brace == std::wstring::npos ? brace : brace + 1;
}
}  // namespace

std::size_t AnswerMutator::Below(std::size_t limit) {
  if (limit == 0) return 0;
  return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
}

// Up to `most` copies, but never more than kMaxCopiedUnits units in all: a
// member or object that is already huge is copied once.
std::size_t AnswerMutator::Copies(std::size_t most, std::size_t units) {
  const std::size_t fit = units == 0 ? most : kMaxCopiedUnits / units;
  return std::max<std::size_t>(1, std::min(1 + Below(most), fit));
}

wchar_t AnswerMutator::HostileUnit() {
  if (Below(2) == 0) return kHostileUnits[Below(sizeof(kHostileUnits) / sizeof(kHostileUnits[0]))];
  return static_cast<wchar_t>(Below(0x10000));
}

std::wstring AnswerMutator::Mutate(const std::wstring& answer, std::string& what) {
  std::wstring text = answer;
  what.clear();
  const std::size_t ways = 1 + Below(3);
  for (std::size_t step = 0; step < ways; ++step) {
    if (!what.empty()) what += ",";
    switch (Below(9)) {
      case 0: {  // a few units flipped
        what += "flip";
        for (std::size_t i = 0, n = 1 + Below(8); i < n && !text.empty(); ++i) text[Below(text.size())] = HostileUnit();
        break;
      }
      case 1: {  // cut short
        what += "cut";
        text.resize(Below(text.size() + 1));
        break;
      }
      case 2: {  // a member repeated, many times over
        what += "duplicate-keys";
        const std::size_t start = FirstMember(text);
        const std::size_t end = start == std::wstring::npos ? start : text.find(L"\",", start);
        if (end == std::wstring::npos) break;
        const std::wstring member = text.substr(start, end + 2 - start);
        std::wstring copies;
        for (std::size_t i = 0, n = Copies(200, member.size()); i < n; ++i) copies += member;
        text.insert(start, copies);
        break;
      }
      case 3: {  // a huge value
        what += "huge-value";
        const std::size_t start = FirstMember(text);
        if (start == std::wstring::npos) break;
        // Now and then past any cap a reader may have (23 MiB).
        const std::size_t units = Below(100) == 0 ? 12600000 + Below(100000) : 1 + Below(30000);
        const wchar_t filler = Below(4) == 0 ? HostileUnit() : L'h';
        text.insert(start, L"\"all_viewers_names\":\"" + std::wstring(units, filler) + L"\",");
        break;
      }
      case 4: {  // a NUL with a second answer after it
        what += "nul";
        text.insert(Below(text.size() + 1),
                    std::wstring(1, L'\0') + L"{\"resp\":[{\"file_path\":\"C:\\spliced.docx\",\"is_sync_file\":\"true\"}]}");
        break;
      }
      case 5: {  // stray structure: braces, quotes, colons
        what += "structure";
        for (std::size_t i = 0, n = 1 + Below(16); i < n; ++i) {
          text.insert(Below(text.size() + 1), 1, kHostileUnits[1 + Below(8)]);
        }
        break;
      }
      case 6: {  // many objects
        what += "many-objects";
        const std::size_t open = text.find(L'{', 1);
        const std::size_t close = open == std::wstring::npos ? open : text.find(L'}', open);
        if (close == std::wstring::npos) break;
        const std::wstring object = text.substr(open, close + 1 - open) + L",";
        std::wstring copies;
        for (std::size_t i = 0, n = Copies(500, object.size()); i < n; ++i) copies += object;
        text.insert(open, copies);
        break;
      }
      case 7: {  // garbage, in part or whole
        what += "garbage";
        std::wstring garbage;
        for (std::size_t i = 0, n = Below(2048); i < n; ++i) garbage += HostileUnit();
        if (Below(2) == 0) {
          text = garbage;
        } else {
          text.insert(Below(text.size() + 1), garbage);
        }
        break;
      }
      default: {  // a long list of members in one value
        what += "long-list";
        const std::size_t start = FirstMember(text);
        if (start == std::wstring::npos) break;
        std::wstring ids, names;
        for (std::size_t i = 0, n = 1 + Below(500); i < n; ++i) {
          ids += (i ? L"|u" : L"u") + std::to_wstring(i);
          names += (i ? L"|Name " : L"Name ") + std::to_wstring(i);
        }
        text.insert(start, L"\"all_editors_quid\":\"" + ids + L"\",\"all_editors_names\":\"" + names + L"\",");
        break;
      }
    }
  }
  return text;
}
