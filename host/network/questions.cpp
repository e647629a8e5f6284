#include "network/questions.h"

#include "can/identifier.h"
#include "pgn_vistel/core/ids.h"

namespace vistel {

namespace {

namespace pgn = pgn_vistel::core::pgn;

/// What is asked for each `Subject`.
constexpr std::uint32_t subject_pgns[] = {pgn::address_claim, pgn::product_information,
                                          pgn::configuration_information, pgn::pgn_list};
static_assert(std::size(subject_pgns) == subject_count);

}  // namespace

bool Questions::ask(std::uint8_t destination, std::uint32_t pgn) {
    N2KMsg question{};
    question.pgn = pgn::iso_request;
    question.priority = 6;
    question.source = source_;
    question.destination = destination;
    question.length = 3;
    for (int i = 0; i < 3; ++i) question.data[i] = static_cast<std::uint8_t>(pgn >> 8 * i);
    return send_(question);
}

void Questions::advance(Network& network, std::int64_t now) {
    if (next_ && now < *next_) return;
    if (!began_) {
        began_ = ask(everyone, pgn::address_claim);
        next_ = now + (began_ ? long_pause : pause);
        return;
    }
    for (std::size_t i = 0; i < subject_count; ++i) {
        Device* const device = network.first_to_ask(
            [&](const Device& d) { return d.address != source_ && !d.asked[i] && !d.known[i]; });
        if (device == nullptr) continue;
        device->asked[i] = ask(*device->address, subject_pgns[i]);
        next_ = now + pause;
        return;
    }
}

void BusQuestions::advance(std::map<std::uint8_t, Network>& networks, std::int64_t now) {
    for (auto& [number, network] : networks) {
        const auto send = [this, bus = number](const N2KMsg& frame) { return send_(bus, frame); };
        questions_.try_emplace(number, send).first->second.advance(network, now);
    }
}

}  // namespace vistel
