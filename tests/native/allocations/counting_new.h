#pragma once
// Counts the heap blocks that operator new hands out and operator delete
// takes back while a count is running, on any thread.
#include <cstdint>

class AllocationCount {
 public:
  AllocationCount();
  ~AllocationCount();
  AllocationCount(const AllocationCount&) = delete;
  AllocationCount& operator=(const AllocationCount&) = delete;

  std::int64_t allocations() const;
  std::int64_t frees() const;

 private:
  std::int64_t allocationsAtStart_;
  std::int64_t freesAtStart_;
};
