// Blocks of many kilobytes, used again as they are. A fresh one is mapped, its shadow poisoned and its pages
// faulted in each time, which takes longer than reading an input into it. The bounds of a block stay guarded:
// it is the sanitizer's own. One that was given back is poisoned by hand.
#include <sanitizer/asan_interface.h>

#include <array>
#include <cstddef>
#include <cstdlib>

#include "support/own_memory.h"

namespace {

constexpr std::size_t large = std::size_t{8} << 10;

struct Block {
    void* start = nullptr;
    std::size_t size = 0;
    bool is_free = false;
};
constinit std::array<Block, 24> blocks{};  // fuzzing is one thread's

}  // namespace

void* take_memory(std::size_t size, bool /*may_throw*/) noexcept {
    Block* unused = nullptr;
    if (size >= large)
        for (Block& block : blocks) {
            if (block.start == nullptr) {
                unused = &block;
            } else if (block.is_free && block.size == size) {
                block.is_free = false;
                __asan_unpoison_memory_region(block.start, size);
                return block.start;
            }
        }
    void* const start = std::malloc(size > 0 ? size : 1);
    if (unused != nullptr) *unused = {start, size, false};
    return start;
}

void give_memory(void* start) noexcept {
    if (start == nullptr) return;
    for (Block& block : blocks)
        if (block.start == start) {
            block.is_free = true;
            __asan_poison_memory_region(start, block.size);
            return;
        }
    std::free(start);
}
