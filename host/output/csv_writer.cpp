#include <string>

#include "output/field_view.h"
#include "output/times.h"
#include "output/value_text.h"
#include "output/writers.h"

namespace vistel {

namespace {

// Quoted only where a reader would trip over it; a quotation mark is doubled.
void put_cell(Sink& out, std::wstring_view text) {
    if (text.find_first_of(L"\",\r\n") == text.npos) {
        out.put(text);
        return;
    }
    out.put('"');
    for (std::size_t quote; (quote = text.find(L'"')) != text.npos; text.remove_prefix(quote + 1)) {
        out.put(text.substr(0, quote + 1));
        out.put('"');
    }
    out.put(text);
    out.put('"');
}

class CsvWriter : public MessageWriter {
  public:
    explicit CsvWriter(QV_N2K_PGN_DB_c& db) : db_(db) {}

    void begin(Sink& out) override {
        out.put("time,absolute,pgn,name,priority,source,destination,field,label,value,unit,text,raw\n");
    }

    void write(Sink& out, const TimedMessage& message) override {
        head_.clear();
        FieldViewer viewer(db_, message.pgn, message.msg);
        bool any = false;
        for (; viewer.next(view_); any = true) {
            put_head(out, message);
            out.put_number(static_cast<std::int64_t>(view_.number));
            out.put(',');
            put_cell(out, view_.label);
            out.put(',');
            if (view_.is_text && view_.available)
                put_cell(out, view_.text);
            else
                put_number_of(out, view_);
            out.put(',');
            put_cell(out, view_.unit);
            out.put(',');
            if (!view_.is_text) put_cell(out, view_.text);
            out.put(',');
            out.put_hex(view_.raw.data(), static_cast<int>(view_.raw.size()));
            out.put('\n');
        }
        // A message must not vanish: the bytes that no field covers, or an empty row for an empty message.
        if (viewer.has_undecoded_rest() || !any) {
            put_head(out, message);
            out.put(",Data,,,,");
            out.put_hex(message.msg.data, pgn_vistel::payload_length(message.msg));
            out.put('\n');
        }
    }

  private:
    /// The columns that all rows of a message share: formatted once, where the sink still has them.
    void put_head(Sink& out, const TimedMessage& message) {
        if (!head_.empty()) {
            out.put(head_);
            return;
        }
        const std::uint64_t start = out.position();
        format_head(out, message);
        head_ = out.since(start);
    }

    static void format_head(Sink& out, const TimedMessage& message) {
        const N2KMsg& msg = message.msg;
        put_seconds(out, message.since_start);
        out.put(',');
        if (message.has_absolute) put_utc(out, message.absolute);
        out.put(',');
        out.put_number(std::uint64_t{msg.pgn});
        out.put(',');
        put_cell(out, pgn_vistel::pgn_def_name(message.pgn));
        out.put(',');
        out.put_number(std::uint64_t{msg.priority});
        out.put(',');
        out.put_number(std::uint64_t{msg.source});
        out.put(',');
        out.put_number(std::uint64_t{msg.destination});
        out.put(',');
    }

    QV_N2K_PGN_DB_c& db_;
    FieldView view_;
    std::string head_;  // keeps its room from one message to the next
};

}  // namespace

std::unique_ptr<MessageWriter> make_csv_writer(QV_N2K_PGN_DB_c& db) {
    return std::make_unique<CsvWriter>(db);
}

}  // namespace vistel
