#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "readers/byte_source.h"
#include "readers/content_kind.h"
#include "readers/record_reader.h"
#include "text/result.h"

namespace vistel {

/// One format of recordings, a row of formats.tsv.
struct Format {
    std::string_view name;   ///< as given to --format
    std::string_view also;   ///< the same; empty for most
    std::string_view about;  ///< a line for the help text

    /// Whether a line speaks for this format; null where lines say nothing.
    bool (*resembles)(std::string_view line);

    /// Whether the beginning of a recording speaks for it; null for formats that lines tell.
    bool (*begins)(std::string_view head);

    std::unique_ptr<RecordReader> (*open)(ByteSource& source, ContentKind contents);
};

std::span<const Format> all_formats();

/// By either name. Fails for one that no format has.
Result<const Format*> find_format(std::string_view name);

/// The format that the beginning of `head` speaks for, or else the first line that speaks for any, or null;
/// of several the one that comes first among all_formats(). `head` is the beginning of a recording, `whole`
/// tells that nothing follows. `passed` are its bytes whose lines have been looked at, 0 at first, so that
/// the lines of a head which grows are looked at once.
const Format* recognise_format(std::string_view head, std::size_t& passed, bool whole);

/// "plain, candump, ..."
std::string format_names();

}  // namespace vistel
