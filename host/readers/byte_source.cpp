#include "readers/byte_source.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace vistel {

void ByteSource::attach(std::unique_ptr<ByteInput> input) {
    assert(!input_);
    input_ = std::move(input);
    buffer_ = std::make_unique_for_overwrite<char[]>(capacity);
}

ByteSource::Fill ByteSource::fill(Wait wait) {
    // Small enough to stay in the processor's cache until it is parsed.
    constexpr std::size_t chunk = std::size_t{1} << 18;
    if (ended_) return error().empty() ? Fill::end : Fill::failed;
    assert(end_ - begin_ < capacity);
    if (begin_ > 0) {
        std::memmove(buffer_.get(), buffer_.get() + begin_, end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    const std::span room(buffer_.get() + end_, std::min(chunk, capacity - end_));
    std::size_t size = 0;
    Fill came = input_->read(room, 0, size);
    if (came == Fill::idle && wait == Wait::yes && patience_ != 0) {
        if (before_wait_) before_wait_();
        came = input_->read(room, patience_, size);
    }
    if (came == Fill::data) {
        end_ += size;
        received_ += size;
        arrival_ = input_->arrival();
    } else if (came != Fill::idle) {
        ended_ = true;
    }
    return came;
}

}  // namespace vistel
