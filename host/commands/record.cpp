#include "commands/record.h"

#include <chrono>
#include <cstdio>
#include <string_view>
#include <utility>

#include "commands/decode.h"
#include "commands/interrupt.h"
#include "commands/output_status.h"
#include "commands/statistics.h"
#include "readers/stream_capture.h"
#include "sources/source.h"
#include "sources/source_name.h"
#include "text/printable.h"
#include "writers/pcap_writer.h"

namespace vistel {

namespace {

int fail(const std::string& what, const std::string& why) {
    std::fprintf(stderr, "vistel: %s: %s\n", harmless(what).c_str(), harmless(why).c_str());
    return EXIT_FAILED;
}

LinkOptions link_options(const RecordOptions& options) {
    LinkOptions how;
    how.silence = std::chrono::milliseconds(static_cast<std::int64_t>(options.timeout * 1000));
    how.tell = [&options](const std::string& text) {
        if (options.quiet) return;
        std::fprintf(stderr, "vistel: %s: %s\n", harmless(options.source).c_str(), text.c_str());
    };
    return how;
}

/// Longest wait for more, behind which the flag of interrupts is looked at.
constexpr int patience = 250;

/// Takes pieces by `take`, which appends one, tells whether it ends a record, or leaves the text empty, until
/// the user ends it.
template <class Take>
int keep(const RecordOptions& options, const LinkCounters& counters, std::string head, Take take) {
    RecordedFile file(options.output, options.rotation, std::move(head));
    if (const Status opened = file.open(); !opened) return fail(file.current(), opened.error().text);
    watch_interrupts();
    ignore_closed_pipes();
    file.flush();
    std::string bytes;
    while (file.out().is_open() && !interrupted()) {
        const bool ends_record = take(bytes, file);
        if (bytes.empty()) continue;
        if (const Status put = file.put(bytes, ends_record); !put)
            return fail(file.current(), put.error().text);
        bytes.clear();
    }
    file.flush();
    if (const int status = output_status(file.out()); status != EXIT_CLEAN) return status;
    if (!options.quiet) print(counters);
    return EXIT_CLEAN;
}

int record_stream(const RecordOptions& options, const SourceName& name) {
    auto link = open_link(name, link_options(options));
    if (!link) return fail(options.source, link.error().text);
    std::string head;
    begin_stream_capture(head);
    std::string room(std::size_t{1} << 16, '\0');
    return keep(options, *link->counters, head, [&](std::string& bytes, RecordedFile& file) {
        std::size_t size = 0;
        // Behind every piece, so that a recording is whole whatever ends it.
        file.flush();
        if (link->input->read(room, patience, size) != ByteInput::Fill::data) return false;
        const std::string_view piece(room.data(), size);
        append_stream_piece(bytes, link->input->arrival(), piece);
        return piece.ends_with('\n') || piece.ends_with('\r') || piece.ends_with("\x10\x03");
    });
}

int record_can(const RecordOptions& options) {
    Recording recording;
    auto opened = open_source(recording, options.source, {.patience_ms = patience}, link_options(options));
    if (!opened) return fail(options.source, opened.error().text);
    return record_frames(options, recording, *opened->counters);
}

}  // namespace

int record_frames(const RecordOptions& options, Recording& source, const LinkCounters& counters) {
    PcapWriter writer;
    std::string head;
    writer.begin(Record::Kind::frame, head);
    Record record;
    return keep(options, counters, head, [&](std::string& bytes, RecordedFile& file) {
        if (source.would_wait()) file.flush();
        if (source.next(record) == ReadResult::record) writer.put(record, bytes);
        return true;
    });
}

int run_record(const RecordOptions& options) {
    auto name = parse_source(options.source);
    if (!name) return fail(options.source, name.error().text);
    if (!name->is_live()) return fail(options.source, "is no live source");
    if (options.rotation.is_wanted() && options.output == "-")
        return fail("--rotate", "standard output is one file");
    return name->kind == SourceName::Kind::can ? record_can(options) : record_stream(options, *name);
}

}  // namespace vistel
