#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "readers/byte_input.h"
#include "readers/formats.h"
#include "text/words.h"

namespace vistel {

/// Passes bytes on and tells if their beginning speaks for another format than the one that they are read in.
class FormatCheck final : public ByteInput {
  public:
    using Tell = std::function<void(const std::string&)>;

    FormatCheck(std::unique_ptr<ByteInput> input, const Format& named, Tell tell)
        : input_(std::move(input)), named_(named), tell_(std::move(tell)) {}

    Fill read(std::span<char> room, int patience, std::size_t& size) override {
        const Fill came = input_->read(room, patience, size);
        if (came == Fill::data && !is_over_) look_at({room.data(), size});
        return came;
    }
    const std::string& error() const override { return input_->error(); }
    bool is_file() const override { return input_->is_file(); }
    std::uint64_t total() const override { return input_->total(); }
    std::int64_t arrival() const override { return input_->arrival(); }

  private:
    void look_at(std::string_view bytes) {
        constexpr std::size_t most_head = 4096;
        head_ += bytes.substr(0, most_head - head_.size());
        const Format* const found = recognise_format(head_, passed_, false);
        if (found != nullptr && found != &named_ && tell_)
            tell_(concat("these bytes look like ", found->name, ", not like ", named_.name));
        if (found != nullptr || head_.size() == most_head) is_over_ = true;
    }

    std::unique_ptr<ByteInput> input_;
    const Format& named_;
    Tell tell_;
    std::string head_;
    std::size_t passed_ = 0;
    bool is_over_ = false;
};

}  // namespace vistel
