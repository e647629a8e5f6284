#include "readers/formats.h"

#include <cassert>

#include "readers/actisense_ascii_format.h"
#include "readers/candump_format.h"
#include "readers/line_reader.h"
#include "readers/plain_format.h"
#include "readers/yacht_devices_format.h"
#include "text/words.h"

namespace vistel {
namespace {

template <class TextFormat>
std::unique_ptr<RecordReader> open_lines(ByteSource& source) {
    return std::make_unique<LineReader<TextFormat>>(source);
}

template <class TextFormat>
constexpr Format text_format(std::string_view name, std::string_view about) {
    return {name, about, TextFormat::resembles, open_lines<TextFormat>};
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

const Format* recognise_format(std::string_view head, std::size_t& passed, bool whole) {
    assert(passed <= head.size());
    std::string_view rest = head.substr(passed), line;
    for (;;) {
        passed = head.size() - rest.size();
        if (passed == 0) rest = without_mark(rest);
        if (!take_line(rest, line)) {
            if (!whole || rest.empty()) return nullptr;
            line = trimmed(rest);
            rest = {};
        }
        if (line.empty() || line[0] == '#') continue;
        for (const Format& format : formats) {
            if (format.resembles(line)) return &format;
        }
    }
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
