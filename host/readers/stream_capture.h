#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "readers/byte_input.h"

namespace vistel {

/// A recorded live stream: its bytes as they came, in pieces that have the time of their arrival. The file is
/// a pcap capture in nanoseconds whose packets are the pieces; its link type (147) is one that is left to
/// private use.
void begin_stream_capture(std::string& out);
void append_stream_piece(std::string& out, std::int64_t time, std::string_view bytes);

/// The stream of which `input` is the recording, piece by piece with arrival(), or `input` as it is.
std::unique_ptr<ByteInput> played_stream(std::unique_ptr<ByteInput> input);

}  // namespace vistel
