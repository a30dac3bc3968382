// Times one UI tick inside the simulated Office under Wine with 1, 10 and
// 100 cached documents whose overlays are up to date, as a user who keeps
// many synced files open would have them every 4 seconds. Two kinds of
// session: quiet files (nobody else in them, nothing shown) and viewed
// files (one other person in each, so each has its badge and panel, hidden
// while the file is not the active one). Prints the median tick and how
// the time grows from 10 to 100 documents (10 means linear growth).
// Also counts how often one tick takes the cache's lock (each taking is a
// kernel round trip under Wine), and times a WM_MOUSEMOVE that drags the
// active file's badge with 1 and with 100 documents open: a window message
// finds its state through the window, so the two should cost the same.
// Reported, not asserted: timings depend on the machine and on what else
// runs on it. Run through bench/tick-benchmark.sh.
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>
#include <vector>

#include "synclink/record_lock.h"
#include "tests/windows/tick_test_support.h"

namespace {
// Ticks measured per case (1 for a smoke run).
int kMeasuredTicks = 500;
constexpr int kSizes[] = {1, 10, 100};

double Microseconds(LONGLONG ticks) {
  static const LONGLONG frequency = [] {
    LARGE_INTEGER f;
    QueryPerformanceFrequency(&f);
    return f.QuadPart;
  }();
  return static_cast<double>(ticks) * 1e6 / static_cast<double>(frequency);
}

// The median and the 10th and 90th percentiles: on a shared machine a tick
// now and then waits for the wineserver's turn on a processor, and the
// spread shows how much of that is in the figure.
struct Figures {
  double median;
  double low;
  double high;
  // Takings of the cache's lock in one measured tick.
  std::uint64_t locksPerTick = 0;
};

Figures Summarise(std::vector<double> times) {
  std::sort(times.begin(), times.end());
  return {times[times.size() / 2], times[times.size() / 10], times[times.size() * 9 / 10]};
}

LONGLONG Now() {
  LARGE_INTEGER now;
  QueryPerformanceCounter(&now);
  return now.QuadPart;
}

// Messages timed per size of the mouse-move case (10 for a smoke run).
int kMeasuredMoves = 2000;

// The active file's badge pressed and dragged to and fro by one pixel;
// the median time of one WM_MOUSEMOVE.
Figures TimeMouseMoves(int documents, const AnswerFields& answer) {
  OverlayHost host(SimHost::Word);
  std::vector<SimDocument*> opened;
  for (int i = 0; i < documents; ++i) {
    opened.push_back(host.OpenAnswered(L"bench" + std::to_wstring(i), answer));
    Tick();
    PumpMessages();
  }
  host.Activate(opened.front());
  Tick();
  PumpMessages();
  const HWND badge = BadgeOf(opened.front()->fullName());
  if (badge == nullptr) return {0, 0, 0};
  SendMessageW(badge, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(35, 35));
  // Out of the drag rectangle once, so every timed move drags.
  SendMessageW(badge, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(45, 45));
  std::vector<double> times;
  times.reserve(kMeasuredMoves);
  const std::uint64_t locksBefore = RecordLock::Acquisitions();
  for (int i = 0; i < kMeasuredMoves; ++i) {
    const int offset = 35 + (i % 2 ? 1 : -1);
    const LONGLONG start = Now();
    SendMessageW(badge, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(offset, offset));
    times.push_back(Microseconds(Now() - start));
  }
  Figures figures = Summarise(times);
  figures.locksPerTick = RecordLock::Acquisitions() - locksBefore;
  SendMessageW(badge, WM_LBUTTONUP, 0, MAKELPARAM(35, 35));
  PumpMessages();
  return figures;
}

// One session of `documents` open files, each with `answer`; the first one
// active at the end, as after the user went through them all.
Figures TimeTicks(int documents, const AnswerFields& answer) {
  OverlayHost host(SimHost::Word);
  std::vector<SimDocument*> opened;
  for (int i = 0; i < documents; ++i) {
    opened.push_back(host.OpenAnswered(L"bench" + std::to_wstring(i), answer));
    // Each file's first tick as the active one builds what it shows.
    Tick();
    PumpMessages();
  }
  host.Activate(opened.front());
  for (int i = 0; i < 3; ++i) {
    Tick();
    PumpMessages();
  }
  std::vector<double> times;
  times.reserve(kMeasuredTicks);
  std::uint64_t locks = 0;
  for (int i = 0; i < kMeasuredTicks; ++i) {
    const std::uint64_t locksBefore = RecordLock::Acquisitions();
    const LONGLONG start = Now();
    Tick();
    const LONGLONG end = Now();
    locks = RecordLock::Acquisitions() - locksBefore;
    times.push_back(Microseconds(end - start));
    PumpMessages();
  }
  Figures figures = Summarise(times);
  figures.locksPerTick = locks;
  return figures;
}
}  // namespace

int main(int argc, char** argv) {
  // --smoke: one tick with one document of each kind, only to show that
  // the program still builds and runs.
  size_t sizeCount = std::size(kSizes);
  if (argc == 2 && std::string(argv[1]) == "--smoke") {
    kMeasuredTicks = 1;
    kMeasuredMoves = 10;
    sizeCount = 1;
  } else if (argc != 1) {
    std::printf("usage: tick_bench.exe [--smoke]\n");
    return std::string(argv[1]) == "--help" ? 0 : 2;
  }
  AnswerFields quiet = QuietAnswer();
  AnswerFields viewed = QuietAnswer();
  AddViewers(viewed, L"u-ann", L"Ann Lee");

  std::printf("One UI tick in the simulated Word under Wine, %d ticks each, microseconds (median [p10, p90])\n",
              kMeasuredTicks);
  std::printf("%-10s %-30s %-30s %s\n", "documents", "quiet", "viewed", "cache lock takings per tick (quiet, viewed)");
  std::vector<Figures> quietFigures, viewedFigures;
  for (size_t index = 0; index < sizeCount; ++index) {
    const int size = kSizes[index];
    quietFigures.push_back(TimeTicks(size, quiet));
    viewedFigures.push_back(TimeTicks(size, viewed));
    const Figures& q = quietFigures.back();
    const Figures& v = viewedFigures.back();
    std::printf("%-10d %8.0f [%6.0f, %6.0f]       %8.0f [%6.0f, %6.0f]       %llu, %llu\n", size, q.median, q.low,
                q.high, v.median, v.low, v.high, static_cast<unsigned long long>(q.locksPerTick),
                static_cast<unsigned long long>(v.locksPerTick));
  }
  std::printf("(each tick also takes the named cache mutex once)\n");
  std::printf("One WM_MOUSEMOVE dragging the active badge, %d messages each, microseconds (median [p10, p90])\n",
              kMeasuredMoves);
  const Figures oneMove = TimeMouseMoves(1, viewed);
  const int many = sizeCount < std::size(kSizes) ? 1 : 100;
  const Figures manyMoves = TimeMouseMoves(many, viewed);
  std::printf("1 document   %8.1f [%6.1f, %6.1f], cache lock takings %llu\n", oneMove.median, oneMove.low,
              oneMove.high, static_cast<unsigned long long>(oneMove.locksPerTick));
  std::printf("%d documents %7.1f [%6.1f, %6.1f], cache lock takings %llu\n", many, manyMoves.median, manyMoves.low,
              manyMoves.high, static_cast<unsigned long long>(manyMoves.locksPerTick));
  std::printf("%d documents against 1 (1 = the same): %.2f\n", many, manyMoves.median / oneMove.median);
  if (sizeCount < std::size(kSizes)) return 0;
  std::printf("100 documents against 10 (10 = linear): quiet %.1f (p10 %.1f), viewed %.1f (p10 %.1f)\n",
              quietFigures[2].median / quietFigures[1].median, quietFigures[2].low / quietFigures[1].low,
              viewedFigures[2].median / viewedFigures[1].median, viewedFigures[2].low / viewedFigures[1].low);
  return 0;
}
