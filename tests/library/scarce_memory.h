#pragma once

#include <cstddef>

/// The program's own operator new, which can be made to fail.
namespace pgn_vistel::test {

/// Lets the n-th allocation of this thread from here on (0: the next) and all after it fail, while it lives.
class ScarceMemory {
  public:
    explicit ScarceMemory(long allocations_left);
    ~ScarceMemory();
    bool was_short() const;  ///< whether an allocation has failed
};

}  // namespace pgn_vistel::test
