#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "readers/formats.h"

namespace vistel {

/// Ends the lines of who sends each in a datagram of its own, without an end. Datagrams of others, which hold
/// line ends or bytes that are no text, are pieces of what they bring and stay as they are: a line may go on
/// in the next one. Until it is known who sends, text ends where a datagram that begins a record follows one
/// that does, or nothing follows.
class DatagramLines {
  public:
    using Time = std::chrono::steady_clock::time_point;

    /// Adds a datagram to the bytes that have come.
    void put(std::string_view datagram, Time now, std::string& bytes) {
        if (!is_text(datagram)) kind_ = Kind::pieces;
        const bool is_record = kind_ == Kind::unknown && begins_record(datagram);
        if (is_record && is_record_open_) {
            kind_ = Kind::lines;
            bytes += '\n';
        }
        is_record_open_ = is_record_open_ || is_record;
        bytes += datagram;
        if (kind_ == Kind::lines) bytes += '\n';
        is_open_ = kind_ == Kind::unknown;
        came_ = now;
    }

    /// To be called several times a second.
    void elapsed(Time now, std::string& bytes) {
        constexpr std::chrono::milliseconds longest_pause{200};  // within a line that comes in pieces
        if (!is_open_ || now - came_ < longest_pause) return;
        bytes += '\n';
        is_open_ = is_record_open_ = false;
    }

  private:
    enum class Kind : std::uint8_t { unknown, lines, pieces };

    static bool is_text(std::string_view bytes) {
        return std::ranges::all_of(
            bytes, [](char c) { return (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F) || c == '\t'; });
    }
    /// Or a comment.
    static bool begins_record(std::string_view text) {
        std::size_t passed = 0;
        return text.starts_with('#') || recognise_format(text, passed, true) != nullptr;
    }

    Kind kind_ = Kind::unknown;
    bool is_open_ = false;         // text stands at the end that may go on
    bool is_record_open_ = false;  // in which a record has begun
    Time came_;
};

}  // namespace vistel
