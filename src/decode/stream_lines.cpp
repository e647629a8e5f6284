#include "pgn_vistel/stream_lines.h"

#include "decode/field_text.h"

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

    if (walk_.next()) {
        const MessageWalk::Field& field = walk_.field();
        const FieldDef& row = *field.row;
        put_field_name(out, static_cast<int>(row.dd->dd), row.name, field.repeat);
        walk_.position = put_field(
            out, db_, msg_,
            {static_cast<int>(row.field), row.dd, field.bytes, field.bits, true, flags_, unit::selected},
            walk_.position, nullptr);
        return out.finish();
    }
    stage_ = Stage::over;
    if (!walk_.has_undecoded_rest()) return -1;
    put_undecoded(out, msg_.data, payload_length(msg_), true);
    return out.finish();
}

}  // namespace pgn_vistel
