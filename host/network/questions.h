#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>

#include "network/network.h"

namespace vistel {

/// Asks the devices of a network for what they have not said: requests (59904), first to everyone for their
/// NAMEs, then to one device after the other for its NAME, product information, configuration and PGN lists.
/// Nobody is asked for the same twice, and there is a pause between two questions, because an answer may take
/// twenty frames and more.
class Questions {
  public:
    /// Sends a frame: `vistel::identifier_of` and the payload. False where that is not possible at present;
    /// the question is asked again after the pause.
    using Send = std::function<bool(const N2KMsg& frame)>;

    static constexpr std::int64_t pause = 1'000'000'000;  ///< nanoseconds between two questions
    /// Behind the question to everyone, which they all answer at once.
    static constexpr std::int64_t long_pause = 5 * pause;

    /// `source` is the address that the questions come from: the program's own where it has claimed one, else
    /// `null_address`.
    Questions(Send send, std::uint8_t source = null_address) : send_(std::move(send)), source_(source) {}

    /// Sends the next question, if it is time for one and there is any. `now` comes from any clock that goes
    /// on, in nanoseconds.
    void advance(Network& network, std::int64_t now);

  private:
    [[nodiscard]] bool ask(std::uint8_t destination, std::uint32_t pgn);

    Send send_;
    const std::uint8_t source_;
    bool began_ = false;
    std::optional<std::int64_t> next_;  // not before
};

/// The questions of several buses.
class BusQuestions {
  public:
    using Send = std::function<bool(std::uint8_t bus, const N2KMsg& frame)>;

    explicit BusQuestions(Send send) : send_(std::move(send)) {}

    void advance(std::map<std::uint8_t, Network>& networks, std::int64_t now);

  private:
    Send send_;
    std::map<std::uint8_t, Questions> questions_;
};

}  // namespace vistel
