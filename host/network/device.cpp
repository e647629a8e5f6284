#include "network/device.h"

#include <algorithm>

#include "pgn_vistel/core/decode.h"
#include "text/words.h"

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

std::string text_or_number(const Code& code) {
    return !code.text.empty() || !code.number ? code.text : std::to_string(*code.number);
}

std::string title_of(const Device& device) {
    std::string title = text_or_number(device.parts.manufacturer);
    const std::string what =
        device.product.model.empty() ? text_or_number(device.parts.function) : device.product.model;
    if (!title.empty() && !what.empty()) title += ' ';
    return title + what;
}

namespace {

/// For how long it was not heard of, in seconds; nothing where that is not known.
std::optional<double> silence_of(const Device& device, const std::optional<RecordTime>& now) {
    if (!now || !device.last_seen || now->origin != device.last_seen->origin) return {};
    return (static_cast<double>(now->nanoseconds) - static_cast<double>(device.last_seen->nanoseconds)) *
           1e-9;
}

std::string duration_text(double seconds) {
    constexpr double minute = 60, hour = 60 * minute;
    const auto whole = [](double number) { return static_cast<std::uint64_t>(number); };
    if (seconds < 2 * minute) return concat(whole(seconds), " s");
    return seconds < 2 * hour ? concat(whole(seconds / minute), " min") : concat(whole(seconds / hour), " h");
}

}  // namespace

std::string notes_on(const Device& device, const std::optional<RecordTime>& now) {
    std::string notes;
    const auto add = [&notes](const auto&... parts) { notes += concat(notes.empty() ? "" : ", ", parts...); };
    switch (device.state) {
        case Device::State::unknown: add("unknown at ", unsigned{*device.address}); break;
        case Device::State::active: break;
        case Device::State::displaced: add("displaced from ", unsigned{*device.last_address}); break;
        case Device::State::cannot_claim: add("cannot claim an address"); break;
    }
    if (device.commanded && device.commanded != device.address)
        add("told to take ", unsigned{*device.commanded});
    if (device.conflicts > 0) add("address conflicts: ", device.conflicts);
    constexpr double usual_heartbeat = 60;  // seconds
    const double patience = std::max(usual_heartbeat, 2 * device.heartbeat.interval.value_or(0));
    const auto silence = silence_of(device, now);
    if (device.address && silence && *silence > patience) add("silent for ", duration_text(*silence));
    // 0 is as it should be, 3 not available.
    for (const Code* const code :
         {&device.heartbeat.controller_1, &device.heartbeat.controller_2, &device.heartbeat.equipment})
        if (code->number.value_or(0) == 1 || code->number.value_or(0) == 2)
            add(code == &device.heartbeat.equipment ? "equipment: " : "bus controller: ",
                text_or_number(*code));
    if (device.lost > 0) add("lost: ", device.lost);
    return notes;
}

}  // namespace vistel
