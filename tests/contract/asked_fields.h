#pragma once

#include "pgn_vistel/formats.h"
#include "pgn_vistel/pgn_db.h"
#include "support/shown.h"

namespace pgn_vistel::test {

/// A refused text shows the previous one of its kind: an empty one from here on.
inline void forget_texts() {
    ConvValue value;
    QV_N2K_PGN_DB_c::conv_DF(format::text_short, &value, "\x02\x01", 0);
    QV_N2K_PGN_DB_c::conv_DF(format::text_medium, &value, "\x03\x00\x01", 0);
}

/// Each field that is asked for by itself, in the units of the database, reads as in the message's lines.
inline void check_asked_fields(QV_N2K_PGN_DB_c& db, const UnitSelection& units, N2KMsg msg) {
    forget_texts();
    const auto lines = lines_of(msg, false, units);
    auto line = lines.begin() + 2;  // behind source and destination
    TextScratch scratch;
    MessageWalk walk(find_pgn_def(msg.pgn), msg);
    for (; walk.next(); ++line) {
        const FieldDef& field = walk.field();
        int bytes, bits;
        normalise_field_size(&field, msg.pgn, &bytes, &bits);
        const std::wstring label(field.name, field.name + std::strlen(field.name));
        const auto entry = static_cast<std::size_t>(field.dd - all_dictionary_entries().data());
        const pgn_vistel::DDDef* const dd = &all_dictionary_rows()[entry];
        PayloadPosition at = walk.position;
        const std::wstring text = printed([&](wchar_t* b, int n) {
            return db.get_field_str(b, n, &msg, static_cast<int>(field.field),
                                    const_cast<pgn_vistel::DDDef*>(dd), label.c_str(), bytes, bits, &at.byte,
                                    &at.bit, nullptr, walk.repeat(), 1, 0, nullptr, nullptr, unit::selected);
        });
        walk.position = read_field(msg, field, walk.position, units, unit::selected, scratch).next;
        require(at == walk.position, "it ends elsewhere");
        require(line != lines.end() && text == *line, "it differs from its line");
    }
}

}  // namespace pgn_vistel::test
