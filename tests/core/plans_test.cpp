#include "core/plan.h"

#include "core/tables.h"
#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

/// The generator's index agrees with a search of the whole set.
TEST(Plans, EntriesOfEnumerations) {
    std::mt19937 random(1);
    for (const DDstrings& set : all_enumerations()) {
        if (set.kind == ENUM_FLAGS) continue;
        SCOPED_TRACE(set.dd);
        EXPECT_EQ(find_enumeration(set.dd), &set);
        std::vector<std::uint32_t> values = {0x7FFFFFFF, 0xFFFFFFFE, 0xFFFFFFFF};
        for (std::uint32_t i = 0; i < 1000; ++i)
            values.insert(values.end(), {i, static_cast<std::uint32_t>(random())});
        for (std::uint32_t i = 0; i < set.count; ++i)
            for (const std::uint32_t off : {0u - 1, 0u, 1u}) values.push_back(set.pairs[i].value + off);
        for (const std::uint32_t value : values) {
            std::uint16_t expected = no_entry;
            for (std::uint16_t i = 0; set.kind == ENUM_ENTRY_BELOW && i < set.count; ++i)
                if (set.pairs[i].value < value) expected = i;
            for (auto i = static_cast<std::uint16_t>(set.count); i-- > 0;)
                if (set.pairs[i].value == value) expected = i;
            ASSERT_EQ(find_entry(find_set(set.dd), value), expected) << value;
        }
    }
    EXPECT_EQ(find_entry(find_set(dd::format_number), 2), no_entry) << "no format that a value may name";
}

}  // namespace
}  // namespace pgn_vistel::test
