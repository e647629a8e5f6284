#include "command_line/pgn_choice.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>
#include <span>
#include <string>

#include "can/identifier.h"
#include "encode/suggestions.h"
#include "output/unit_names.h"
#include "pgn_vistel/core/catalogue.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {

namespace {

namespace core = pgn_vistel::core;
using Pgns = std::set<std::uint32_t>;

struct NamedPgn {
    std::uint32_t number;
    std::string name, comparable;
};

std::vector<NamedPgn> named_pgns() {
    std::vector<NamedPgn> all;
    for (const auto rows : {core::all_corrected_pgns(), core::all_pgns()})
        for (const core::PgnDef& row : rows)
            if (row.pgn != 0)
                all.push_back(
                    {row.pgn, std::string(core::pgn_name(&row)), comparable_name(core::pgn_name(&row))});
    return all;
}

bool is_number(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

std::optional<std::uint32_t> number_in(std::string_view text) {
    const bool is_hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (is_hexadecimal) text.remove_prefix(2);
    std::uint32_t number = 0;
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number, is_hexadecimal ? 16 : 10);
    if (text.empty() || end != last || error != std::errc{} || number > max_pgn) return {};
    return number;
}

/// Those that a text is the name of, or a part of it.
Pgns find(const std::vector<NamedPgn>& all, std::string_view text, bool as_part) {
    const std::string wanted = comparable_name(text);
    Pgns found;
    if (wanted.empty()) return found;
    for (const NamedPgn& pgn : all) {
        const bool fits =
            as_part ? pgn.comparable.find(wanted) != std::string::npos : pgn.comparable == wanted;
        if (fits) found.insert(pgn.number);
    }
    return found;
}

Failure not_one(const std::vector<NamedPgn>& all, std::string_view text, const Pgns& found) {
    constexpr std::size_t few = 6;
    if (is_number(text)) return failure("PGN ", in_quotes(text), " is above ", max_pgn);
    if (found.empty()) {
        std::vector<std::string> names;
        for (const NamedPgn& pgn : all)
            if (std::ranges::find(names, pgn.name) == names.end()) names.push_back(pgn.name);
        return failure("no PGN ", in_quotes(text), "; ",
                       suggestion(text, names, "'vistel catalogue pgns' shows numbers and names"));
    }
    std::vector<std::string> some;
    for (const std::uint32_t number : found) {
        if (some.size() == few) break;
        const auto row = std::ranges::find(all, number, &NamedPgn::number);
        some.push_back(concat(number, " (", row->name, ")"));
    }
    return failure(in_quotes(text), " is part of the names of ", found.size(), " PGNs: ", joined(some),
                   found.size() > few ? " and more" : "");
}

/// What a list begins with.
struct Word {
    std::size_t size = 0;
    Pgns pgns{};
};

/// The longest one that is a number or a name, or the part of the names of one PGN: some have commas.
Word longest(const std::vector<NamedPgn>& all, std::string_view list, bool as_part) {
    for (std::size_t size = list.size();;) {
        const std::string_view word = trimmed(list.substr(0, size));
        Pgns found;
        if (const auto number = number_in(word))
            found = {*number};
        else if (!is_number(word))
            found = find(all, word, as_part);
        if (as_part ? found.size() == 1 : !found.empty()) return {size, found};
        size = size == 0 ? list.npos : list.rfind(',', size - 1);
        if (size == list.npos) return {};
    }
}

}  // namespace

Result<std::vector<std::uint32_t>> parse_pgns(std::string_view text) {
    const std::vector<NamedPgn> all = named_pgns();
    Pgns chosen;
    while (true) {
        Word word = longest(all, text, false);
        if (word.pgns.empty()) word = longest(all, text, true);
        if (word.pgns.empty()) {
            const std::string_view first = trimmed(text.substr(0, text.find(',')));
            return not_one(all, first, find(all, first, true));
        }
        chosen.merge(word.pgns);
        if (word.size == text.size()) return std::vector<std::uint32_t>(chosen.begin(), chosen.end());
        text.remove_prefix(word.size + 1);
    }
}

bool is_catalogued(std::uint32_t number) {
    const auto has = [number](std::span<const core::PgnDef> rows) {
        return std::ranges::find(rows, number, &core::PgnDef::pgn) != rows.end();
    };
    return has(core::all_corrected_pgns()) || has(core::all_pgns());
}

}  // namespace vistel
