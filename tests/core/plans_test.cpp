#include "core/plan.h"

#include "core/tables.h"
#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

// What the generator has worked out agrees with the lookups that it stands for, over the whole catalogue.

std::uint16_t index_of(const FieldDef* row) {
    return row != nullptr && row->field != 0 ? static_cast<std::uint16_t>(row - all_fields().data())
                                             : end_row;
}

int quantity_by_lookup(const FieldDef& row) {
    const SpecialField* const special = find_special_field(row.dd->dd, row.pgn, row.field);
    if (special != nullptr && special->quantity != 0) return special->quantity;
    const int own = quantity_of_dd(static_cast<int>(row.dd->dd));
    if (own == quantity::pressure && pressure_quantity(row.pgn) != 0) return pressure_quantity(row.pgn);
    return is_quantity(own) ? own : int{quantity::no_quantity};
}

Form form_by_lookup(const FieldDef& row) {
    const SpecialField* const special = find_special_field(row.dd->dd, row.pgn, row.field);
    if (special != nullptr && special->form != Form::plain) return special->form;
    const DDstrings* const set = find_enumeration(row.dd->dd);
    return set == nullptr ? Form::plain : set->kind == ENUM_FLAGS ? Form::flags : Form::enumeration;
}

TEST(Plans, Fields) {
    for (const PgnDef& row : all_pgns())
        EXPECT_EQ(plan_of(row).first_row, index_of(first_field_row(row.pgn)));
    for (const FieldDef& row : all_fields()) {
        SCOPED_TRACE("PGN " + std::to_string(row.pgn) + " row " + std::to_string(index_of(&row)));
        const FieldPlan& plan = plan_of(row);
        EXPECT_EQ(plan.number, row.field);
        EXPECT_EQ(plan.next, index_of(next_field_row(&row, 1)));
        int bytes, bits;
        normalise_field_size(&row, row.pgn, &bytes, &bits);
        // A field without a size has that of its format, where the format says how much it takes.
        if (bytes + bits > 0) {
            EXPECT_EQ(plan.bits, bytes * 8 + bits);
        }
        EXPECT_TRUE(bytes == 0 || bits == 0);
        EXPECT_EQ(format_plans[plan.format].df, row.dd->df);
        EXPECT_EQ(plan.quantity, quantity_by_lookup(row));
        EXPECT_EQ(plan.form, form_by_lookup(row));
        EXPECT_EQ(plan.enumeration, find_set(row.dd->dd));
        EXPECT_EQ((plan.flags & text) != 0, is_text(format_plans[plan.format].reading));

        const RepeatSetDef* const group = find_repeat_set(row.pgn);
        const bool repeats = group != nullptr && row.field >= group->first && row.field <= group->last;
        EXPECT_EQ((plan.flags & in_group) != 0, repeats);
        EXPECT_EQ((plan.flags & first_of_group) != 0, repeats && row.field == group->first);
        EXPECT_EQ((plan.flags & last_of_group) != 0, repeats && row.field == group->last);
        EXPECT_EQ((plan.flags & numbered) != 0, repeats && std::strstr(row.name, "First") != nullptr);
        if ((plan.flags & last_of_group) != 0) {
            EXPECT_EQ(plan.again, index_of(next_field_row(&row, group->first - group->last)));
        }
    }
}

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
