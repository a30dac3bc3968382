#pragma once
// Puts the sync app's answer together from the pipe's reads, and decides
// where it ends: at the end of the message, at the first NUL unit, or
// nowhere, when it grows past what any real answer reaches.
#include <cstddef>
#include <string>

// The most bytes of one answer message the add-in reads (its lead unit
// included): twice the largest realistic answer, rounded up to a whole
// MiB. That answer is 500 open documents, each with its path, source and
// destination at MAX_PATH, and 50 viewers and 50 editors whose 36-unit ids
// and 64-unit names fill every list: 11,671,022 bytes. 23 MiB = 24,117,248
// bytes. Beyond that the sender is broken or hostile, and the add-in must
// not hold Office's memory for it.
inline constexpr std::size_t kMaxAnswerBytes = 23u * 1024u * 1024u;

class AnswerAssembly {
 public:
  enum class Step {
    More,      // read on
    Complete,  // the answer is whole (message ended, or a NUL ended it)
    TooLong,   // past the cap: abandoned, its memory given back
  };

  explicit AnswerAssembly(std::size_t maxBytes = kMaxAnswerBytes) : maxBytes_(maxBytes) {}

  // One read: `byteCount` bytes, of which the first `unitCount` whole
  // UTF-16 units are at `units` (an odd last byte is counted, never
  // added). `messageEnds`: the read reported the message complete. The
  // first unit of the first read is not text and is dropped.
  Step Add(const wchar_t* units, std::size_t unitCount, std::size_t byteCount, bool messageEnds);

  const std::wstring& text() const { return text_; }
  std::wstring TakeText() { return std::move(text_); }
  std::size_t bytesRead() const { return bytesRead_; }
  // A NUL unit ended the answer before the message did.
  bool endedAtNul() const { return endedAtNul_; }

 private:
  std::size_t maxBytes_;
  std::size_t bytesRead_ = 0;
  bool leadDropped_ = false;
  bool endedAtNul_ = false;
  std::wstring text_;
};
