#include "readers/inflater.h"

#include <zlib.h>

#include <new>

namespace vistel {

struct Inflater::State {
    z_stream stream{};
};

Inflater::Inflater() : state_(std::make_unique<State>()) {
    if (inflateInit(&state_->stream) != Z_OK) throw std::bad_alloc();
}

Inflater::~Inflater() {
    (void)inflateEnd(&state_->stream);
}

Inflater::Outcome Inflater::inflate(std::string_view compressed, std::span<char> room) {
    z_stream& stream = state_->stream;
    (void)inflateReset(&stream);
    // It does not write there.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(compressed.data()));
    stream.avail_in = static_cast<uInt>(compressed.size());
    stream.next_out = reinterpret_cast<Bytef*>(room.data());
    stream.avail_out = static_cast<uInt>(room.size());
    const bool whole = ::inflate(&stream, Z_FINISH) == Z_STREAM_END;
    return {room.size() - stream.avail_out, whole};
}

}  // namespace vistel
