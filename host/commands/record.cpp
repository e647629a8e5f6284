#include "commands/record.h"

#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>

#include "commands/convert.h"
#include "commands/decode.h"
#include "commands/interrupt.h"
#include "commands/output_status.h"
#include "commands/statistics.h"
#include "output/output_file.h"
#include "output/sink.h"
#include "readers/stream_capture.h"
#include "sources/source.h"
#include "sources/source_name.h"

namespace vistel {

namespace {

int fail(const std::string& what, const std::string& why) {
    std::fprintf(stderr, "vistel: %s: %s\n", what.c_str(), why.c_str());
    return EXIT_FAILED;
}

int record_stream(const RecordOptions& options, const SourceName& name) {
    LinkOptions how;
    how.silence = std::chrono::milliseconds(static_cast<std::int64_t>(options.timeout * 1000));
    how.tell = [&options](const std::string& text) {
        std::fprintf(stderr, "vistel: %s: %s\n", options.source.c_str(), text.c_str());
    };
    auto link = open_link(name, how);
    if (!link) return fail(options.source, link.error().text);
    auto output = open_output(options.output, {});
    if (!output) return fail(options.output, output.error().text);
    watch_interrupts();
    ignore_closed_pipes();
    const auto out = std::make_unique<Sink>(*output);
    std::string bytes;
    begin_stream_capture(bytes);
    std::string room(std::size_t{1} << 16, '\0');
    std::size_t size = 0;
    while (out->is_open() && !interrupted()) {
        // Behind every piece, so that a recording is whole whatever ends it.
        out->put(bytes);
        out->flush();
        bytes.clear();
        constexpr int patience = 250;
        if (link->input->read(room, patience, size) == ByteInput::Fill::data)
            append_stream_piece(bytes, link->input->arrival(), {room.data(), size});
    }
    out->put(bytes);
    out->flush();
    if (const int status = output_status(*out); status != EXIT_CLEAN) return status;
    print(*link->counters);
    return EXIT_CLEAN;
}

}  // namespace

int run_record(const RecordOptions& options) {
    auto name = parse_source(options.source);
    if (!name) return fail(options.source, name.error().text);
    if (!name->is_live()) return fail(options.source, "is no live source");
    if (name->kind != SourceName::Kind::can) return record_stream(options, *name);
    ConvertOptions frames;
    frames.input.names = {options.source};
    frames.to = "pcap";
    frames.output = options.output;
    return run_convert(frames);
}

}  // namespace vistel
