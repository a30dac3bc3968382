#pragma once
// Reads the sync app's answer: {"resp":[{"key":"value",...},...]}. This is
// a small scanner for quotes and braces, not a JSON parser; the sync app
// writes the narrow shape it accepts (every value a quoted string, no
// blanks between tokens, no escapes, no quote or brace inside a value).
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

using AnswerObject = std::map<std::wstring, std::wstring>;

// One map per file object, in answer order; empty when the text lacks the
// frame. Runs in time linear in the text.
std::vector<AnswerObject> ParseAnswer(std::wstring_view text);

// 1 only for "true" in any letter case (ASCII letters fold, nothing else);
// "1", "yes", "" and " true" are 0.
std::uint32_t ParseFlag(std::wstring_view value);
