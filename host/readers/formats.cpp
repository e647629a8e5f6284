#include "readers/formats.h"

#include <cassert>

#include "format_headers.inc"
#include "readers/block_reader.h"
#include "readers/line_reader.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {
namespace {

template <class AnyFormat>
std::unique_ptr<RecordReader> open_reader(ByteSource& source, [[maybe_unused]] ContentKind contents) {
    if constexpr (BlockFormat<AnyFormat>) {
        return std::make_unique<BlockReader<AnyFormat>>(source);
    } else {
        return std::make_unique<LineReader<AnyFormat>>(source, contents);
    }
}

template <class AnyFormat>
constexpr Format format(std::string_view name, std::string_view also, std::string_view about) {
    Format row{name, also, about, nullptr, nullptr, open_reader<AnyFormat>};
    if constexpr (requires { AnyFormat::resembles; }) row.resembles = AnyFormat::resembles;
    if constexpr (requires { AnyFormat::begins; }) row.begins = AnyFormat::begins;
    return row;
}

constexpr Format formats[] = {
#include "format_rows.inc"
};

}  // namespace

std::span<const Format> all_formats() {
    return formats;
}

Result<const Format*> find_format(std::string_view name) {
    for (const Format& format : formats) {
        if (format.name == name || (format.also == name && !name.empty())) return &format;
    }
    return failure("unknown format ", quoted(name), "; known are ", format_names());
}

const Format* recognise_format(std::string_view head, std::size_t& passed, bool whole) {
    assert(passed <= head.size());
    for (const Format& format : formats) {
        if (format.begins != nullptr && format.begins(head)) return &format;
    }
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
            if (format.resembles != nullptr && format.resembles(line)) return &format;
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
