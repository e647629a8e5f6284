// Bytes as a recording of a format, which the first byte chooses: read as a file and as a pipe that brings as
// many bytes at a time as the second one says (0: as a file alone), with the same records and problems of
// lines. The upper two bits of the first byte say what the contents are held for.
#include "can/identifier.h"
#include "readers/byte_source.h"
#include "readers/formats.h"
#include "support/memory_input.h"

namespace {

using namespace vistel;
using fuzz::require;

void check(const N2KMsg& msg) {
    require(msg.length <= N2K_MAX_PAYLOAD && msg.priority <= 7 && msg.pgn <= max_pgn,
            "a message is in bounds");
}

/// Whether a format finds its records within lines: then what lies between them is told in pieces as they
/// come.
bool cuts_lines(const Format& format) {
    static constexpr std::string_view names[] = {"ikonvert", "pcdin", "mxpgn", "airmar"};
    return std::ranges::find(names, format.name) != std::end(names);
}

/// What came of a recording, as a number: two readings either agree or not.
class Digest {
  public:
    template <class Value>
    void add(const Value& value) {
        add_bytes(&value, sizeof value);
    }
    void add_bytes(const void* bytes, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i)
            value_ = (value_ ^ static_cast<const std::uint8_t*>(bytes)[i]) * 0x100000001B3;
    }
    std::uint64_t value() const { return value_; }

  private:
    std::uint64_t value_ = 0xCBF29CE484222325;
};

std::uint64_t read(std::span<const std::uint8_t> bytes, const Format& format, ContentKind contents,
                   std::size_t most) {
    auto input = std::make_unique<fuzz::MemoryInput>(bytes, most);
    const fuzz::MemoryInput& in = *input;
    ByteSource source;
    source.attach(std::move(input));
    const auto reader = format.open(source, contents);
    Digest digest;
    Record record;
    Problem problem;
    std::uint64_t last_place = 0;
    bool problems = false;  // how many there are of bytes without records depends on how they come
    // Every call takes something, waits once, or ends.
    for (std::size_t calls = 0; calls < 4 * bytes.size() + 8; ++calls) {
        const bool waits = reader->would_wait();
        require(!waits || most > 0, "nobody waits for a file");
        const std::uint64_t before = in.waits();
        const ReadResult result = reader->next(record, problem);
        require(waits || in.waits() == before, "would_wait() knows of every wait");
        switch (result) {
            case ReadResult::record:
                check(record.msg);
                digest.add(record.kind), digest.add(record.bus);
                digest.add(record.time.nanoseconds), digest.add(record.time.origin);
                digest.add(record.msg.pgn), digest.add(record.msg.source), digest.add(record.msg.destination);
                digest.add_bytes(record.msg.data, record.msg.length);
                digest.add_bytes(reader->bus_name(record.bus).data(), reader->bus_name(record.bus).size());
                break;
            case ReadResult::problem:
                require(problem.place == Problem::Place::whole || problem.number >= last_place,
                        "problems come in order");
                require(!problem.text.empty() && problem.text.size() < 400, "a problem is told");
                if (problem.place != Problem::Place::whole) last_place = problem.number;
                problems = true;
                if (problem.place == Problem::Place::line && !cuts_lines(format)) {
                    digest.add(problem.number);
                    digest.add_bytes(problem.text.data(), problem.text.size());
                }
                record.msg.length = 0;
                break;
            case ReadResult::nothing: break;
            case ReadResult::end:
                digest.add(problems), digest.add(reader->foreign_frames());
                return digest.value();
        }
    }
    require(false, "reading comes to its end");
    return 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const auto choice = input.take<std::uint8_t>();
    const auto most = input.take<std::uint8_t>();
    const auto formats = all_formats();
    const Format& format = formats[(choice & 63u) % formats.size()];
    const auto contents = static_cast<ContentKind>((choice >> 6) % 3);
    const std::uint64_t as_file = read(input.rest(), format, contents, 0);
    if (most > 0)
        require(read(input.rest(), format, contents, most) == as_file, "file and pipe give the same");
    return 0;
}
