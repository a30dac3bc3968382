#include "tools/officesim/resource_counts.h"

#include <windows.h>
#include <psapi.h>

namespace {
HANDLE HandleFromValue(ULONG_PTR value) { return reinterpret_cast<HANDLE>(value); }

// Handles are handed out lowest free slot first, so the open ones sit
// together at the bottom; this many free slots in a row means none above.
// A process that closes more than this many handles in a row below ones it
// keeps is undercounted, by the same amount at every reading.
constexpr unsigned kFreeHandleSlotsToStop = 4096;

// Wine's GDI table has 65,536 slots; index 0 is never used.
constexpr ULONG_PTR kGdiTableSlots = 0x10000;

// Wine's USER handles: even low words from 0x20 to 0xFFEE, one per slot.
constexpr ULONG_PTR kFirstUserHandle = 0x20;
constexpr ULONG_PTR kLastUserHandle = 0xFFEE;

// Undocumented but exported by user32 on Windows and Wine alike; answers
// for a cursor or icon and nothing else, and creates nothing (GetIconInfo
// would create two bitmaps per icon).
using GetCursorFrameInfoFunction = HCURSOR(WINAPI*)(HCURSOR, DWORD, DWORD, DWORD*, DWORD*);

bool IsCursorOrIcon(GetCursorFrameInfoFunction frameInfo, HANDLE handle) {
  DWORD rate = 0, steps = 0;
  return frameInfo(static_cast<HCURSOR>(handle), 0, 0, &rate, &steps) != nullptr;
}

struct WindowTally {
  DWORD processId;
  unsigned long windows;
};

bool IsOurs(HWND window, DWORD processId) {
  DWORD owner = 0;
  GetWindowThreadProcessId(window, &owner);
  return owner == processId;
}

BOOL CALLBACK CountChildWindow(HWND window, LPARAM tallyAddress) {
  auto* tally = reinterpret_cast<WindowTally*>(tallyAddress);
  if (IsOurs(window, tally->processId)) ++tally->windows;
  return TRUE;
}

// A top-level window and all its descendants (EnumChildWindows walks the
// whole tree); a window of another process may still have children of ours.
void CountWindowTree(HWND topLevel, WindowTally& tally) {
  if (IsOurs(topLevel, tally.processId)) ++tally.windows;
  EnumChildWindows(topLevel, CountChildWindow, reinterpret_cast<LPARAM>(&tally));
}

BOOL CALLBACK CountTopLevelWindow(HWND window, LPARAM tallyAddress) {
  CountWindowTree(window, *reinterpret_cast<WindowTally*>(tallyAddress));
  return TRUE;
}

unsigned long OurWindows() {
  WindowTally tally{GetCurrentProcessId(), 0};
  EnumWindows(CountTopLevelWindow, reinterpret_cast<LPARAM>(&tally));
  // Message-only windows are not top-level windows of the desktop, so
  // EnumWindows never sees them.
  for (HWND window = FindWindowExW(HWND_MESSAGE, nullptr, nullptr, nullptr); window != nullptr;
       window = FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr)) {
    CountWindowTree(window, tally);
  }
  return tally.windows;
}
}  // namespace

unsigned long ProbedKernelHandles() {
  unsigned long open = 0;
  unsigned freeInARow = 0;
  for (ULONG_PTR value = 4; freeInARow < kFreeHandleSlotsToStop; value += 4) {
    DWORD flags = 0;
    if (GetHandleInformation(HandleFromValue(value), &flags)) {
      ++open;
      freeInARow = 0;
    } else {
      ++freeInARow;
    }
  }
  return open;
}

unsigned long ProbedGdiObjects() {
  unsigned long objects = 0;
  for (ULONG_PTR slot = 1; slot < kGdiTableSlots; ++slot) {
    if (GetObjectType(HandleFromValue(slot)) != 0) ++objects;
  }
  return objects;
}

unsigned long ProbedUserObjects() {
  const auto frameInfo = reinterpret_cast<GetCursorFrameInfoFunction>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "GetCursorFrameInfo")));
  unsigned long objects = OurWindows();
  for (ULONG_PTR value = kFirstUserHandle; value <= kLastUserHandle; value += 2) {
    const HANDLE handle = HandleFromValue(value);
    if (IsMenu(static_cast<HMENU>(handle)) ||
        CopyAcceleratorTableW(static_cast<HACCEL>(handle), nullptr, 0) > 0 ||
        (frameInfo != nullptr && IsCursorOrIcon(frameInfo, handle))) {
      ++objects;
    }
  }
  return objects;
}

unsigned long long ProbedPrivateBytes() {
  SYSTEM_INFO system{};
  GetSystemInfo(&system);
  const auto* address = static_cast<const char*>(system.lpMinimumApplicationAddress);
  const auto* end = static_cast<const char*>(system.lpMaximumApplicationAddress);
  unsigned long long committed = 0;
  MEMORY_BASIC_INFORMATION region{};
  while (address < end && VirtualQuery(address, &region, sizeof(region)) == sizeof(region) && region.RegionSize != 0) {
    if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) committed += region.RegionSize;
    address = static_cast<const char*>(region.BaseAddress) + region.RegionSize;
  }
  return committed;
}

ResourceCounts CurrentResourceCounts() {
  ResourceCounts counts;
  const HANDLE process = GetCurrentProcess();
  DWORD handles = 0;
  if (GetProcessHandleCount(process, &handles)) counts.handles = handles;
  if (counts.handles == 0) counts.handles = ProbedKernelHandles();
  counts.gdiObjects = GetGuiResources(process, GR_GDIOBJECTS);
  if (counts.gdiObjects == 0) counts.gdiObjects = ProbedGdiObjects();
  counts.userObjects = GetGuiResources(process, GR_USEROBJECTS);
  if (counts.userObjects == 0) counts.userObjects = ProbedUserObjects();
  PROCESS_MEMORY_COUNTERS_EX memory{};
  if (GetProcessMemoryInfo(process, reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&memory), sizeof(memory))) {
    counts.privateBytes = memory.PrivateUsage;
  }
  if (counts.privateBytes == 0) counts.privateBytes = ProbedPrivateBytes();
  return counts;
}

std::string Describe(const ResourceCounts& counts) {
  return "handles=" + std::to_string(counts.handles) + " gdi=" + std::to_string(counts.gdiObjects) +
         " user=" + std::to_string(counts.userObjects) + " private=" + std::to_string(counts.privateBytes);
}
