#pragma once

#include <algorithm>
#include <string>

#include "readers/byte_input.h"

namespace vistel::test {

/// Bytes of the memory that come a few at a time, as if from a pipe.
class Drops final : public ByteInput {
  public:
    Drops(std::string text, std::size_t most) : text_(std::move(text)), most_(most) {}

    Fill read(std::span<char> room, int /*patience*/, std::size_t& size) override {
        size = text_.copy(room.data(), std::min(room.size(), most_), at_);
        at_ += size;
        return size > 0 ? Fill::data : Fill::end;
    }
    const std::string& error() const override { return none_; }
    bool is_file() const override { return false; }
    std::uint64_t total() const override { return text_.size(); }

  private:
    std::string text_, none_;
    std::size_t most_, at_ = 0;
};

}  // namespace vistel::test
