#pragma once
#include <string>

// What the process holds: kernel handles, GDI and USER objects, private bytes.
struct ResourceCounts {
  unsigned long handles = 0;
  unsigned long gdiObjects = 0;
  unsigned long userObjects = 0;
  unsigned long long privateBytes = 0;
};

// Each figure comes from Windows' own counter when that counter answers
// (GetProcessHandleCount, GetGuiResources, PrivateUsage); Wine answers 0 to
// all of them, and then the figure is measured by the routines below.
ResourceCounts CurrentResourceCounts();
std::string Describe(const ResourceCounts& counts);

// The measurements that stand in for Windows' counters. Each counts only
// this process's objects and creates none of its own while counting.

// Kernel handles: handle values (multiples of 4) that name an open object.
unsigned long ProbedKernelHandles();
// GDI objects (stock objects included): handle table slots that hold one.
// Wine finds a GDI object by the table index in the handle's low word.
unsigned long ProbedGdiObjects();
// USER objects: the process's windows (top-level, child and message-only),
// menus, cursors and icons, and accelerator tables.
unsigned long ProbedUserObjects();
// Committed private memory, region by region.
unsigned long long ProbedPrivateBytes();
