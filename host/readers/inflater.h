#pragma once

#include <memory>
#include <span>
#include <string_view>

namespace vistel {

/// Undoes the compression of zlib, one piece after the other. A program built without compressed recordings
/// gets nothing out of any.
class Inflater {
  public:
    Inflater();
    ~Inflater();
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    struct Outcome {
        std::size_t size;  ///< bytes that came out
        bool whole;        ///< they are all, and what went in was one piece up to its end
    };

    /// Writes what `compressed` stands for, as far as it goes and there is room.
    Outcome inflate(std::string_view compressed, std::span<char> room);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace vistel
