#include "bench/append_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {
constexpr std::size_t kEmptyAfterBytes = 16 << 20;
}

ScratchAppendFile::ScratchAppendFile() {
  const char* folder = std::getenv("TMPDIR");
  std::string path = std::string(folder != nullptr && *folder != '\0' ? folder : "/tmp") + "/qsync-bench-XXXXXX";
  fd_ = mkstemp(path.data());
  if (fd_ >= 0) {
    unlink(path.c_str());  // gone with the descriptor
    const int flags = fcntl(fd_, F_GETFL);
    fcntl(fd_, F_SETFL, flags | O_APPEND);
  } else {
    std::perror("mkstemp");
  }
}

ScratchAppendFile::~ScratchAppendFile() {
  if (fd_ >= 0) close(fd_);
}

void ScratchAppendFile::Append(const void* bytes, std::size_t size) {
  if (fd_ < 0) return;
  if (written_ > kEmptyAfterBytes) {
    if (ftruncate(fd_, 0) == 0) written_ = 0;
  }
  const ssize_t done = write(fd_, bytes, size);
  if (done > 0) written_ += static_cast<std::size_t>(done);
}
