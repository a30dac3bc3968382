#pragma once
// A scratch file that benchmarks append to, the baseline for anything that
// ends as bytes written to a file (a log line) or sent on (a request).
#include <cstddef>

class ScratchAppendFile {
 public:
  ScratchAppendFile();
  ~ScratchAppendFile();
  ScratchAppendFile(const ScratchAppendFile&) = delete;
  ScratchAppendFile& operator=(const ScratchAppendFile&) = delete;

  // One write() of the bytes at the end of the file, as the log writes a
  // line. The file is emptied now and then so it never grows large; the
  // measured code and its baseline both pay that the same way.
  void Append(const void* bytes, std::size_t size);

 private:
  int fd_ = -1;
  std::size_t written_ = 0;
};
