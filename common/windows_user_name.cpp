#include "common/windows_user_name.h"

#include <windows.h>

#include <atomic>

namespace {
std::atomic<int> g_queries{0};
}  // namespace

const std::wstring& WindowsUserName() {
  static const std::wstring name = [] {
    ++g_queries;
    // UNLEN (256) characters and the terminating NUL.
    wchar_t buffer[257];
    DWORD size = 257;
    return GetUserNameW(buffer, &size) ? std::wstring(buffer) : std::wstring();
  }();
  return name;
}

int WindowsUserNameQueries() { return g_queries.load(); }
