#include "pgn_vistel/stream_lines.h"

#include <iterator>

#include "values/text_copy.h"
#include "values/wide_format.h"

namespace pgn_vistel {

int print_stream_line(wchar_t* buf, int size, const N2KMsg& msg, const PgnDef* pgn) {
    static constexpr CompiledFormat format(L"%-10.2f     % 6u, %ls");
    WideWriter out(buf, size);
    format(out, msg.time_stamp / 100.0, msg.pgn, pgn_def_name(pgn));
    return out.finish();
}

StreamLines::StreamLines(QV_N2K_PGN_DB_c& db, const PgnDef* pgn, const N2KMsg& msg, unsigned long flags)
    : db_(db), msg_(msg), flags_(flags), walk_(pgn, msg) {}

int StreamLines::next(wchar_t* buf, int size) {
    WideWriter out(buf, size);
    switch (stage_) {
        case Stage::source: {
            static constexpr CompiledFormat format(L"Source Address: 0x%02X (%d)");
            format(out, msg_.source, msg_.source);
            stage_ = Stage::destination;
            return out.finish();
        }
        case Stage::destination: {
            static constexpr CompiledFormat global(L"Destination: Global, pri=%d");
            static constexpr CompiledFormat addressed(L"Destination: 0x%02X (%d)");
            if (msg_.destination == 255)
                global(out, msg_.priority);
            else
                addressed(out, msg_.destination, msg_.destination);
            stage_ = Stage::fields;
            return out.finish();
        }
        case Stage::fields: break;
        case Stage::over: return -1;
    }

    auto* const msg = const_cast<N2KMsg*>(&msg_);  // read only, but the exported signature says otherwise
    if (walk_.next()) {
        const MessageWalk::Field& field = walk_.field();
        wchar_t label[128];
        widen(label, field.row->name, std::size(label));
        unsigned char source_byte = 255;
        return db_.get_field_str(buf, size, msg, static_cast<int>(field.row->field),
                                 const_cast<DDDef*>(field.row->dd), label, field.bytes, field.bits,
                                 &walk_.position.byte, &walk_.position.bit, &source_byte, field.repeat, 1,
                                 flags_, nullptr, nullptr, unit::selected);
    }
    stage_ = Stage::over;
    if (!walk_.has_undecoded_rest()) return -1;
    return db_.get_field_str(buf, size, msg, 0, nullptr, nullptr, 0, 0, nullptr, nullptr, nullptr, 0, 1,
                             flags_, nullptr, nullptr, unit::selected);
}

}  // namespace pgn_vistel
