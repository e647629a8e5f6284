#include <bit>
#include <map>

#include "core/tables.h"
#include "core/value_text.h"
#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

// For every PGN of the catalogue a message is written, field by field after its rows, and must be read back.
// Widths and positions are worked out here anew, so that rows, sizes, formats and the walk check each other.

constexpr std::uint32_t header_only[] = {pgn::proprietary_single, pgn::proprietary_fast};
constexpr int acknowledgment = 2;                  // the one group function that is walked to its end
constexpr DF undefined_format = 0;                 // never available
constexpr DF address_format = 117;                 // looks at two bytes behind the six that a field has
constexpr int rounds = 3;                          // of a repeating group
constexpr std::uint64_t temperature_format = 105;  // named by a value; a number of three bytes

Reading reading_of(DF df) {
    return find_format_plan(df)->reading;
}

int own_bits(const FieldDef& row) {
    const int own = row.bytes * 8 + row.bits;
    const int usual = row.dd->bytes * 8 + row.dd->bits;
    if (own != 0) return own;
    if (row.pgn == pgn::product_information) return 32 * 8;
    if (usual != 0) return usual;
    if (row.dd->dd == dd::value_behind_format) return 24;
    if (reading_of(row.dd->df) == Reading::bit_field) return 0;  // eight bytes are shown, none is taken
    return find_format_plan(row.dd->df)->width;
}

std::uint64_t low_bits(std::uint64_t value, int bits) {
    return bits < 64 ? value & ((std::uint64_t{1} << bits) - 1) : value;
}

struct Item {
    const FieldDef* row;
    int round;
    int start, bits;
    std::uint64_t raw;
    std::string text;

    /// A whole number of bytes that starts inside a byte reads as zeros, and so does a number of 256 bits.
    bool is_lost() const { return bits % 8 == 0 && (bits % 256 == 0 || start % 8 != 0); }
};

class Written {
  public:
    Written(std::uint32_t pgn, const std::vector<const FieldDef*>& rows) : random_(pgn) {
        const RepeatSetDef* const group = find_repeat_set(pgn);
        msg.pgn = pgn;
        msg.destination = 255;
        for (const FieldDef* row : rows) {
            if (group != nullptr && row->field == group->first) break;
            add(row, 0);
        }
        for (int round = 1; group != nullptr && round <= rounds; ++round)
            for (const FieldDef* row : rows)
                if (row->field >= group->first && row->field <= group->last) add(row, round);
        // A field without a size takes no byte, so the walk ends in front of what it shows.
        covered = (end_ + 7) / 8;
        const bool open = items.back().bits == 0;
        if (open) set_bits(end_, 64, low_bits(random_(), 32));
        msg.length = static_cast<std::uint16_t>(covered + (open ? 8 : 0));
    }

    std::uint64_t bits_at(int start, int bits) const {
        std::uint64_t value = 0;
        for (int i = 0; i < bits && start + i < msg.length * 8; ++i)
            value |= std::uint64_t{msg.data[(start + i) / 8] >> (start + i) % 8 & 1u} << i;
        return value;
    }

    void set_bits(int start, int bits, std::uint64_t value) {
        for (int i = 0; i < bits; ++i) {
            auto& byte = msg.data[(start + i) / 8];
            const int bit = (start + i) % 8;
            const unsigned on = i < 64 ? value >> i & 1u : 0u;
            byte = static_cast<std::uint8_t>((byte & ~(1u << bit)) | on << bit);
        }
    }

    N2KMsg msg{};
    std::vector<Item> items;
    int covered = 0;  // bytes

  private:
    void add(const FieldDef* row, int round) {
        Item item{row, round, end_, 0, 0, ""};
        const Reading reading = reading_of(row->dd->df);
        if (is_text(reading)) {
            add_text(reading, item);
        } else {
            item.bits = own_bits(*row);
            item.raw = row->dd->dd == dd::format_number ? temperature_format : number(reading, item.bits);
            set_bits(end_, item.bits, item.raw);
        }
        end_ += item.bits;
        items.push_back(item);
    }

    // No reserved code: those are the highest values, with and without the sign bit.
    std::uint64_t number(Reading reading, int bits) {
        if (reading == Reading::float_angle || reading == Reading::float_plain)
            return std::bit_cast<std::uint32_t>(static_cast<float>(random_() % 1000) / 8);
        if (reading == Reading::double_distance)
            return std::bit_cast<std::uint64_t>(static_cast<double>(random_() % 1000) / 8);
        const std::uint64_t value = low_bits(std::uint64_t{random_()} << 32 | random_(), bits);
        return bits >= 8 ? value & ~std::uint64_t{4} : value;
    }

    void add_text(Reading reading, Item& item) {
        item.text = "Text " + std::to_string(random_() % 1000);
        Bytes bytes(item.text.begin(), item.text.end());
        const auto length = static_cast<std::uint8_t>(bytes.size());
        if (reading == Reading::text_short) {
            bytes.insert(bytes.begin(), {static_cast<std::uint8_t>(length + 2), 1});
        } else if (reading == Reading::text_medium) {
            bytes.insert(bytes.begin(), {static_cast<std::uint8_t>(length + 3), 0, 1});
        } else {
            bytes.resize(static_cast<std::size_t>(own_bits(*item.row) / 8), 0xFF);
            item.text.resize(std::min(item.text.size(), bytes.size()));
        }
        if (reading == Reading::hex_dump) item.text = hex(bytes, " ").substr(0, 84 * 3 - 1);
        item.bits = static_cast<int>(bytes.size()) * 8;
        for (std::size_t i = 0; i < bytes.size(); ++i) set_bits(end_ + static_cast<int>(i) * 8, 8, bytes[i]);
    }

    std::mt19937 random_;
    int end_ = 0;
};

/// One message for every PGN with rows that is walked to its end. Of variants the first row of a field number
/// is met.
const std::map<std::uint32_t, Written>& written_messages() {
    static const std::map<std::uint32_t, Written> messages = [] {
        std::map<std::uint32_t, std::map<std::uint32_t, const FieldDef*>> met;
        for (const FieldDef& row : all_fields()) {
            auto& first = met[row.pgn];
            const bool acknowledges = row.pgn == pgn::group_function && low_half(row.key1) == acknowledgment;
            if (first.count(row.field) == 0 || (row.field == 1 && acknowledges)) first[row.field] = &row;
        }
        for (const std::uint32_t pgn : header_only) met.erase(pgn);
        std::map<std::uint32_t, Written> result;
        for (const auto& [pgn, fields] : met) {
            std::vector<const FieldDef*> rows;
            for (const auto& [number, row] : fields) rows.push_back(row);
            Written& written = result.try_emplace(pgn, pgn, rows).first->second;
            if (pgn == pgn::group_function) {
                written.items[0].raw = acknowledgment;
                written.set_bits(0, 8, acknowledgment);
            }
        }
        return result;
    }();
    return messages;
}

int in_bits(PayloadPosition at) {
    return at.byte * 8 + at.bit;
}

std::string text_of(const Value& value) {
    std::string text;
    for_each_character(value.text, value.text.count, [&](std::uint32_t c) { text += static_cast<char>(c); });
    return value.type == ValueType::text ? text : "(no text)";
}

/// What is sent as JSON has it: hexadecimal bytes, the low ones first.
std::string raw_of(const Written& written, int start, int bits) {
    Bytes sent;
    for (int at = 0; at < bits && start + at < written.msg.length * 8; at += 8)
        sent.push_back(static_cast<std::uint8_t>(written.bits_at(start + at, std::min(8, bits - at))));
    return "\"raw\":\"" + hex(sent) + "\"";
}

TEST(WholeCatalogue, FieldsReadBackWhatWasWritten) {
    const UnitSelection units;
    TextScratch scratch;
    for (const auto& [pgn, written] : written_messages()) {
        SCOPED_TRACE("PGN " + std::to_string(pgn));
        const std::string json = forms_of(written.msg, plain, units, piece_room)[1];
        std::size_t at = 0;
        MessageWalk walk(find_pgn_def(pgn), written.msg);
        for (const Item& item : written.items) {
            SCOPED_TRACE("field " + std::to_string(item.row->field) + " round " + std::to_string(item.round));
            ASSERT_TRUE(walk.next());
            const FieldDef& row = walk.field();
            ASSERT_EQ(&row, item.row);
            EXPECT_EQ(walk.repeat(), item.round);
            ASSERT_EQ(in_bits(walk.position), item.start);
            const auto read = [&, &msg = written.msg](UnitId u) {
                return read_field(msg, row, walk.position, units, u, scratch);
            };
            const FieldReading raw = read(unit::raw_bits), shown = read(unit::selected);
            ASSERT_EQ(in_bits(raw.next), item.start + item.bits);
            EXPECT_FALSE(raw.cut_off);
            at = json.find("\"raw\":", at + 1);
            const std::string sent = raw_of(written, item.start, item.bits);
            EXPECT_EQ(std::string_view(json).substr(at, sent.size()), sent);
            if (is_text(reading_of(row.dd->df))) {
                EXPECT_EQ(text_of(raw.value), item.text);
            } else {
                const int bits = item.bits == 0 ? 64 : item.bits;
                const std::uint64_t expected = item.is_lost() ? 0 : item.raw;
                EXPECT_EQ(low_bits(raw.value.number.u64(), bits),
                          item.bits == 0 ? written.bits_at(item.start, 64) : expected);
            }
            EXPECT_EQ(in_bits(shown.next), in_bits(raw.next));
            if (row.dd->df != undefined_format && row.dd->df != address_format) {
                EXPECT_NE(shown.value.type, ValueType::none) << row.name << " in unit " << shown.unit;
            }
            walk.position = raw.next;
        }
        EXPECT_FALSE(walk.next());
        EXPECT_FALSE(walk.has_undecoded_rest());
        EXPECT_EQ((in_bits(walk.position) + 7) / 8, written.covered);
    }
}

TEST(WholeCatalogue, EveryListedValueHasItsText) {
    std::map<std::uint32_t, std::pair<const Written*, std::size_t>> fields;  // that have a set, by entry
    for (const auto& [pgn, written] : written_messages())
        for (std::size_t i = 0; i < written.items.size(); ++i)
            if (!written.items[i].is_lost()) fields.try_emplace(written.items[i].row->dd->dd, &written, i);
    // Codes that no field can have or that mean "not available" to the format, which is asked first; and
    // group functions that are not shown by field.
    const std::set<std::pair<std::uint32_t, std::uint32_t>> never = {
        {35, 0xFFFFFFFE}, {35, 0xFFFFFFFF}, {36, 65535}, {144, 3}, {144, 4}, {144, 5}, {144, 6}, {258, 256}};
    int checked = 0, sets = 0;
    for (const DDstrings& set : all_enumerations()) {
        const auto found = fields.find(set.dd);
        if (found == fields.end()) continue;  // of variants, of bytes behind a header, or without an entry
        ++sets;
        const auto [message, index] = found->second;
        for (std::uint32_t i = 0; i < set.count; ++i) {
            const auto [value, text] = set.pairs[i];
            if (i > 0 && set.pairs[i - 1].value == value) continue;  // the first of two is shown
            Written written = *message;
            written.set_bits(written.items[index].start, written.items[index].bits,
                             set.kind == ENUM_FLAGS ? std::uint64_t{1} << i : value);
            const auto lines = field_lines(written.msg, plain);
            const std::string line = index < lines.size() ? as_utf8(lines[index]) : "";
            EXPECT_EQ(line.ends_with(std::string(": ") + text), !never.contains({set.dd, value}))
                << "set " << set.dd << " value " << value << " '" << text << "' line '" << line << "'";
            ++checked;
        }
    }
    EXPECT_GT(checked, 1000);
    EXPECT_GT(sets, 120);
}

}  // namespace
}  // namespace pgn_vistel::test
