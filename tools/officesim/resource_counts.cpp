#include "tools/officesim/resource_counts.h"

#include <windows.h>
#include <psapi.h>

ResourceCounts CurrentResourceCounts() {
  ResourceCounts counts;
  const HANDLE process = GetCurrentProcess();
  DWORD handles = 0;
  if (GetProcessHandleCount(process, &handles)) counts.handles = handles;
  counts.gdiObjects = GetGuiResources(process, GR_GDIOBJECTS);
  counts.userObjects = GetGuiResources(process, GR_USEROBJECTS);
  PROCESS_MEMORY_COUNTERS_EX memory{};
  if (GetProcessMemoryInfo(process, reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&memory), sizeof(memory))) {
    counts.privateBytes = memory.PrivateUsage;
  }
  return counts;
}

std::string Describe(const ResourceCounts& counts) {
  return "handles=" + std::to_string(counts.handles) + " gdi=" + std::to_string(counts.gdiObjects) +
         " user=" + std::to_string(counts.userObjects) + " private=" + std::to_string(counts.privateBytes);
}
