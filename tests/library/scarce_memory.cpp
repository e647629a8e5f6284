#include "library/scarce_memory.h"

#include <cstdlib>
#include <new>

namespace pgn_vistel::test {

namespace {

thread_local bool scarce = false;
thread_local long left = 0;
thread_local bool failed = false;

void* allocate(std::size_t size) noexcept {
    if (scarce && left-- <= 0) {
        failed = true;
        return nullptr;
    }
    return std::malloc(size != 0 ? size : 1);
}

void* allocate_or_throw(std::size_t size) {
    void* const memory = allocate(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

ScarceMemory::ScarceMemory(long allocations_left) {
    left = allocations_left;
    failed = false;
    scarce = true;
}
ScarceMemory::~ScarceMemory() {
    scarce = false;
}
bool ScarceMemory::was_short() const {
    return failed;
}

}  // namespace pgn_vistel::test

using namespace pgn_vistel::test;

void* operator new(std::size_t size) {
    return allocate_or_throw(size);
}
void* operator new[](std::size_t size) {
    return allocate_or_throw(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
