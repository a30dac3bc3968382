#include "tools/syncsim/request_recorder.h"

#include <windows.h>

#include "common/text.h"
#include "common/unique_resource.h"

RequestRecorder::RequestRecorder(std::wstring textFile, std::wstring rawFile)
    : textFile_(std::move(textFile)), rawFile_(std::move(rawFile)) {}

void RequestRecorder::Record(const std::string& bytes, const std::wstring& text) {
  std::lock_guard<std::mutex> lock(lock_);
  if (!textFile_.empty()) Append(textFile_, ToUtf8(text) + "\n");
  if (!rawFile_.empty()) Append(rawFile_, bytes);
}

void RequestRecorder::Append(const std::wstring& path, const std::string& bytes) {
  // Opened per request so a test can read the file while syncsim runs.
  UniqueFileHandle file(CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return;
  DWORD written = 0;
  WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}
