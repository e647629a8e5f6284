#include "output/sink.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>

#include "text/hex.h"

namespace vistel {

void Sink::put_slowly(std::string_view text) {
    while (!text.empty()) {
        if (used_ == buffer_.size()) flush();
        const std::size_t count = std::min(text.size(), buffer_.size() - used_);
        std::memcpy(buffer_.data() + used_, text.data(), count);
        used_ += count;
        text.remove_prefix(count);
    }
}

void Sink::put(std::wstring_view text) {
    constexpr std::size_t piece = 2048;
    while (!text.empty()) {
        const auto part = text.substr(0, piece);
        commit(put_utf8(reserve(part.size() * utf8_most), part));
        text.remove_prefix(part.size());
    }
}

namespace {

constexpr std::size_t number_size = 32;

}  // namespace

void Sink::put_number(std::uint64_t number) {
    char* const at = reserve(number_size);
    commit(std::to_chars(at, at + number_size, number).ptr);
}

void Sink::put_number(std::int64_t number) {
    char* const at = reserve(number_size);
    commit(std::to_chars(at, at + number_size, number).ptr);
}

void Sink::put_number(float number) {
    char* const at = reserve(number_size);
    commit(std::to_chars(at, at + number_size, number).ptr);
}

void Sink::put_number(double number) {
    char* const at = reserve(number_size);
    commit(std::to_chars(at, at + number_size, number).ptr);
}

void Sink::put_hex(const std::uint8_t* bytes, int count) {
    char* at = reserve(2 * static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        *at++ = hex_digits[bytes[i] >> 4];
        *at++ = hex_digits[bytes[i] & 15];
    }
    commit(at);
}

void Sink::flush() {
    const char* at = buffer_.data();
    std::size_t left = used_;
    written_ += used_;
    used_ = 0;
    while (open_ && left > 0) {
        const ssize_t written = ::write(descriptor_, at, left);
        if (written < 0 && errno == EINTR) continue;
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
