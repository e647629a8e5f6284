#include "output/sink.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "output/write.h"

namespace vistel {

void Sink::put(std::string_view text) {
    while (!text.empty()) {
        if (used_ == buffer_.size()) flush();
        const std::size_t count = std::min(text.size(), buffer_.size() - used_);
        std::memcpy(buffer_.data() + used_, text.data(), count);
        used_ += count;
        text.remove_prefix(count);
    }
}

void Sink::flush() {
    const char* at = buffer_.data();
    std::size_t left = used_;
    used_ = 0;
    while (open_ && left > 0) {
        const std::ptrdiff_t written = write_some(descriptor_, at, left);
        if (written <= 0) {
            open_ = false;
            error_ = errno;
            return;
        }
        at += written;
        left -= static_cast<std::size_t>(written);
    }
}

}  // namespace vistel
