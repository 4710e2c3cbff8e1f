#include <cstdlib>
#include <new>

#include "tests/support/faults.h"

namespace Faults {
namespace {

// The operators use `malloc`, so that sanitizers track every block.
std::size_t g_allocations = 0;
std::size_t g_releases = 0;
std::size_t g_left = kNever;
std::size_t g_bytes = 0;

void* Allocate(std::size_t size) {
  if (g_left == 0) throw std::bad_alloc();
  if (g_left != kNever) --g_left;
  ++g_allocations;
  g_bytes += size;
  if (void* const block = std::malloc(size != 0 ? size : 1)) return block;
  throw std::bad_alloc();
}

void Release(void* block) {
  if (block == nullptr) return;
  ++g_releases;
  std::free(block);
}

}  // namespace

std::size_t Allocations() { return g_allocations; }
std::size_t Releases() { return g_releases; }
std::size_t AllocatedBytes() { return g_bytes; }
void LimitAllocations(std::size_t count) { g_left = count; }

}  // namespace Faults

// Not inlined, so that the compiler does not report mismatched allocation functions.
[[gnu::noinline]] void* operator new(std::size_t size) { return Faults::Allocate(size); }
[[gnu::noinline]] void* operator new[](std::size_t size) { return Faults::Allocate(size); }
// The default does the same, but that of the address sanitizer has its own blocks.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return Faults::Allocate(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
[[gnu::noinline]] void operator delete(void* block) noexcept { Faults::Release(block); }
[[gnu::noinline]] void operator delete[](void* block) noexcept { Faults::Release(block); }
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
  Faults::Release(block);
}
[[gnu::noinline]] void operator delete[](void* block, std::size_t) noexcept {
  Faults::Release(block);
}
