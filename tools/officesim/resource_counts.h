#pragma once
#include <string>

// What the process holds: kernel handles, GDI and USER objects, private bytes.
struct ResourceCounts {
  unsigned long handles = 0;
  unsigned long gdiObjects = 0;
  unsigned long userObjects = 0;
  unsigned long long privateBytes = 0;
};

ResourceCounts CurrentResourceCounts();
std::string Describe(const ResourceCounts& counts);
