#pragma once

#include <memory>

#include "sources/event_loop.h"

namespace vistel {

/// Ends the wait of a loop, which outlives it, when something can be read from a descriptor, which stays its
/// owner's.
class Readiness {
  public:
    Readiness(EventLoop& loop, int descriptor);
    ~Readiness();
    Readiness(const Readiness&) = delete;
    Readiness& operator=(const Readiness&) = delete;

    /// The next time; to be asked for again behind it.
    void await();

  private:
    struct Parts;
    std::shared_ptr<Parts> parts_;
};

}  // namespace vistel
