#include "AllocationCount.h"

#include <cstdlib>
#include <new>

namespace norvane {
namespace {

thread_local std::size_t allocations = 0;

void* allocate(std::size_t size) {
    ++allocations;
    if (void* const memory = std::malloc(size > 0 ? size : 1)) return memory;
    throw std::bad_alloc();
}

void* allocateAligned(std::size_t size, std::size_t alignment) {
    ++allocations;
    // aligned_alloc(3) wants a multiple of the alignment.
    const std::size_t whole = (size + alignment - 1) / alignment * alignment;
    if (void* const memory = std::aligned_alloc(alignment, whole > 0 ? whole : alignment)) return memory;
    throw std::bad_alloc();
}

}  // namespace

std::size_t allocationsOnThisThread() {
    return allocations;
}

}  // namespace norvane

// The library's other forms, for arrays and without exceptions, come down to these.
void* operator new(std::size_t size) {
    return norvane::allocate(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return norvane::allocateAligned(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}
