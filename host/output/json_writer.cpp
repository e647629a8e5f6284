#include "output/field_view.h"
#include "output/times.h"
#include "output/value_text.h"
#include "output/writers.h"

namespace vistel {

namespace {

void put_string(Sink& out, std::wstring_view text) {
    out.put('"');
    std::size_t done = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<std::uint32_t>(text[i]);
        if (c >= 0x20 && c != '"' && c != '\\' && c != 0x7F) continue;
        out.put(text.substr(done, i - done));
        done = i + 1;
        out.put('\\');
        if (c == '"' || c == '\\') {
            out.put(static_cast<char>(c));
        } else {
            const std::uint8_t code = static_cast<std::uint8_t>(c);
            out.put("u00");
            out.put_hex(&code, 1);
        }
    }
    out.put(text.substr(done));
    out.put('"');
}

void put_string_or_null(Sink& out, std::wstring_view text) {
    if (text.empty())
        out.put("null");
    else
        put_string(out, text);
}

void put_field(Sink& out, const FieldView& field) {
    out.put("{\"number\":");
    out.put_number(static_cast<std::int64_t>(field.number));
    out.put(",\"label\":");
    put_string(out, field.label);
    out.put(",\"value\":");
    if (field.is_text && field.available)
        put_string(out, field.text);
    else if (!put_number_of(out, field))
        out.put("null");
    out.put(",\"unit\":");
    put_string_or_null(out, field.unit);
    out.put(",\"text\":");
    put_string_or_null(out, field.is_text ? std::wstring_view() : field.text);
    out.put(",\"raw\":\"");
    out.put_hex(field.raw.data(), static_cast<int>(field.raw.size()));
    out.put("\"}");
}

class JsonWriter : public MessageWriter {
  public:
    explicit JsonWriter(QV_N2K_PGN_DB_c& db) : db_(db) {}

    void write(Sink& out, const TimedMessage& message) override {
        const N2KMsg& msg = message.msg;
        out.put("{\"time\":");
        put_seconds(out, message.since_start);
        if (message.has_absolute) {
            out.put(",\"absolute\":\"");
            put_utc(out, message.absolute);
            out.put('"');
        }
        out.put(",\"pgn\":");
        out.put_number(std::uint64_t{msg.pgn});
        out.put(",\"name\":");
        put_string(out, pgn_vistel::pgn_def_name(message.pgn));
        out.put(",\"priority\":");
        out.put_number(std::uint64_t{msg.priority});
        out.put(",\"source\":");
        out.put_number(std::uint64_t{msg.source});
        out.put(",\"destination\":");
        out.put_number(std::uint64_t{msg.destination});
        out.put(",\"fields\":[");
        FieldViewer viewer(db_, message.pgn, msg);
        for (bool first = true; viewer.next(view_); first = false) {
            if (!first) out.put(',');
            put_field(out, view_);
        }
        out.put(']');
        if (viewer.has_undecoded_rest()) {
            out.put(",\"data\":\"");
            out.put_hex(msg.data, pgn_vistel::payload_length(msg));
            out.put('"');
        }
        out.put("}\n");
    }

  private:
    QV_N2K_PGN_DB_c& db_;
    FieldView view_;
};

}  // namespace

std::unique_ptr<MessageWriter> make_json_writer(QV_N2K_PGN_DB_c& db) {
    return std::make_unique<JsonWriter>(db);
}

}  // namespace vistel
