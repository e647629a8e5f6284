#include <bit>
#include <map>
#include <set>

#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

// For every PGN of the catalogue a message is written, field by field after its rows, and must be read back.
// Widths and positions are worked out here anew, so that rows, sizes, formats and the walk check each other.

constexpr std::uint32_t header_only[] = {61184, 126720};  // their walk stops behind the header
constexpr std::uint32_t group_function = 126208;          // only the acknowledgment is walked to its end
constexpr int acknowledgment = 2;
constexpr std::uint32_t product_information = 126996;
constexpr std::uint32_t undefined_format = 0;  // never available
constexpr std::uint32_t address_format = 117;  // looks at two bytes behind the six that a field has
constexpr int rounds = 3;                      // of a repeating group

constexpr std::uint32_t format_dd = 10058;  // its value says how the field behind it is coded
constexpr std::uint64_t temperature_format = 105;

/// Bits of a field whose row and dictionary entry leave the size to the format.
int format_bits(std::uint32_t df) {
    static const std::map<int, std::set<std::uint32_t>> formats = {
        {8, {30, 53, 57, 88, 93, 97, 101, 109, 110, 111}},
        {16, {1,  2,  4,  5,  7,  8,  10, 13, 14, 17, 18, 19,  20,  22,  26,  27,  28,  29, 31, 33,
              34, 35, 36, 38, 39, 41, 42, 43, 44, 46, 47, 48,  54,  58,  66,  68,  69,  71, 72, 73,
              74, 75, 80, 81, 82, 84, 87, 95, 96, 98, 99, 100, 102, 106, 107, 112, 113, 116}},
        {24, {60009, 89, 90, 91, 105, 114}},  // 60009: what the temperature format reads
        {32, {0,  3,  6,  9,  11, 15, 16, 21, 23, 25, 32, 40,  45,  49, 55,
              59, 61, 65, 67, 70, 79, 83, 85, 86, 92, 94, 103, 104, 108}},
        {64, {12, 56, 60, 62, 76, 77, 78, 117}},
        {0, {52}},  // binary data without a size: the next eight bytes are shown, none is taken
    };
    for (const auto& [bits, numbers] : formats)
        if (numbers.count(df) != 0) return bits;
    ADD_FAILURE() << "no width for format " << df;
    return 0;
}

bool is_text(std::uint32_t df) {
    return df == 50 || df == 51 || df == 63 || df == 3002;
}

int own_bits(const FieldDef& row) {
    const int own = row.bytes * 8 + row.bits;
    const int usual = row.dd->bytes * 8 + row.dd->bits;
    if (own != 0) return own;
    if (row.pgn == product_information) return 32 * 8;
    return usual != 0 ? usual : format_bits(row.dd->format->df);
}

struct Item {
    const FieldDef* row;
    int round;
    int start, bits;
    std::uint64_t raw;
    std::wstring text;
};

std::uint64_t low_bits(std::uint64_t value, int bits) {
    return bits < 64 ? value & ((std::uint64_t{1} << bits) - 1) : value;
}

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
        if (open) set_bits(end_, 64, number(undefined_format, 64));
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

    /// What the field is to read as. A whole number of bytes that starts inside a byte reads as zeros, and so
    /// does a number of 256 bits.
    std::uint64_t expected_raw(const Item& item) const {
        if (item.bits == 0) return bits_at(item.start, 64);
        return is_lost(item) ? 0 : item.raw;
    }

    static bool is_lost(const Item& item) {
        return item.bits % 8 == 0 && (item.bits % 256 == 0 || item.start % 8 != 0);
    }

    N2KMsg msg{};
    std::vector<Item> items;
    int covered = 0;  // bytes

  private:
    void add(const FieldDef* row, int round) {
        const std::uint32_t df = row->dd->format->df;
        Item item{row, round, end_, 0, 0, L""};
        if (is_text(df)) {
            add_text(df, item);
        } else {
            item.bits = own_bits(*row);
            item.raw = number(df, item.bits);
            if (row->dd->dd == format_dd) item.raw = temperature_format;
            set_bits(end_, item.bits, item.raw);
        }
        end_ += item.bits;
        items.push_back(item);
    }

    // No reserved code: those are the highest values, with and without the sign bit.
    std::uint64_t number(std::uint32_t df, int bits) {
        if (df == 3 || df == 49 || df == 61 || df == 70)
            return std::bit_cast<std::uint32_t>(static_cast<float>(random_() % 1000) / 8);
        if (df == 12 || df == 62) return std::bit_cast<std::uint64_t>(random_() % 1000 / 8.0);
        const std::uint64_t value = low_bits(std::uint64_t{random_()} << 32 | random_(), bits);
        return bits >= 8 ? value & ~std::uint64_t{4} : value;
    }

    void add_text(std::uint32_t df, Item& item) {
        const std::string text = "Text " + std::to_string(random_() % 1000);
        std::vector<std::uint8_t> bytes(text.begin(), text.end());
        item.text = std::wstring(text.begin(), text.end());
        const auto length = static_cast<std::uint8_t>(text.size());
        if (df == 50) {
            bytes.insert(bytes.begin(), {static_cast<std::uint8_t>(length + 2), 1});
        } else if (df == 51) {
            bytes.insert(bytes.begin(), {static_cast<std::uint8_t>(length + 3), 0, 1});
        } else {
            bytes.resize(static_cast<std::size_t>(own_bits(*item.row) / 8), 0xFF);
            item.text = item.text.substr(0, bytes.size());
        }
        if (df == 3002) item.text = dumped(bytes);
        item.bits = static_cast<int>(bytes.size()) * 8;
        for (std::size_t i = 0; i < bytes.size(); ++i) set_bits(end_ + static_cast<int>(i) * 8, 8, bytes[i]);
    }

    static std::wstring dumped(const std::vector<std::uint8_t>& bytes) {
        constexpr std::size_t most = 84;  // bytes that the conversion's text area holds
        std::wstring text;
        for (std::size_t i = 0; i < std::min(bytes.size(), most); ++i) {
            wchar_t digits[4];
            std::swprintf(digits, 4, L"%02X ", static_cast<unsigned>(bytes[i]));
            text += digits;
        }
        text.pop_back();
        return text;
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
            const bool acknowledges = row.pgn == group_function && low_half(row.key1) == acknowledgment;
            if (first.count(row.field) == 0 || (row.field == 1 && acknowledges)) first[row.field] = &row;
        }
        for (const std::uint32_t pgn : header_only) met.erase(pgn);
        std::map<std::uint32_t, Written> result;
        for (const auto& [pgn, fields] : met) {
            std::vector<const FieldDef*> rows;
            for (const auto& [number, row] : fields) rows.push_back(row);
            Written& written = result.try_emplace(pgn, pgn, rows).first->second;
            if (pgn == group_function) {
                written.items[0].raw = acknowledgment;
                written.set_bits(0, 8, acknowledgment);
            }
        }
        return result;
    }();
    return messages;
}

std::wstring widened(const std::string& text) {
    std::wstring wide;
    for (const char c : text) wide += static_cast<unsigned char>(c);
    return wide;
}

int in_bits(PayloadPosition at) {
    return at.byte * 8 + at.bit;
}

std::uint64_t raw_of(const ConvValue& value) {
    if (value.type == CV_FLOAT) return std::bit_cast<std::uint32_t>(value.value.f32);
    return value.value.u64;
}

std::wstring text_of(const ConvValue& value) {
    if (value.type == CV_TEXT) return value.value.wide;
    return value.type == CV_TEXT_NARROW ? widened(value.value.narrow) : L"(no text)";
}

TEST(WholeCatalogue, FieldsReadBackWhatWasWritten) {
    QV_N2K_PGN_DB_c db;
    for (const auto& [pgn, written] : written_messages()) {
        SCOPED_TRACE("PGN " + std::to_string(pgn));
        MessageWalk walk(find_pgn_def(pgn), written.msg);
        for (const Item& item : written.items) {
            SCOPED_TRACE("field " + std::to_string(item.row->field) + " round " + std::to_string(item.round));
            ASSERT_TRUE(walk.next());
            const auto [row, bytes, bits, repeat] = walk.field();
            ASSERT_EQ(row, item.row) << row->field;
            EXPECT_EQ(repeat, item.round);
            ASSERT_EQ(in_bits(walk.position), item.start);
            ConvValue value{CV_NOT_AVAILABLE, {}};
            const FieldReading reading =
                read_field(db, written.msg, *row->dd, bytes, bits, walk.position, unit::raw_bits, &value);
            ASSERT_EQ(in_bits(reading.next), item.start + item.bits);
            EXPECT_FALSE(reading.cut_off);
            if (is_text(row->dd->format->df))
                EXPECT_EQ(text_of(value), item.text);
            else
                EXPECT_EQ(low_bits(raw_of(value), item.bits == 0 ? 64 : item.bits),
                          written.expected_raw(item));
            const FieldReading shown =
                read_field(db, written.msg, *row->dd, bytes, bits, walk.position, unit::selected, &value);
            EXPECT_EQ(in_bits(shown.next), in_bits(reading.next));
            const std::uint32_t df = row->dd->format->df;
            if (df != undefined_format && df != address_format) {
                EXPECT_LT(value.type, CV_NOT_AVAILABLE) << row->name << " in unit " << shown.unit;
            }
            walk.position = reading.next;
        }
        EXPECT_FALSE(walk.next());
        EXPECT_FALSE(walk.has_undecoded_rest());
        EXPECT_EQ((in_bits(walk.position) + 7) / 8, written.covered);
    }
}

TEST(WholeCatalogue, RowsOutOfStep) {
    std::set<std::uint32_t> without_size, inside_byte;
    for (const auto& [pgn, written] : written_messages())
        for (const Item& item : written.items) {
            if (item.bits == 0) without_size.insert(pgn);
            if (item.bits % 8 == 0 && item.start % 8 != 0) inside_byte.insert(pgn);
        }
    // Binary data of AIS messages, and reserved bits to the end. They close their messages.
    EXPECT_EQ(without_size, (std::set<std::uint32_t>{129792, 129795, 129797, 129811, 129812, 130066}));
    // The industry group of this message has four bits instead of three.
    EXPECT_EQ(inside_byte, std::set<std::uint32_t>{130817});
}

std::wstring label_of(const Item& item) {
    const std::string name = item.row->name;
    if (item.row->dd->dd == 144 || item.row->dd->dd == 145) return L"Group Function Code";
    if (item.round == 0 || name.find("First") == std::string::npos) return widened(name);
    return widened(name.substr(6)) + L" #" + std::to_wstring(item.round);
}

TEST(WholeCatalogue, EveryFieldHasItsLine) {
    for (const auto& [pgn, written] : written_messages()) {
        SCOPED_TRACE("PGN " + std::to_string(pgn));
        const auto lines = field_lines(written.msg, plain);
        ASSERT_EQ(lines.size(), written.items.size()) << "and no line for undecoded bytes";
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const std::wstring start = label_of(written.items[i]) + L": " + written.items[i].text;
            EXPECT_EQ(lines[i].substr(0, start.size()), start);
        }
    }
}

// ---- enumerations ----

const std::pair<const Written*, std::size_t>* field_of(std::uint32_t dd) {
    static const auto fields = [] {
        std::map<std::uint32_t, std::pair<const Written*, std::size_t>> found;
        for (const auto& [pgn, written] : written_messages())
            for (std::size_t i = 0; i < written.items.size(); ++i)
                if (!Written::is_lost(written.items[i]))
                    found.try_emplace(written.items[i].row->dd->dd, &written, i);
        return found;
    }();
    const auto field = fields.find(dd);
    return field != fields.end() ? &field->second : nullptr;
}

/// The line of the field when it has this value.
std::wstring line_with(const Written& message, std::size_t index, std::uint32_t value) {
    Written written = message;
    written.set_bits(written.items[index].start, written.items[index].bits, value);
    const auto lines = field_lines(written.msg, plain);
    return index < lines.size() ? lines[index] : L"";
}

TEST(WholeCatalogue, EveryListedValueHasItsText) {
    // Codes that no field can have or that mean "not available" to the format, which is asked first; and
    // group functions that are not shown by field.
    const std::set<std::pair<std::uint32_t, std::uint32_t>> never = {
        {35, 0xFFFFFFFE}, {35, 0xFFFFFFFF}, {36, 65535}, {144, 3}, {144, 4}, {144, 5}, {144, 6}, {258, 256}};
    std::set<std::uint32_t> not_shown;
    std::size_t checked = 0;
    for (const DDstrings& set : all_enumerations()) {
        const auto* const field = field_of(set.dd);
        if (field == nullptr) {
            not_shown.insert(set.dd);
            continue;
        }
        for (std::uint32_t i = 0; i < set.count; ++i) {
            const auto [value, text] = set.pairs[i];
            if (i > 0 && set.pairs[i - 1].value == value) continue;  // the first of two is shown
            const std::wstring line = line_with(*field->first, field->second, value);
            EXPECT_EQ(line.ends_with(L": " + widened(text)), never.count({set.dd, value}) == 0)
                << "set " << set.dd << " value " << value << " '" << text << "' line '"
                << std::string(line.begin(), line.end()) << "'";
            ++checked;
        }
    }
    EXPECT_EQ(not_shown,
              (std::set<std::uint32_t>{37, 139, 141, 182,  // variants of the group function
                                       123, 156, 157, 159, 190, 197, 251, 10031,  // without an entry
                                       226,                     // reads as 0 in the product information
                                       10029, 10030,            // of a message that is shown as bytes
                                       10004, 10017, 10023}));  // behind the header of 61184 and 126720
    EXPECT_GT(checked, 1000u);
}

}  // namespace
}  // namespace pgn_vistel::test
