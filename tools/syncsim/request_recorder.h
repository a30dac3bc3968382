#pragma once
// Keeps what the add-in sent, for tests: the text of each request as a
// UTF-8 line, and the bytes exactly as they arrived.
#include <mutex>
#include <string>

class RequestRecorder {
 public:
  RequestRecorder(std::wstring textFile, std::wstring rawFile);

  // `bytes` is the whole message as received, its NUL included.
  void Record(const std::string& bytes, const std::wstring& text);

 private:
  static void Append(const std::wstring& path, const std::string& bytes);

  std::wstring textFile_;
  std::wstring rawFile_;
  std::mutex lock_;
};
