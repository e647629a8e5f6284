#include "sources/source.h"

#include "sources/can_reader.h"
#include "sources/format_check.h"
#include "sources/link.h"
#include "sources/source_name.h"
#include "writers/transmission.h"

namespace vistel {

Result<OpenedLink> open_link(const SourceName& name, const LinkOptions& options) {
    auto loop = options.loop ? options.loop : std::make_shared<EventLoop>();
    auto link = std::make_unique<Link>(std::move(loop), name, options);
    if (const Status opened = link->open(); !opened) return opened.error();
    auto counters = link->counters();
    const auto send = [to = link.get()](std::string_view bytes) { return to->transmit(bytes); };
    return OpenedLink{std::move(link), send, std::move(counters)};
}

Result<SourceState> open_source(Recording& recording, const std::string& text, const RecordingOptions& how,
                                const LinkOptions& options) {
    auto name = parse_source(text);
    if (!name) return name.error();
    if (!name->is_live()) {
        if (const Status opened = recording.open(text, how); !opened) return opened.error();
        return SourceState{};
    }
    if (name->kind == SourceName::Kind::can) {
        if (!how.format.empty()) return Failure{"a CAN interface has no format to be named"};
        auto port =
            std::make_shared<CanPort>([interface = name->target] { return open_can(interface); }, options);
        if (const Status opened = port->open(); !opened) return opened.error();
        recording.attach(std::make_unique<CanReader>(port, how), "socketcan");
        return SourceState{port->counters(),
                           [port](const Record& frame) { return port->send(frame_of(frame.msg)); }};
    }
    LinkOptions understood = options;
    understood.is_understood = [&recording] { return !recording.format_name().empty(); };
    auto link = open_link(*name, understood);
    if (!link) return link.error();
    std::unique_ptr<ByteInput> input = std::move(link->input);
    if (auto named = find_format(how.format))
        input = std::make_unique<FormatCheck>(std::move(input), **named, options.tell);
    if (const Status attached = recording.attach(std::move(input), how); !attached) return attached.error();
    const auto send = [to = link->send, &recording](const Record& frame) -> Result<bool> {
        const std::string_view format = recording.format_name();
        if (format.empty()) return false;  // nothing has come
        std::string bytes;
        if (append_transmission(format, frame, recording.bus_name(frame.bus), bytes)) return to(bytes);
        return failure("nothing can be sent to a source that speaks ", format);
    };
    return SourceState{link->counters, send};
}

}  // namespace vistel
