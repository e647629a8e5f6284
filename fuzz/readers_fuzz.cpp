// Bytes as a recording, read to the end and reassembled into messages. The first byte chooses the format: 0
// has it recognised, 1.. are the known ones in their order, the next value takes the bytes as bare frames,
// which reach the reassembler's corners sooner. Its highest bit has them come by a pipe.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <span>
#include <string_view>

#include "can/identifier.h"
#include "readers/recording.h"
#include "reassembly/reassembler.h"

namespace {

using namespace vistel;

void require(bool condition) {
    if (!condition) std::abort();
}

void check(const N2KMsg& msg) {
    require(msg.length <= N2K_MAX_PAYLOAD && msg.priority <= 7 && msg.pgn <= max_pgn);
    for (std::size_t i = msg.length; i < sizeof msg.data; ++i) require(msg.data[i] == 0);
}

bool looks_packed(std::span<const std::uint8_t> bytes) {
    constexpr std::uint8_t begins[] = {0x1F, 0xFD, 0x28, 'B', 'L'};  // of gzip, xz, zstd, bzip2, BLF
    return !bytes.empty() &&
           (std::ranges::find(begins, bytes[0]) != std::end(begins) || (bytes[0] & 0xF0) == 0x50);
}

int file_of(std::span<const std::uint8_t> bytes) {
    const int descriptor = ::memfd_create("recording", 0);
    require(::write(descriptor, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
    ::lseek(descriptor, 0, SEEK_SET);
    return descriptor;
}

int pipe_of(std::span<const std::uint8_t> bytes) {
    int ends[2];
    require(::pipe(ends) == 0);
    require(::write(ends[1], bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
    ::close(ends[1]);
    return ends[0];
}

void read_recording(std::span<const std::uint8_t> bytes, std::string_view format, bool by_pipe) {
    constexpr std::size_t pipe_holds = 65536;
    Recording recording;
    const int descriptor = by_pipe && bytes.size() <= pipe_holds ? pipe_of(bytes) : file_of(bytes);
    auto input = attach_descriptor(descriptor);
    require(bool(input));
    require(bool(recording.attach(std::move(*input), {.format = std::string(format), .patience_ms = -1})));
    Reassembler reassembler([](const N2KMsg& msg, const RecordTime&) { check(msg); });
    Record record;
    std::uint64_t last_place = 0;
    // Every call takes a line or ends, and what is there never makes one wait. A few compressed bytes may
    // hold any number of lines.
    const std::size_t most_calls = looks_packed(bytes) ? std::size_t{1} << 24 : bytes.size() + 3;
    for (std::size_t calls = 0; calls < most_calls; ++calls) {
        require(!recording.would_wait());
        switch (recording.next(record)) {
            case ReadResult::record:
                check(record.msg);
                reassembler.put(record);
                break;
            case ReadResult::problem:
                // That of a whole recording may list all formats.
                require(recording.problem().number >= last_place && !recording.problem().text.empty() &&
                        (recording.problem().text.size() < 200 ||
                         recording.problem().place == Problem::Place::whole));
                last_place = recording.problem().number;
                break;
            case ReadResult::nothing: break;
            case ReadResult::end: reassembler.finish(); return;
        }
    }
    std::abort();
}

/// 16 bytes each: identifier (4), length, time origin, time step in milliseconds (2, signed), data (8).
void put_frames(std::span<const std::uint8_t> bytes) {
    Reassembler reassembler([](const N2KMsg& msg, const RecordTime&) { check(msg); });
    std::int64_t milliseconds = 0;
    for (; bytes.size() >= 16; bytes = bytes.subspan(16)) {
        std::uint32_t identifier = 0;
        std::int16_t step = 0;
        std::memcpy(&identifier, bytes.data(), 4);
        std::memcpy(&step, bytes.data() + 6, 2);
        Record record;
        record.kind = Record::Kind::frame;
        set_header(record.msg, identifier & max_identifier);
        record.msg.length = bytes[4] % 9;
        std::memcpy(record.msg.data, bytes.data() + 8, record.msg.length);
        record.time = {(milliseconds += step) * 1'000'000, static_cast<RecordTime::Origin>(bytes[5] % 4)};
        reassembler.put(record);
    }
    reassembler.finish();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::span<const std::uint8_t> bytes(data + 1, size - 1);
    const auto formats = vistel::all_formats();
    const std::size_t choice = (data[0] & 0x7F) % (formats.size() + 2);
    if (choice == formats.size() + 1) {
        put_frames(bytes);
    } else {
        read_recording(bytes, choice == 0 ? std::string_view{} : formats[choice - 1].name,
                       (data[0] & 0x80) != 0);
    }
    return 0;
}
