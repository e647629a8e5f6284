#include "monitor/loss_text.h"

#include <algorithm>
#include <functional>

#include "pgn_vistel/core/decode.h"
#include "text/words.h"

namespace vistel {

namespace core = pgn_vistel::core;

std::vector<std::string> losses_in_short(const Player& player, const Traffic& traffic) {
    std::vector<std::string> parts;
    const auto add = [&parts](std::uint64_t count, const char* what) {
        if (count > 0) parts.push_back(concat(count, what, count == 1 ? "" : "s"));
    };
    const auto add_count = [&parts](std::uint64_t count, const char* what) {
        if (count > 0) parts.push_back(concat(count, what));
    };
    const ReassemblyCounters& counters = player.reassembler().counters();
    add_count(counters.incomplete_fast_packets + counters.incomplete_transports, " incomplete");
    add(counters.orphan_frames, " stray frame");
    add(player.counters().problems, " error");
    add(player.counters().steps_back, " step back in time");
    add_count(player.links().dropped, " dropped by the system");
    add_count(traffic.refused(), " without room");
    return parts;
}

std::vector<LossCount> loss_counts(const Player& player, const Traffic& traffic) {
    const ReassemblyCounters& counters = player.reassembler().counters();
    const LinkCounters links = player.links();
    return {
        {"incomplete fast packets", counters.incomplete_fast_packets},
        {"incomplete transport sessions", counters.incomplete_transports},
        {"frames of no message", counters.orphan_frames},
        {"repeated frames", counters.repeated_frames},
        {"errors", player.counters().problems},
        {"times that go back", player.counters().steps_back},
        {"gaps that were not waited for", player.counters().skipped_gaps},
        {"messages of streams without room", traffic.refused()},
        {"connections lost", links.losses},
        {"error frames", links.error_frames},
        {"frames dropped by the system", links.dropped},
    };
}

std::vector<LossRow> loss_rows(const Player& player) {
    std::vector<LossRow> rows;
    const core::Definitions definitions = player.options().definitions;
    const auto add = [&](const Losses::Entry& entry, const std::string& name) {
        rows.push_back({entry.pgn, name, entry.source, entry.missing, entry.orphans, entry.repeated});
    };
    const Losses& losses = player.reassembler().losses();
    for (const Losses::Entry& entry : losses.entries()) {
        N2KMsg msg{};
        msg.pgn = entry.pgn;
        msg.source = entry.source;
        add(entry, std::string(core::pgn_name(core::find_definition(definitions, msg))));
    }
    std::ranges::stable_sort(rows, std::greater(),
                             [](const LossRow& row) { return row.missing + row.orphans + row.repeated; });
    if (losses.others().frames() > 0) add(losses.others(), "all others");
    return rows;
}

}  // namespace vistel
