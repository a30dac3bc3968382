#pragma once
// Walks an answer text the strict way the sync app must write it, to say
// where it leaves that shape. The add-in's own scanner never complains: an
// answer outside the shape silently loses members or whole files, so a sync
// app's builder needs to be told where and why.
#include <string>
#include <string_view>

struct AnswerShape {
  // The frame the add-in's reader checks first: "{"resp":[" at the start
  // and "}" as the last unit. Without it the add-in reads no file at all.
  bool framed = false;
  // The first place where the text leaves the shape for another reason
  // than an unquoted value (a blank between tokens, a missing separator,
  // a quote or brace inside a value); empty when there is none.
  std::wstring shapeProblem;
  // The first member whose value is not a quoted string; empty when there
  // is none.
  std::wstring unquotedValue;
  size_t objects = 0;
  size_t members = 0;
};

AnswerShape CheckAnswerShape(std::wstring_view text);

// A short, printable excerpt of `text` around `position` for a report line.
std::wstring Excerpt(std::wstring_view text, size_t position, size_t length = 40);
