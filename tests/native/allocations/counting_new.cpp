// Replaces the global operator new and delete for this test program only:
// the blocks still come from malloc (so the sanitizers keep watching them),
// and every one is counted.
#include "tests/native/allocations/counting_new.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::int64_t> g_allocations{0};
std::atomic<std::int64_t> g_frees{0};

void* Allocate(std::size_t size) noexcept {
  ++g_allocations;
  return std::malloc(size == 0 ? 1 : size);
}

void Free(void* block) noexcept {
  if (block == nullptr) return;
  ++g_frees;
  std::free(block);
}
}  // namespace

void* operator new(std::size_t size) {
  if (void* block = Allocate(size)) return block;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
  if (void* block = Allocate(size)) return block;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* block) noexcept { Free(block); }
void operator delete[](void* block) noexcept { Free(block); }
void operator delete(void* block, std::size_t) noexcept { Free(block); }
void operator delete[](void* block, std::size_t) noexcept { Free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { Free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { Free(block); }

AllocationCount::AllocationCount() : allocationsAtStart_(g_allocations.load()), freesAtStart_(g_frees.load()) {}
AllocationCount::~AllocationCount() = default;
std::int64_t AllocationCount::allocations() const { return g_allocations.load() - allocationsAtStart_; }
std::int64_t AllocationCount::frees() const { return g_frees.load() - freesAtStart_; }
