#pragma once

#include <cstddef>

/// What a program that has own_memory.cpp in it says of its memory. Null where there is none; `may_throw`
/// says that this becomes std::bad_alloc.
void* take_memory(std::size_t size, bool may_throw) noexcept;
void give_memory(void* start) noexcept;
