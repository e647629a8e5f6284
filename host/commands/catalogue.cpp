#include "commands/catalogue.h"

#include <unistd.h>

#include <algorithm>
#include <memory>

#include "commands/decode.h"
#include "commands/interrupt.h"
#include "commands/output_status.h"
#include "commands/unit_options.h"
#include "output/sink.h"
#include "output/unit_names.h"
#include "pgn_vistel/core/catalogue.h"
#include "pgn_vistel/core/listing.h"
#include "pgn_vistel/core/render.h"
#include "pgn_vistel/core/units.h"

using namespace pgn_vistel::core;

namespace vistel {

namespace {

/// Cells of tab-separated text.
class Table {
  public:
    Table(Sink& out, std::string_view header) : out_(out) {
        out_.put(header);
        out_.put('\n');
    }

    Table& text(std::string_view t) {
        separate();
        out_.put(t);
        return *this;
    }
    /// Names of dictionary entries are Latin-1.
    Table& latin1(const char* t) {
        separate();
        for (; *t != 0; ++t) {
            const auto c = static_cast<unsigned char>(*t);
            if (c >= 0x80) out_.put(static_cast<char>(0xC0 | c >> 6));
            out_.put(static_cast<char>(c < 0x80 ? c : 0x80 | (c & 0x3F)));
        }
        return *this;
    }
    Table& number(std::int64_t n) { return text(std::to_string(n)); }
    /// The part of a selector key, empty for none.
    Table& selector(std::uint16_t half) {
        if (half == no_selector) return text("");
        return number(half);
    }
    Table& keys(SelectorKey key1, SelectorKey key2, SelectorKey key3) {
        return selector(low_half(key1))
            .selector(low_half(key2))
            .selector(high_half(key2))
            .selector(low_half(key3))
            .selector(high_half(key3));
    }
    void end() {
        out_.put('\n');
        first_ = true;
    }

  private:
    void separate() {
        if (!first_) out_.put('\t');
        first_ = false;
    }

    Sink& out_;
    bool first_ = true;
};

void print_pgns(Sink& out) {
    Table table(out,
                "pgn\tname\tselector\tindustry_group\tmessage\tthird\tthird_value\tpdu1\tlisted\tpriority\t"
                "single_frame");
    for (const PgnDef& row : all_pgns())
        table.number(row.pgn)
            .text(row.name)
            .keys(row.key1, row.key2, row.key3)
            .number(row.flag_pdu1)
            .number(row.flag_listed)
            .number(row.priority)
            .number(row.single_frame)
            .end();
}

void print_fields(Sink& out) {
    Table table(
        out,
        "pgn\tfield\tlabel\tbytes\tbits\tdd\tdf\tselector\tindustry_group\tmessage\tthird\tthird_value\t"
        "key");
    for (const FieldDef& row : all_fields())
        table.number(row.pgn)
            .number(row.field)
            .text(row.name)
            .number(row.bytes)
            .number(row.bits)
            .number(row.dd->dd)
            .number(row.dd->df)
            .keys(row.key1, row.key2, row.key3)
            .text(field_key(row))
            .end();
}

void print_dictionary(Sink& out) {
    Table table(out, "dd\tname\tdf\tbytes\tbits\tquantity");
    for (const DDDef& row : all_dictionary_entries())
        table.number(row.dd)
            .latin1(row.name)
            .number(row.df)
            .number(row.bytes)
            .number(row.bits)
            .number(quantity_of_dd(static_cast<int>(row.dd)))
            .end();
}

void print_enumerations(Sink& out) {
    Table table(out, "dd\tkind\tvalue\ttext\tsource");
    for (const DDstrings& set : all_enumerations())
        for (std::uint32_t i = 0; i < set.count; ++i)
            table.number(set.dd)
                .number(set.kind)
                .number(set.pairs[i].value)
                .text(set.pairs[i].text)
                .text(text_source(set, i))
                .end();
}

void print_repeats(Sink& out) {
    Table table(out, "pgn\tselector\tfirst\tlast");
    for (const RepeatSetDef& row : all_repeat_sets())
        table.number(row.pgn).number(row.selector).number(row.first).number(row.last).end();
}

void print_streams(Sink& out) {
    Table table(out, "pgn\tkey\tbyte\tshift\twidth");
    for (const StreamKeyDef& row : all_stream_keys())
        for (int i = 0; i < 4; ++i)
            if (row.position[i] != -1)
                table.number(row.pgn)
                    .number(i + 1)
                    .number(row.position[i])
                    .number(row.bits[i].shift)
                    .number(row.bits[i].width)
                    .end();
}

void print_formats(Sink& out) {
    Table table(out, "df\tname\tquantity");
    for (const DF df : all_formats())
        table.number(df)
            .text((df < 10 ? "DF0" : "DF") + std::to_string(df))
            .number(quantity_of_format(df))
            .end();
}

void print_units(Sink& out) {
    Table table(out, "unit\ttext\tascii");
    for (UnitId u = 0; u < unit::count; ++u)
        table.number(u).text(vistel::unit_text(u)).text(unit_ascii(u)).end();
}

void print_quantities(Sink& out) {
    Table table(out, "quantity\tname\tunits\tsi");
    for (DispDataType q = 0; q < quantity::count; ++q) {
        std::string units;
        for (const UnitId* u = available_units(q); *u < unit::count; ++u)
            units += (units.empty() ? "" : ", ") + vistel::unit_text(*u);
        table.number(q).text(quantity_name(q)).text(units).text(vistel::unit_text(si_unit(q))).end();
    }
}

// ---- the corrected definitions ----

template <class Print>
void for_each_message(Print print) {
    for (std::size_t i = 0; i < listed_message_count(); ++i) print(listed_message(i));
}

/// The PGN that a definition is of, 0 for what belongs to none.
std::uint32_t pgn_of(const ListedMessage& message) {
    return message.row != nullptr ? message.row->pgn : 0;
}

std::string conditions_text(const ListedMessage& message) {
    std::string text;
    for (const MessageCondition& c : message.conditions)
        text += (text.empty() ? "" : ";") + std::to_string(c.bit) + ":" + std::to_string(c.width) + "=" +
                std::to_string(c.value);
    return text;
}

std::string length_text(const ListedMessage& message) {
    std::string shortest = std::to_string(message.shortest), longest = std::to_string(message.longest);
    if (message.shortest == message.longest) return shortest;
    if (message.longest < N2K_MAX_PAYLOAD) return (message.shortest > 0 ? shortest : "") + ".." + longest;
    return message.shortest > 0 ? shortest + ".." : "";
}

void print_corrected_pgns(Sink& out) {
    Table table(out, "pgn\tvariant\tname\tmatch\tlength\tpacket\tpriority\tsource");
    for_each_message([&](const ListedMessage& message) {
        if (pgn_of(message) == 0) return;
        table.number(message.row->pgn)
            .text(message.variant)
            .text(message.row->name)
            .text(conditions_text(message))
            .text(length_text(message))
            .text(message.packet)
            .number(message.row->priority)
            .text(message.source)
            .end();
    });
}

void print_corrected_fields(Sink& out) {
    Table table(
        out,
        "pgn\tvariant\tfield\tkey\tlabel\tbits\tcoding\tresolution\toffset\tunit\tnone\ttexts\tquantity");
    for_each_message([&](const ListedMessage& message) {
        for (const FieldDef& field : message.fields) {
            const FieldNotes notes = field_notes(field);
            const int bits = field.bytes * 8 + field.bits;
            table.number(pgn_of(message))
                .text(message.variant)
                .number(field.field)
                .text(field_key(field))
                .text(field.name)
                .text(bits > 0 ? std::to_string(bits) : "")
                .text(notes.coding)
                .text(notes.resolution)
                .text(notes.offset)
                .text(notes.unit)
                .text(notes.none)
                .text(notes.texts)
                .text(notes.quantity < quantity::no_quantity ? std::to_string(notes.quantity) : "")
                .end();
        }
    });
}

void print_corrected_enumerations(Sink& out) {
    Table table(out, "set\tkind\tvalue\ttext\tsource");
    for (const DDstrings& set : all_corrected_enumerations())
        for (std::uint32_t i = 0; i < set.count; ++i)
            table.text(enumeration_name(set))
                .number(set.kind)
                .number(set.pairs[i].value)
                .text(set.pairs[i].text)
                .text(text_source(set, i))
                .end();
}

void print_corrected_repeats(Sink& out) {
    Table table(out, "pgn\tvariant\tfirst\tlast\tcount");
    for_each_message([&](const ListedMessage& message) {
        for (const FieldGroup& group : message.groups)
            table.number(pgn_of(message))
                .text(message.variant)
                .number(group.first)
                .number(group.last)
                .text(group.count > 0 ? std::to_string(group.count) : "")
                .end();
    });
}

struct NamedTable {
    const char* name;
    void (*print)(Sink&);
    void (*print_corrected)(Sink&);  ///< null where both sets share the table
};

constexpr NamedTable tables[] = {
    {"pgns", print_pgns, print_corrected_pgns},
    {"fields", print_fields, print_corrected_fields},
    {"dictionary", print_dictionary, nullptr},
    {"enumerations", print_enumerations, print_corrected_enumerations},
    {"repeats", print_repeats, print_corrected_repeats},
    {"streams", print_streams, nullptr},
    {"formats", print_formats, nullptr},
    {"units", print_units, nullptr},
    {"quantities", print_quantities, nullptr},
};

}  // namespace

std::vector<std::string> catalogue_tables() {
    std::vector<std::string> names;
    for (const NamedTable& table : tables) names.emplace_back(table.name);
    return names;
}

int run_catalogue(const std::string& name, Definitions definitions) {
    const auto table = std::ranges::find(tables, name, &NamedTable::name);
    if (table == std::end(tables)) return EXIT_FAILED;
    ignore_closed_pipes();
    const auto out = std::make_unique<Sink>(STDOUT_FILENO);
    const bool is_corrected = definitions == Definitions::corrected && table->print_corrected != nullptr;
    (is_corrected ? table->print_corrected : table->print)(*out);
    out->flush();
    return output_status(*out);
}

}  // namespace vistel
