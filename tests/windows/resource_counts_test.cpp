// The resource counts the simulated Office prints for its leak checks: each
// one rises by what this process takes and falls back when it gives it
// back, under Wine (whose own counters read 0) as on Windows.
#include <gtest/gtest.h>

#include <vector>

#include "common/unique_resource.h"
#include "tools/officesim/resource_counts.h"

namespace {
struct WindowTraits {
  using Type = HWND;
  static Type Invalid() { return nullptr; }
  static bool IsValid(Type h) { return h != nullptr; }
  static void Close(Type h) { DestroyWindow(h); }
};
using UniqueWindow = UniqueResource<WindowTraits>;

struct MenuTraits {
  using Type = HMENU;
  static Type Invalid() { return nullptr; }
  static bool IsValid(Type h) { return h != nullptr; }
  static void Close(Type h) { DestroyMenu(h); }
};
struct CursorTraits {
  using Type = HCURSOR;
  static Type Invalid() { return nullptr; }
  static bool IsValid(Type h) { return h != nullptr; }
  static void Close(Type h) { DestroyCursor(h); }
};
struct AcceleratorTraits {
  using Type = HACCEL;
  static Type Invalid() { return nullptr; }
  static bool IsValid(Type h) { return h != nullptr; }
  static void Close(Type h) { DestroyAcceleratorTable(h); }
};

UniqueWindow CreateStatic(DWORD style, HWND parent) {
  return UniqueWindow(CreateWindowExW(0, L"STATIC", L"counted", style, 0, 0, 40, 20, parent, nullptr,
                                      GetModuleHandleW(nullptr), nullptr));
}

// Two top-level windows, a child of the first and two message-only windows:
// every road by which a window can be found.
std::vector<UniqueWindow> CreateFiveWindows() {
  std::vector<UniqueWindow> windows;
  windows.push_back(CreateStatic(WS_OVERLAPPEDWINDOW, nullptr));
  windows.push_back(CreateStatic(WS_POPUP, nullptr));
  windows.push_back(CreateStatic(WS_CHILD, windows[0].get()));
  windows.push_back(CreateStatic(0, HWND_MESSAGE));
  windows.push_back(CreateStatic(0, HWND_MESSAGE));
  return windows;
}

// The child goes with its parent; destroying it first keeps every close real.
void DestroyWindows(std::vector<UniqueWindow>& windows) {
  windows[2].reset();
  windows.clear();
}

// The first look at the windows of a process that has shown none loads the
// display driver, which keeps handles and GDI objects of its own for good:
// read once before any test counts.
class ProcessResources : public testing::Test {
 protected:
  static void SetUpTestSuite() { CurrentResourceCounts(); }
};

constexpr SIZE_T kMebibyte = 1024 * 1024;
// What the heap may commit for its own bookkeeping between two readings
// (Wine's user32 takes window structures from the process heap).
constexpr unsigned long long kHeapJitter = 64 * 1024;

TEST_F(ProcessResources, KernelHandlesRiseByTenEventsAndFallBackWhenTheyClose) {
  const ResourceCounts before = CurrentResourceCounts();
  std::vector<UniqueHandle> events;
  for (int i = 0; i < 10; ++i) {
    events.emplace_back(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    ASSERT_TRUE(events.back());
  }
  const ResourceCounts held = CurrentResourceCounts();
  events.clear();
  const ResourceCounts after = CurrentResourceCounts();
  EXPECT_GE(held.handles, before.handles + 10) << Describe(before) << " / " << Describe(held);
  EXPECT_EQ(after.handles, before.handles) << Describe(before) << " / " << Describe(after);
}

TEST_F(ProcessResources, GdiObjectsRiseByTenBrushesAndFallBackWhenTheyAreDeleted) {
  const ResourceCounts before = CurrentResourceCounts();
  std::vector<UniqueHbrush> brushes;
  for (int i = 0; i < 10; ++i) {
    brushes.emplace_back(CreateSolidBrush(RGB(i, 2 * i, 3 * i)));
    ASSERT_TRUE(brushes.back());
  }
  const ResourceCounts held = CurrentResourceCounts();
  brushes.clear();
  const ResourceCounts after = CurrentResourceCounts();
  EXPECT_GE(held.gdiObjects, before.gdiObjects + 10) << Describe(before) << " / " << Describe(held);
  EXPECT_EQ(after.gdiObjects, before.gdiObjects) << Describe(before) << " / " << Describe(after);
}

TEST_F(ProcessResources, UserObjectsRiseByFiveWindowsAndFallBackWhenTheyAreDestroyed) {
  // The first windows of a thread bring lasting company (Wine's IME window,
  // cached class data); one round before counting lets them settle.
  std::vector<UniqueWindow> settling = CreateFiveWindows();
  DestroyWindows(settling);
  const ResourceCounts before = CurrentResourceCounts();
  std::vector<UniqueWindow> windows = CreateFiveWindows();
  for (const UniqueWindow& window : windows) ASSERT_TRUE(window);
  const ResourceCounts held = CurrentResourceCounts();
  DestroyWindows(windows);
  const ResourceCounts after = CurrentResourceCounts();
  EXPECT_GE(held.userObjects, before.userObjects + 5) << Describe(before) << " / " << Describe(held);
  EXPECT_EQ(after.userObjects, before.userObjects) << Describe(before) << " / " << Describe(after);
}

TEST_F(ProcessResources, UserObjectsRiseByAMenuACursorAndAnAcceleratorTable) {
  const ResourceCounts before = CurrentResourceCounts();
  UniqueResource<MenuTraits> menu(CreatePopupMenu());
  const std::vector<BYTE> andMask(32 * 32 / 8, 0xFF), xorMask(32 * 32 / 8, 0x00);
  UniqueResource<CursorTraits> cursor(
      CreateCursor(GetModuleHandleW(nullptr), 0, 0, 32, 32, andMask.data(), xorMask.data()));
  ACCEL accelerator{FVIRTKEY | FCONTROL, 'K', 1};
  UniqueResource<AcceleratorTraits> accelerators(CreateAcceleratorTableW(&accelerator, 1));
  ASSERT_TRUE(menu && cursor && accelerators);
  const ResourceCounts held = CurrentResourceCounts();
  menu.reset();
  cursor.reset();
  accelerators.reset();
  const ResourceCounts after = CurrentResourceCounts();
  EXPECT_GE(held.userObjects, before.userObjects + 3) << Describe(before) << " / " << Describe(held);
  EXPECT_EQ(after.userObjects, before.userObjects) << Describe(before) << " / " << Describe(after);
}

TEST_F(ProcessResources, PrivateBytesRiseByAMebibyteCommittedAndFallBackWhenItIsReleased) {
  const ResourceCounts before = CurrentResourceCounts();
  void* block = VirtualAlloc(nullptr, kMebibyte, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
  ASSERT_NE(block, nullptr);
  const ResourceCounts held = CurrentResourceCounts();
  VirtualFree(block, 0, MEM_RELEASE);
  const ResourceCounts after = CurrentResourceCounts();
  EXPECT_GE(held.privateBytes, before.privateBytes + kMebibyte) << Describe(before) << " / " << Describe(held);
  EXPECT_LE(after.privateBytes, before.privateBytes + kHeapJitter) << Describe(before) << " / " << Describe(after);
  EXPECT_LE(after.privateBytes + kMebibyte, held.privateBytes) << Describe(held) << " / " << Describe(after);
}

TEST_F(ProcessResources, ReadingThemTakesNothing) {
  CurrentResourceCounts();
  const ResourceCounts first = CurrentResourceCounts();
  const ResourceCounts second = CurrentResourceCounts();
  EXPECT_EQ(second.handles, first.handles);
  EXPECT_EQ(second.gdiObjects, first.gdiObjects);
  EXPECT_EQ(second.userObjects, first.userObjects);
  EXPECT_EQ(second.privateBytes, first.privateBytes);
}
}  // namespace
