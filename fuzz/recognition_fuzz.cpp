// Bytes as a recording that nothing is known of, compressed or not: unpacked, recognised, read to its end and
// reassembled. The first byte says how many come at a time as by a pipe, 0 stands for a file; what they are
// may depend on that no more than what is read.
#include "readers/known_files.h"
#include "readers/recording.h"
#include "reassembly/reassembler.h"
#include "support/memory_input.h"

namespace {

using namespace vistel;
using fuzz::require;

struct Reading {
    std::string format;
    std::uint64_t records = 0, messages = 0;
    bool problems = false;  // how many there are of bytes without records depends on how they come
    friend bool operator==(const Reading&, const Reading&) = default;
};

Reading read(std::span<const std::uint8_t> bytes, std::size_t most) {
    static Reassembler reassembler([](const N2KMsg&, const RecordTime&) {});
    const std::uint64_t messages = reassembler.counters().messages;
    Recording recording;
    require(bool(recording.attach(std::make_unique<fuzz::MemoryInput>(bytes, most))), "it can be attached");
    Record record;
    Reading reading;
    // A few compressed bytes may hold any number of lines: enough is enough.
    constexpr int most_calls = 20'000;
    for (int calls = 0; calls < most_calls; ++calls) {
        switch (recording.next(record)) {
            case ReadResult::record:
                ++reading.records;
                reassembler.put(record);
                continue;
            case ReadResult::problem:
                reading.problems = true;
                require(!recording.problem().text.empty(), "a problem is told");
                continue;
            case ReadResult::nothing: continue;
            case ReadResult::end: break;
        }
        require(most > 0 || recording.bytes_read() <= recording.bytes_total(), "progress has an end");
        break;
    }
    reassembler.finish();
    reading.messages = reassembler.counters().messages - messages;
    reading.format = recording.format_name();
    return reading;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const auto most = input.take<std::uint8_t>();
    const std::string_view text(reinterpret_cast<const char*>(input.rest().data()), input.rest().size());
    const std::string_view guess = guess_file(text);
    require(guess.size() < 100, "a kind of file has a short name");
    const Reading as_file = read(input.rest(), 0);
    if (most == 0) return 0;
    // What comes bit by bit is recognised by the first that speaks for a format; later bytes might for
    // another.
    const Reading as_pipe = read(input.rest(), most);
    require(as_pipe.format != as_file.format || as_pipe == as_file, "file and pipe give the same");
    return 0;
}
