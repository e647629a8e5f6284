#pragma once

#include <memory>
#include <string_view>

#include "readers/byte_input.h"

namespace vistel {

/// The bytes of `input`, unpacked where their beginning says that they are compressed (gzip, xz, zstd,
/// bzip2). Several compressed pieces one after the other are one recording. What was cut off or damaged gives
/// what can be unpacked of it, and then fails. Memory is bounded, whatever the bytes say.
std::unique_ptr<ByteInput> unpacked(std::unique_ptr<ByteInput> input);

/// How the data is compressed that `head` begins, "gzip" and so on; empty where it does not look so.
std::string_view packing_of(std::string_view head);

}  // namespace vistel
