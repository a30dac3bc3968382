#pragma once
#include <cstdint>
#include <string>

// Names the log writes in its thread column. Entries are made only while
// the add-in connects, on the UI thread; every log line reads them.
void NameThread(std::uint32_t threadId, const std::wstring& name);
// The name given to the thread, or "THREAD_NAME".
std::wstring ThreadName(std::uint32_t threadId);
