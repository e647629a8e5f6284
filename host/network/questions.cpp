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

void Questions::ask(std::uint8_t destination, std::uint32_t pgn) {
    N2KMsg question{};
    question.pgn = pgn::iso_request;
    question.priority = 6;
    question.source = source_;
    question.destination = destination;
    question.length = 3;
    for (int i = 0; i < 3; ++i) question.data[i] = static_cast<std::uint8_t>(pgn >> 8 * i);
    send_(question);
}

void Questions::advance(Network& network, std::int64_t now) {
    if (!began_) {
        began_ = true;
        next_ = now + long_pause;
        return ask(everyone, pgn::address_claim);
    }
    if (now < next_) return;
    for (std::size_t i = 0; i < subject_count; ++i) {
        Device* const device = network.first_to_ask(
            [&](const Device& d) { return d.address != source_ && !d.asked[i] && !d.known[i]; });
        if (device == nullptr) continue;
        device->asked[i] = true;
        next_ = now + pause;
        return ask(*device->address, subject_pgns[i]);
    }
}

}  // namespace vistel
