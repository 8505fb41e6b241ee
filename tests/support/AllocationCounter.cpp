// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/AllocationCounter.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

thread_local int allocations = 0;
thread_local int allocationsLeft = -1;  // negative: no limit

void* Allocate(std::size_t size) {
    ++allocations;
    if (allocationsLeft == 0) throw std::bad_alloc();
    if (allocationsLeft > 0) --allocationsLeft;
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

AllocationCounter::AllocationCounter() noexcept : before_(allocations) {}
AllocationCounter::~AllocationCounter() = default;

int AllocationCounter::Count() const noexcept { return allocations - before_; }

AllocationLimit::AllocationLimit(int count) noexcept { allocationsLeft = count; }
AllocationLimit::~AllocationLimit() { allocationsLeft = -1; }

bool AllocationLimit::IsReached() const noexcept { return allocationsLeft == 0; }
