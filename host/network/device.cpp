#include "network/device.h"

#include "pgn_vistel/core/decode.h"

namespace vistel {

namespace core = pgn_vistel::core;

PgnTally& Device::tally_of(std::uint32_t pgn) {
    const auto row = pgns.find(pgn);
    if (row != pgns.end()) return row->second;
    return pgns[pgns.size() + 1 < most_pgns ? pgn : other_pgns];
}

void Device::count(const N2KMsg& msg) {
    const MessageCount one{1, msg.length};
    messages.total += one;
    PgnTally& tally = tally_of(msg.pgn);
    const core::PgnDef* const definition = core::find_definition(core::Definitions::corrected, msg);
    if (tally.messages.total.messages == 0) tally.definition = definition;
    tally.is_mixed = tally.is_mixed || tally.definition != definition;
    tally.messages.total += one;
}

void Device::turn() {
    messages.turn();
    wire.turn();
    for (auto& [pgn, tally] : pgns) tally.messages.turn();
}

void Device::absorb(Device&& earlier) {
    messages += earlier.messages;
    wire += earlier.wire;
    for (const auto& [pgn, from] : earlier.pgns) {
        PgnTally& to = tally_of(pgn);
        if (to.messages.total.messages == 0) to.definition = from.definition;
        to.is_mixed = to.is_mixed || from.is_mixed || to.definition != from.definition;
        to.messages += from.messages;
    }
    lost += earlier.lost;
    if (earlier.first_seen && (!first_seen || earlier.first_seen->nanoseconds < first_seen->nanoseconds))
        first_seen = earlier.first_seen;
    const auto takes = [&](Subject subject) { return !known[subject] && earlier.known[subject]; };
    if (takes(product_subject)) product = std::move(earlier.product);
    if (takes(configuration_subject)) configuration = std::move(earlier.configuration);
    if (takes(list_subject)) {
        transmits = std::move(earlier.transmits);
        receives = std::move(earlier.receives);
    }
    if (!heartbeat.interval) heartbeat = std::move(earlier.heartbeat);
    for (std::size_t i = 0; i < subject_count; ++i) {
        known[i] = known[i] || earlier.known[i];
        asked[i] = asked[i] || earlier.asked[i];
    }
}

std::string device_label(const Device& device) {
    if (!device.product.model.empty()) return device.product.model;
    const std::string& maker = device.parts.manufacturer.text;
    const std::string& function = device.parts.function.text;
    return maker.empty() || function.empty() ? maker + function : maker + " " + function;
}

}  // namespace vistel
