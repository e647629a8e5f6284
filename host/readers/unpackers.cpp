#include <bzlib.h>
#include <lzma.h>
#include <zlib.h>
#include <zstd.h>
#include <zstd_errors.h>

#include "readers/unpacker.h"

namespace vistel {
namespace {

using Step = Unpacker::Step;

/// What three of the libraries have in common: a stream that says what was taken and given. `Library` starts
/// one, runs it and ends it.
template <class Library>
class StreamUnpacker final : public Unpacker {
  public:
    StreamUnpacker() : ready_(Library::start(stream_)) {}
    ~StreamUnpacker() override { Library::end(stream_); }
    StreamUnpacker(const StreamUnpacker&) = delete;
    StreamUnpacker& operator=(const StreamUnpacker&) = delete;

    Step unpack(std::string_view& packed, std::span<char>& room) override {
        if (!ready_) return Step::too_large;
        Library::set_input(stream_, packed);
        stream_.avail_in = static_cast<decltype(stream_.avail_in)>(packed.size());
        stream_.next_out = reinterpret_cast<decltype(stream_.next_out)>(room.data());
        stream_.avail_out = static_cast<decltype(stream_.avail_out)>(room.size());
        const Step step = Library::run(stream_);
        packed.remove_prefix(packed.size() - stream_.avail_in);
        room = room.last(stream_.avail_out);
        return step;
    }

  private:
    typename Library::Stream stream_ = {};
    const bool ready_;
};

struct Zlib {
    using Stream = z_stream;
    static bool start(Stream& stream) { return inflateInit(&stream) == Z_OK; }
    static void end(Stream& stream) { inflateEnd(&stream); }
    static void set_input(Stream& stream, std::string_view packed) {
        // The library only reads there, whatever the type of its member.
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    }
    static Step run(Stream& stream) {
        switch (inflate(&stream, Z_NO_FLUSH)) {
            case Z_OK:
            case Z_BUF_ERROR: return Step::more;
            case Z_STREAM_END: return Step::end;
            case Z_MEM_ERROR: return Step::too_large;
            default: return Step::damaged;
        }
    }
};

struct Gzip : Zlib {
    static bool start(Stream& stream) {
        constexpr int with_gzip_header = 16;
        return inflateInit2(&stream, MAX_WBITS + with_gzip_header) == Z_OK;
    }
};

struct Bzip2 {
    using Stream = bz_stream;
    static bool start(Stream& stream) { return BZ2_bzDecompressInit(&stream, 0, 0) == BZ_OK; }
    static void end(Stream& stream) { BZ2_bzDecompressEnd(&stream); }
    static void set_input(Stream& stream, std::string_view packed) {
        stream.next_in = const_cast<char*>(packed.data());
    }
    static Step run(Stream& stream) {
        switch (BZ2_bzDecompress(&stream)) {
            case BZ_OK: return Step::more;
            case BZ_STREAM_END: return Step::end;
            case BZ_MEM_ERROR: return Step::too_large;
            default: return Step::damaged;
        }
    }
};

struct Xz {
    using Stream = lzma_stream;
    static bool start(Stream& stream) {
        constexpr std::uint64_t most_memory = std::uint64_t{256}
                                              << 20;  // the highest usual level takes 65 MB
        return lzma_stream_decoder(&stream, most_memory, 0) == LZMA_OK;
    }
    static void end(Stream& stream) { lzma_end(&stream); }
    static void set_input(Stream& stream, std::string_view packed) {
        stream.next_in = reinterpret_cast<const std::uint8_t*>(packed.data());
    }
    static Step run(Stream& stream) {
        switch (lzma_code(&stream, LZMA_RUN)) {
            case LZMA_OK:
            case LZMA_BUF_ERROR: return Step::more;
            case LZMA_STREAM_END: return Step::end;
            case LZMA_MEM_ERROR:
            case LZMA_MEMLIMIT_ERROR: return Step::too_large;
            default: return Step::damaged;
        }
    }
};

class ZstdUnpacker final : public Unpacker {
  public:
    Step unpack(std::string_view& packed, std::span<char>& room) override {
        if (!stream_) return Step::too_large;
        ZSTD_inBuffer in{packed.data(), packed.size(), 0};
        ZSTD_outBuffer out{room.data(), room.size(), 0};
        const std::size_t result = ZSTD_decompressStream(stream_.get(), &out, &in);
        packed.remove_prefix(in.pos);
        room = room.subspan(out.pos);
        if (ZSTD_isError(result) != 0) {
            const ZSTD_ErrorCode why = ZSTD_getErrorCode(result);
            const bool large =
                why == ZSTD_error_frameParameter_windowTooLarge || why == ZSTD_error_memory_allocation;
            return large ? Step::too_large : Step::damaged;
        }
        return result == 0 ? Step::end : Step::more;
    }

  private:
    struct Free {
        void operator()(ZSTD_DStream* stream) const { ZSTD_freeDStream(stream); }
    };
    const std::unique_ptr<ZSTD_DStream, Free> stream_{ZSTD_createDStream()};  // takes windows of up to 128 MB
};

}  // namespace

std::unique_ptr<Unpacker> make_unpacker(Packing packing) {
    switch (packing) {
        case Packing::gzip: return std::make_unique<StreamUnpacker<Gzip>>();
        case Packing::xz: return std::make_unique<StreamUnpacker<Xz>>();
        case Packing::zstd: return std::make_unique<ZstdUnpacker>();
        case Packing::bzip2: return std::make_unique<StreamUnpacker<Bzip2>>();
        case Packing::zlib: return std::make_unique<StreamUnpacker<Zlib>>();
    }
    return nullptr;
}

}  // namespace vistel
