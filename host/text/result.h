#pragma once

#include <cassert>
#include <concepts>
#include <optional>
#include <string>
#include <utility>

#include "text/words.h"

namespace vistel {

/// Why something could not be done, in words for a person.
template <class Reason = std::string>
struct Failure {
    Reason reason;
};

/// `return failure("priority ", 9u, " is above ", 7u);`
template <class... Parts>
Failure<> failure(const Parts&... parts) {
    return {concat(parts...)};
}

/// The value of what has none to give.
struct Done {};

/// What an operation came to that may fail: its value, or the reason.
template <class Value = Done, class Reason = std::string>
class [[nodiscard]] Result {
  public:
    Result(Value value) : value_(std::move(value)) {}
    Result(Failure<Reason> failed) : reason_(std::move(failed.reason)) {}
    Result() requires std::same_as<Value, Done> : value_(Done{}) {}

    explicit operator bool() const { return value_.has_value(); }

    /// @{ of one that succeeded
    Value& operator*() {
        assert(value_);
        return *value_;
    }
    Value* operator->() { return &**this; }
    /// @}

    /// @{ of one that failed; as a failure to hand it on
    const Reason& reason() const {
        assert(!value_);
        return reason_;
    }
    Failure<Reason> failed() const { return {reason()}; }
    /// @}

  private:
    std::optional<Value> value_;
    Reason reason_{};
};

}  // namespace vistel
