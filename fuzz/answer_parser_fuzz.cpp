// Feeds arbitrary answers to the scanner and checks what must hold for any
// text the pipe can deliver: it never crashes, everything it returns was
// taken from the text, its output cannot outgrow its input, and it reads
// exactly what the plain step-by-step scan reads.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>

#include "fuzz/fuzz_input.h"
#include "synclink/answer_parser.h"
#include "tests/native/answer_scanner_reference.h"

namespace {
// "true" in any case of the ASCII letters, written out independently of
// ParseFlag so the two can disagree.
bool SpellsTrue(std::wstring_view value) {
  static constexpr wchar_t kLower[] = L"true";
  static constexpr wchar_t kUpper[] = L"TRUE";
  if (value.size() != 4) return false;
  for (std::size_t i = 0; i < 4; ++i) {
    if (value[i] != kLower[i] && value[i] != kUpper[i]) return false;
  }
  return true;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring text = UnitsFromBytes(data, size);
  const std::vector<AnswerObject> objects = ParseAnswer(text);
  FUZZ_CHECK(objects == ReferenceScan(text).objects);

  const auto openBraces = static_cast<std::size_t>(std::count(text.begin(), text.end(), L'{'));
  const auto closeBraces = static_cast<std::size_t>(std::count(text.begin(), text.end(), L'}'));
  if (!objects.empty()) {
    // Objects exist only inside the frame.
    FUZZ_CHECK(text.compare(0, 9, L"{\"resp\":[") == 0);
    FUZZ_CHECK(text.back() == L'}');
    // Each object consumes a "{" of its own after the frame's and a "}".
    FUZZ_CHECK(objects.size() < openBraces);
    FUZZ_CHECK(objects.size() <= closeBraces);
  }

  std::size_t taken = 0;
  std::unordered_set<std::wstring_view> seen;
  const std::wstring_view whole(text);
  for (const AnswerObject& object : objects) {
    for (const auto& [key, value] : object) {
      taken += key.size() + value.size();
      if (seen.insert(key).second) FUZZ_CHECK(whole.find(key) != std::wstring_view::npos);
      if (seen.insert(value).second) FUZZ_CHECK(whole.find(value) != std::wstring_view::npos);
      const std::uint32_t flag = ParseFlag(value);
      FUZZ_CHECK(flag == 0 || flag == 1);
      FUZZ_CHECK((flag == 1) == SpellsTrue(value));
    }
  }
  // Keys and values are disjoint pieces of the text: a scanner that copied
  // the rest of an object per member would break this long before it ran
  // out of time.
  FUZZ_CHECK(taken <= text.size());
  return 0;
}
