// The operators of memory, in place of the runtime's and the sanitizer's.
#include "support/own_memory.h"

#include <new>

void* operator new(std::size_t size) {
    void* const start = take_memory(size, true);
    if (start == nullptr) throw std::bad_alloc();
    return start;
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return take_memory(size, false);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return take_memory(size, false);
}
void operator delete(void* start) noexcept {
    give_memory(start);
}
void operator delete[](void* start) noexcept {
    give_memory(start);
}
void operator delete(void* start, std::size_t) noexcept {
    give_memory(start);
}
void operator delete[](void* start, std::size_t) noexcept {
    give_memory(start);
}
void operator delete(void* start, const std::nothrow_t&) noexcept {
    give_memory(start);
}
void operator delete[](void* start, const std::nothrow_t&) noexcept {
    give_memory(start);
}
