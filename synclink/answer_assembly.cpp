#include "synclink/answer_assembly.h"

#include <utility>

AnswerAssembly::Step AnswerAssembly::Add(const wchar_t* units, std::size_t unitCount, std::size_t byteCount,
                                         bool messageEnds) {
  bytesRead_ += byteCount;
  if (bytesRead_ > maxBytes_) {
    std::wstring().swap(text_);  // not just cleared: the memory goes back
    return Step::TooLong;
  }
  std::size_t start = 0;
  if (!leadDropped_ && unitCount > 0) {
    start = 1;
    leadDropped_ = true;
  }
  // Text after a NUL is never joined to the text before it: a sender could
  // otherwise hide one answer behind another's end.
  for (std::size_t i = start; i < unitCount; ++i) {
    if (units[i] == L'\0') {
      text_.append(units + start, i - start);
      endedAtNul_ = true;
      return Step::Complete;
    }
  }
  if (unitCount > start) text_.append(units + start, unitCount - start);
  return messageEnds ? Step::Complete : Step::More;
}
