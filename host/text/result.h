#pragma once

#include <cassert>
#include <string>
#include <utility>
#include <variant>

#include "text/words.h"

namespace vistel {

/// Why an operation failed, as a text for users.
struct Failure {
    std::string text;
};

/// `return failure("no unit '", text, "'");`
template <class... Parts>
Failure failure(const Parts&... parts) {
    return {concat(parts...)};
}

/// What came of an operation that can fail: a value, or why there is none.
template <class Value, class Error = Failure>
class [[nodiscard]] Result {
  public:
    Result(Value value) : state_(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : state_(std::in_place_index<1>, std::move(error)) {}

    explicit operator bool() const { return state_.index() == 0; }

    /// @{ the value, of a success
    Value& operator*() {
        assert(*this);
        return *std::get_if<0>(&state_);
    }
    Value* operator->() { return &**this; }
    /// @}

    /// Of a failure.
    const Error& error() const {
        assert(!*this);
        return *std::get_if<1>(&state_);
    }

  private:
    std::variant<Value, Error> state_;
};

/// The result of an operation that gives no value.
struct Done {};
using Status = Result<Done>;
inline constexpr Done done;

}  // namespace vistel
