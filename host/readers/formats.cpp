#include "readers/formats.h"

#include "readers/actisense_ascii_format.h"
#include "readers/candump_format.h"
#include "readers/line_reader.h"
#include "readers/plain_format.h"
#include "readers/yacht_devices_format.h"
#include "text/words.h"

namespace vistel {
namespace {

template <class TextFormat>
std::size_t find_line_like(std::string_view head, bool whole) {
    std::string_view text = without_mark(head), line;
    for (;;) {
        const std::size_t at = head.size() - text.size();
        if (!take_line(text, line)) {
            if (!whole || text.empty()) return std::string_view::npos;
            line = trimmed(text);
            text = {};
        }
        if (!line.empty() && line[0] != '#' && TextFormat::resembles(line)) return at;
    }
}

template <class TextFormat>
std::unique_ptr<RecordReader> open_lines(ByteSource& source) {
    return std::make_unique<LineReader>(source, std::make_unique<TextFormat>());
}

template <class TextFormat>
constexpr Format text_format(std::string_view name, std::string_view about) {
    return {name, about, find_line_like<TextFormat>, open_lines<TextFormat>};
}

constexpr Format formats[] = {
    text_format<PlainFormat>("plain", "timestamp,priority,PGN,source,destination,length,hh,hh,..."),
    text_format<CandumpFormat>("candump", "CAN frames as candump prints or logs them"),
    text_format<YachtDevicesFormat>("yacht-devices", "CAN frames of Yacht Devices gateways in RAW mode"),
    text_format<ActisenseAsciiFormat>("actisense-ascii", "messages of Actisense gateways as text"),
};

}  // namespace

std::span<const Format> all_formats() {
    return formats;
}

const Format* find_format(std::string_view name) {
    for (const Format& format : formats) {
        if (format.name == name) return &format;
    }
    return nullptr;
}

const Format* recognise_format(std::string_view head, bool whole) {
    const Format* best = nullptr;
    std::size_t first = std::string_view::npos;
    for (const Format& format : formats) {
        const std::size_t at = format.find_sign(head, whole);
        if (at < first) {
            first = at;
            best = &format;
        }
    }
    return best;
}

std::string format_names() {
    std::string names;
    for (const Format& format : formats) {
        if (!names.empty()) names += ", ";
        names += format.name;
    }
    return names;
}

}  // namespace vistel
