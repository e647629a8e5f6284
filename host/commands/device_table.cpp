#include "commands/device_table.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <span>
#include <variant>
#include <vector>

#include "can/identifier.h"
#include "output/record_text.h"
#include "pgn_vistel/core/catalogue.h"
#include "text/hex.h"
#include "text/words.h"

namespace vistel {

namespace {

namespace core = pgn_vistel::core;

// ---- for programs ----

struct None {};
struct Number {
    std::string digits;
};
/// What a device has for a column.
using Value = std::variant<None, Number, std::string, PgnList>;

Value number_of(std::uint64_t number) {
    return Number{std::to_string(number)};
}
template <class Integer>
Value number_of(const std::optional<Integer>& number) {
    return number ? Value(Number{std::to_string(*number)}) : Value();
}
Value decimal_of(const std::optional<double>& number, int decimals) {
    return number ? Value(Number{decimal_text(*number, decimals)}) : Value();
}
Value text_of(std::string_view text) {
    return text.empty() ? Value() : Value(std::string(text));
}
Value list_of(const std::optional<PgnList>& list) {
    return list ? Value(*list) : Value();
}

/// A device, or one PGN of those that it sends.
struct Row {
    const Network& network;
    std::string_view bus;
    const Device& device;
    std::uint32_t pgn = 0;
    const PgnTally* of_pgn = nullptr;

    const Tally<MessageCount>& messages() const { return of_pgn ? of_pgn->messages : device.messages; }
};

Value name_of(const Device& device) {
    if (!device.name) return {};
    std::string text;
    append_hex(text, static_cast<std::uint32_t>(*device.name >> 32), 8);
    append_hex(text, static_cast<std::uint32_t>(*device.name), 8);
    return text;
}

Value state_of(const Device& device) {
    constexpr std::string_view names[] = {"unknown", "active", "displaced", "cannot claim"};
    return text_of(names[static_cast<std::size_t>(device.state)]);
}

Value since_start(const Network& network, const std::optional<RecordTime>& time) {
    if (!time || !network.first() || time->origin != network.first()->origin) return {};
    if (time->origin == RecordTime::Origin::none) return {};
    return decimal_of(static_cast<double>(time->nanoseconds - network.first()->nanoseconds) * 1e-9, 6);
}

Value absolute(const std::optional<RecordTime>& time) {
    if (!time || time->origin != RecordTime::Origin::epoch) return {};
    return utc_text(time->nanoseconds);
}

Value rate_of(const Row& row, double Network::Rates::*which) {
    const auto rates = row.network.rates(row.messages());
    return rates ? decimal_of((*rates).*which, 3) : Value();
}

/// The name of a PGN that a device sends.
std::string_view pgn_label(std::uint32_t pgn, const PgnTally& tally) {
    if (pgn == Device::other_pgns) return "Others";
    if (!tally.is_mixed) return core::pgn_name(tally.definition);
    return is_proprietary(pgn) ? "Proprietary" : core::pgn_name(core::find_pgn_def(pgn));
}

struct Column {
    std::string_view name;
    Value (*value)(const Row&);
};

/// Which device.
constexpr Column identity_columns[] = {
    {"bus", [](const Row& r) { return text_of(r.bus); }},
    {"address", [](const Row& r) { return number_of(r.device.address); }},
    {"iso_name", [](const Row& r) { return name_of(r.device); }},
    {"manufacturer", [](const Row& r) { return text_of(r.device.parts.manufacturer.text); }},
    {"model", [](const Row& r) { return text_of(r.device.product.model); }},
};

/// What it is and says.
constexpr Column device_columns[] = {
    {"state", [](const Row& r) { return state_of(r.device); }},
    {"last_address", [](const Row& r) { return number_of(r.device.last_address); }},
    {"commanded_address", [](const Row& r) { return number_of(r.device.commanded); }},
    {"address_changes", [](const Row& r) { return number_of(r.device.address_changes); }},
    {"address_conflicts", [](const Row& r) { return number_of(r.device.conflicts); }},
    {"manufacturer_code", [](const Row& r) { return number_of(r.device.parts.manufacturer.number); }},
    {"unique_number", [](const Row& r) { return number_of(r.device.parts.unique_number); }},
    {"function", [](const Row& r) { return text_of(r.device.parts.function.text); }},
    {"function_code", [](const Row& r) { return number_of(r.device.parts.function.number); }},
    {"class", [](const Row& r) { return text_of(r.device.parts.device_class.text); }},
    {"class_code", [](const Row& r) { return number_of(r.device.parts.device_class.number); }},
    {"industry_group", [](const Row& r) { return text_of(r.device.parts.industry_group.text); }},
    {"device_instance", [](const Row& r) { return number_of(r.device.parts.device_instance); }},
    {"system_instance", [](const Row& r) { return number_of(r.device.parts.system_instance); }},
    {"model_version", [](const Row& r) { return text_of(r.device.product.model_version); }},
    {"software_version", [](const Row& r) { return text_of(r.device.product.software_version); }},
    {"serial_number", [](const Row& r) { return text_of(r.device.product.serial_number); }},
    {"product_code", [](const Row& r) { return number_of(r.device.product.product_code); }},
    {"database_version", [](const Row& r) { return decimal_of(r.device.product.database_version, 3); }},
    {"certification_level", [](const Row& r) { return text_of(r.device.product.certification_level.text); }},
    {"load_equivalency", [](const Row& r) { return number_of(r.device.product.load_equivalency); }},
    {"installation_1", [](const Row& r) { return text_of(r.device.configuration.installation_1); }},
    {"installation_2", [](const Row& r) { return text_of(r.device.configuration.installation_2); }},
    {"manufacturer_information",
     [](const Row& r) { return text_of(r.device.configuration.manufacturer_information); }},
    {"heartbeat_interval", [](const Row& r) { return decimal_of(r.device.heartbeat.interval, 3); }},
    {"controller_1", [](const Row& r) { return text_of(r.device.heartbeat.controller_1.text); }},
    {"controller_2", [](const Row& r) { return text_of(r.device.heartbeat.controller_2.text); }},
    {"equipment", [](const Row& r) { return text_of(r.device.heartbeat.equipment.text); }},
    {"first_seen", [](const Row& r) { return since_start(r.network, r.device.first_seen); }},
    {"last_seen", [](const Row& r) { return since_start(r.network, r.device.last_seen); }},
    {"first_seen_absolute", [](const Row& r) { return absolute(r.device.first_seen); }},
    {"last_seen_absolute", [](const Row& r) { return absolute(r.device.last_seen); }},
    {"transmit_pgns", [](const Row& r) { return list_of(r.device.transmits); }},
    {"receive_pgns", [](const Row& r) { return list_of(r.device.receives); }},
    {"frames", [](const Row& r) { return number_of(r.device.wire.total.frames); }},
    {"lost_messages", [](const Row& r) { return number_of(r.device.lost); }},
    {"bus_share", [](const Row& r) { return decimal_of(r.network.share(r.device.wire), 6); }},
};

/// What is counted of a device, and of a PGN that it sends.
constexpr Column count_columns[] = {
    {"messages", [](const Row& r) { return number_of(r.messages().total.messages); }},
    {"bytes", [](const Row& r) { return number_of(r.messages().total.bytes); }},
    {"messages_per_second", [](const Row& r) { return rate_of(r, &Network::Rates::messages); }},
    {"bytes_per_second", [](const Row& r) { return rate_of(r, &Network::Rates::bytes); }},
};

constexpr Column pgn_columns[] = {
    {"pgn",
     [](const Row& r) { return r.pgn == Device::other_pgns ? Value() : number_of(std::uint64_t{r.pgn}); }},
    {"name", [](const Row& r) { return text_of(pgn_label(r.pgn, *r.of_pgn)); }},
};

using Columns = std::span<const Column>;

std::string list_text(const PgnList& list, std::string_view between) {
    std::string text;
    for (const std::uint32_t pgn : list) text.append(text.empty() ? "" : between).append(std::to_string(pgn));
    return text;
}

void append_members(std::string& out, const Row& row, std::initializer_list<Columns> groups) {
    const char* before = "";
    for (const Columns group : groups)
        for (const Column& column : group) {
            out.append(before).append("\"").append(column.name).append("\":");
            before = ",";
            const Value value = column.value(row);
            if (const auto* const number = std::get_if<Number>(&value))
                out += number->digits;
            else if (const auto* const text = std::get_if<std::string>(&value))
                append_json(out, *text);
            else if (const auto* const list = std::get_if<PgnList>(&value))
                out.append("[").append(list_text(*list, ",")).append("]");
            else
                out += "null";
        }
}

void append_object(std::string& out, const Row& row) {
    out += '{';
    append_members(out, row, {identity_columns, device_columns, count_columns});
    out += ",\"pgns\":[";
    const char* before = "{";
    for (const auto& [pgn, tally] : row.device.pgns) {
        out += before;
        append_members(out, {row.network, row.bus, row.device, pgn, &tally}, {pgn_columns, count_columns});
        out += '}';
        before = ",{";
    }
    out += "]}\n";
}

/// The names of the columns, or the values of a row.
void append_row(std::string& out, const Row* row, std::initializer_list<Columns> groups) {
    const char* before = "";
    for (const Columns group : groups)
        for (const Column& column : group) {
            out += before;
            before = ",";
            if (row == nullptr) {
                out += column.name;
                continue;
            }
            const Value value = column.value(*row);
            if (const auto* const number = std::get_if<Number>(&value))
                out += number->digits;
            else if (const auto* const text = std::get_if<std::string>(&value))
                append_csv(out, *text);
            else if (const auto* const list = std::get_if<PgnList>(&value))
                out += list_text(*list, " ");
        }
    out += '\n';
}

void append_rows(std::string& out, const Row* row, bool by_pgn) {
    if (!by_pgn) return append_row(out, row, {identity_columns, device_columns, count_columns});
    if (row == nullptr) return append_row(out, row, {identity_columns, pgn_columns, count_columns});
    for (const auto& [pgn, tally] : row->device.pgns) {
        const Row of_pgn{row->network, row->bus, row->device, pgn, &tally};
        append_row(out, &of_pgn, {identity_columns, pgn_columns, count_columns});
    }
}

// ---- for people ----

struct TextColumn {
    std::string_view heading;
    bool is_number;
    std::string (*text)(const Network&, const Device&);
};

/// More than this of a text is cut off.
constexpr std::size_t widest = 28;

constexpr TextColumn text_columns[] = {
    {"Addr", true,
     [](const Network&, const Device& d) { return d.address ? std::to_string(*d.address) : std::string(); }},
    {"Manufacturer", false,
     [](const Network&, const Device& d) { return text_or_number(d.parts.manufacturer); }},
    {"Model", false, [](const Network&, const Device& d) { return d.product.model; }},
    {"Function", false, [](const Network&, const Device& d) { return text_or_number(d.parts.function); }},
    {"Inst", true,
     [](const Network&, const Device& d) {
         return d.parts.device_instance ? std::to_string(*d.parts.device_instance) : std::string();
     }},
    {"Software", false, [](const Network&, const Device& d) { return d.product.software_version; }},
    {"Serial", false, [](const Network&, const Device& d) { return d.product.serial_number; }},
    {"Msg/s", true,
     [](const Network& n, const Device& d) {
         const auto rates = n.rates(d.messages);
         return rates ? fixed_text(rates->messages, 1) : std::string();
     }},
    {"Bus %", true,
     [](const Network& n, const Device& d) {
         const auto share = n.share(d.wire);
         return share ? fixed_text(*share * 100, 2) : std::string();
     }},
    {"Notes", false, [](const Network&, const Device& d) { return notes_on(d); }},
};

/// Characters of a UTF-8 text, as far as columns are about them.
std::size_t width_of(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string cut(std::string text) {
    if (width_of(text) <= widest) return text;
    while (width_of(text) >= widest) text.pop_back();
    return text + "\u2026";
}

std::string devices_as_text(const Network& network, bool by_pgn) {
    const auto devices = network.devices();
    constexpr std::size_t count = std::size(text_columns);
    constexpr std::size_t notes = count - 1;  // the last column takes what it needs
    std::vector<std::array<std::string, count>> cells(devices.size() + 1);
    std::array<std::size_t, count> widths{};
    for (std::size_t i = 0; i < cells.size(); ++i)
        for (std::size_t c = 0; c < count; ++c) {
            const TextColumn& column = text_columns[c];
            std::string& cell = cells[i][c];
            cell = i == 0 ? std::string(column.heading) : column.text(network, *devices[i - 1]);
            if (cell.empty() && c != notes) cell = "-";
            if (c != notes) cell = cut(std::move(cell));
            widths[c] = std::max(widths[c], width_of(cell));
        }
    std::string out;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        std::string line;
        for (std::size_t c = 0; c < count; ++c) {
            const std::string& cell = cells[i][c];
            const std::string fill(widths[c] - width_of(cell), ' ');
            line.append(c == 0 ? "" : "  ").append(text_columns[c].is_number ? fill + cell : cell + fill);
        }
        out.append(line, 0, line.find_last_not_of(' ') + 1).append("\n");
        if (i == 0 || !by_pgn) continue;
        for (const auto& [pgn, tally] : devices[i - 1]->pgns) {
            const auto rates = network.rates(tally.messages);
            out += concat("      ", pgn == Device::other_pgns ? "" : std::to_string(pgn) + " ",
                          pgn_label(pgn, tally), ": ", tally.messages.total.messages);
            if (rates)
                out += concat(" (", fixed_text(rates->messages, 2), " a second, ",
                              fixed_text(rates->bytes, 0), " bytes)");
            out += '\n';
        }
    }
    const auto rates = network.rates(network.messages());
    const auto share = network.share(network.wire());
    out += concat("Devices: ", devices.size());
    if (rates) out += concat(", messages a second: ", fixed_text(rates->messages, 1));
    if (share) out += concat(", ", fixed_text(*share * 100, 1), " % of the bus");
    return out + '\n';
}

}  // namespace

std::string device_header(TableForm form, bool by_pgn) {
    std::string header;
    if (form == TableForm::csv) append_rows(header, nullptr, by_pgn);
    return header;
}

std::string device_table(const Network& network, std::string_view bus, TableForm form, bool by_pgn) {
    if (form == TableForm::text) return devices_as_text(network, by_pgn);
    std::string out;
    for (const Device* const device : network.devices()) {
        const Row row{network, bus, *device};
        if (form == TableForm::json)
            append_object(out, row);
        else
            append_rows(out, &row, by_pgn);
    }
    return out;
}

}  // namespace vistel
