#pragma once

#include <functional>
#include <memory>
#include <string>

#include "readers/recording.h"
#include "sources/event_loop.h"
#include "sources/link_watch.h"
#include "sources/source_name.h"

namespace vistel {

/// What is known of a source that a recording reads; a file has none of it.
struct SourceState {
    std::shared_ptr<const LinkCounters> counters = {};
    /// Sends a single frame to the bus, as long as the recording is there: `kind` and `bus` are those of its
    /// records. False where that is not possible at present; a failure where it never will be.
    std::function<Result<bool>(const Record& frame)> send = {};

    bool is_live() const { return counters != nullptr; }
};

/// A link to a gateway by itself.
struct OpenedLink {
    std::unique_ptr<ByteInput> input;
    std::function<bool(std::string_view bytes)> send;  ///< to the gateway; false while it is not connected
    std::shared_ptr<const LinkCounters> counters;
};

/// Of a live source that is no CAN interface. What is there at the start has to be; see open_source().
Result<OpenedLink> open_link(const SourceName& name, const LinkOptions& options);

/// Opens what a text names (source_name.h): a file, or a live source, which never ends. Live records
/// without an absolute time get that of their arrival. A name that is a live source by mistake, or a file
/// that is not there, is a failure at once; links that are lost later are made again.
Result<SourceState> open_source(Recording& recording, const std::string& text,
                                const RecordingOptions& how = {}, const LinkOptions& options = {});

}  // namespace vistel
