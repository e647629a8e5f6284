// Frames with times, as of several buses at once. Every frame that goes in is in a message or in a counter,
// and nothing is in a message that no frame has brought. A frame takes 16 bytes: identifier (4), length and
// bus (1), origin of its time (1), milliseconds since the frame before (2, signed), data (8).
#include "can/fast_packet.h"
#include "can/frames.h"
#include "can/transport_protocol.h"
#include "reassembly/reassembler.h"
#include "support/fuzz.h"

#include <memory>
#include <random>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

using namespace vistel;
using fuzz::require;

struct [[gnu::packed]] Frame {
    std::uint32_t identifier;
    std::uint8_t length_and_bus;
    std::uint8_t origin;
    std::int16_t step;
    std::uint8_t data[max_frame_bytes];
};
static_assert(sizeof(Frame) == 16);

std::vector<Frame> frames_of(const std::uint8_t* data, std::size_t size) {
    std::vector<Frame> frames(size / sizeof(Frame));
    if (!frames.empty()) std::memcpy(frames.data(), data, frames.size() * sizeof(Frame));
    return frames;
}

constexpr auto definitions = pgn_vistel::core::Definitions::corrected;

/// A reassembler that is watched: what went in, and what became of it.
class Watched {
  public:
    void put(const Record& record) {
        const N2KMsg& msg = record.msg;
        frame_ = &msg;
        passed_ = false;
        put_.push_back(
            {record.bus, msg.source, msg.destination, static_cast<std::uint8_t>(msg.length), msg.pgn, {}});
        std::memcpy(put_.back().data, msg.data, msg.length);
        pieces_ += is_fast(msg) || msg.pgn == transport_protocol::data_pgn || announces(msg);
        reassembler_.put(record);
        require(passed_ != is_fast(msg), "a frame that is a message by itself is one");
    }

    /// Ends the bus, and counts.
    void finish() {
        reassembler_.finish();
        const ReassemblyCounters now = reassembler_.counters();
        const auto since = [&](auto counter) { return now.*counter - before_.*counter; };
        using C = ReassemblyCounters;
        const std::uint64_t packets = since(&C::incomplete_fast_packets);
        const std::uint64_t sessions = since(&C::incomplete_transports);
        require(since(&C::frames) == put_.size(), "every frame is counted");
        require(packets + sessions == told_, "every loss is told");
        const std::uint64_t accounted = used_ + since(&C::repeated_frames) + since(&C::orphan_frames);
        require(accounted <= pieces_, "no frame is counted twice");
        // What is left are the frames of messages that stayed incomplete, at least one of each.
        const std::uint64_t left = pieces_ - accounted;
        require(left >= packets + sessions, "an incomplete message had a frame");
        require(
            left <= packets * fast_packet::most_frames + sessions * (1 + transport_protocol::most_packets),
            "every frame is in a message or in a counter");
        std::uint64_t orphans = reassembler_.losses().others().orphans;
        std::uint64_t repeated = reassembler_.losses().others().repeated;
        for (const Losses::Entry& entry : reassembler_.losses().entries()) {
            orphans += entry.orphans;
            repeated += entry.repeated;
        }
        require(orphans == now.orphan_frames && repeated == now.repeated_frames, "counters agree");
        before_ = now;
        put_.clear();
        pieces_ = used_ = told_ = 0;
    }

  private:
    static bool is_fast(const N2KMsg& msg) { return pgn_vistel::core::is_fast_packet(msg.pgn, definitions); }
    static bool announces(const N2KMsg& msg) {
        return msg.pgn == transport_protocol::control_pgn && msg.length == max_frame_bytes &&
               (msg.data[0] == transport_protocol::request_to_send ||
                msg.data[0] == transport_protocol::broadcast_announce);
    }

    void take(const N2KMsg& msg) {
        const N2KMsg& frame = *frame_;
        static constexpr std::uint8_t nothing[sizeof msg.data]{};
        require(std::memcmp(msg.data + msg.length, nothing, sizeof nothing - msg.length) == 0,
                "behind a message is nothing");
        if (!passed_ && !is_fast(frame)) {
            passed_ = true;
            require(std::memcmp(&msg, &frame, sizeof msg) == 0, "it is passed on as it is");
            return;
        }
        require(msg.source == frame.source, "a message comes from whom its frames come from");
        if (is_fast(frame)) {
            require(msg.pgn == frame.pgn && msg.destination == frame.destination, "as its frames say");
            const unsigned sequence = fast_packet::sequence_of(frame.data[0]);
            unsigned number = 0;
            cut_fast_packet(msg, sequence, [&](std::uint32_t, FrameBytes bytes) {
                const std::size_t header = number == 0 ? 2 : 1;
                const unsigned rest = msg.length - fast_packet::offset_of(number);
                find(msg.pgn, msg.destination, bytes.first(std::min(bytes.size(), header + rest)));
                ++number;
            });
            used_ += number;
            return;
        }
        unsigned number = 0;
        cut_transport(msg, [&](std::uint32_t, FrameBytes bytes) {
            if (number > 0) {
                const unsigned rest = msg.length - (number - 1) * transport_protocol::bytes_in_packet;
                find(transport_protocol::data_pgn, msg.destination,
                     bytes.first(std::min<std::size_t>(bytes.size(), 1 + rest)));
            }
            ++number;
        });
        used_ += number;
    }

    /// A frame that begins with these bytes has come.
    void find(std::uint32_t pgn, std::uint8_t destination, FrameBytes bytes) {
        const Put& last = put_.back();
        for (const Put& one : put_)
            if (one.bus == last.bus && one.pgn == pgn && one.source == last.source &&
                one.destination == destination && one.length >= bytes.size() &&
                std::memcmp(one.data, bytes.data(), bytes.size()) == 0)
                return;
        require(false, "what is in a message has come");
    }

    Reassembler reassembler_{[this](const N2KMsg& msg, const RecordTime&) { take(msg); }, definitions};
    ReassemblyCounters before_;
    struct Put {
        std::uint8_t bus, source, destination, length;
        std::uint32_t pgn;
        std::uint8_t data[max_frame_bytes];
    };
    std::vector<Put> put_;
    const N2KMsg* frame_ = nullptr;  // that is being put
    bool passed_ = false;
    std::uint64_t pieces_ = 0;  // frames that are no messages by themselves, and announcements
    std::uint64_t used_ = 0;    // of these, in messages
    std::uint64_t told_ = 0;

  public:
    Watched() {
        reassembler_.tell_lost([this](std::uint8_t, std::uint8_t) { ++told_; });
    }
};

/// The frames of a message that somebody might send.
std::vector<Frame> message(std::mt19937& random) {
    static constexpr std::uint32_t pgns[] = {129029, 126996, 129540, 130820, 126208, 127489, 60416, 65240};
    N2KMsg msg{};
    msg.pgn = pgns[random() % std::size(pgns)];
    msg.source = static_cast<std::uint8_t>(random() % 4);
    msg.destination = random() % 2 == 0 ? everyone : static_cast<std::uint8_t>(random() % 4);
    if (!is_addressed(msg.pgn)) msg.destination = everyone;
    msg.priority = 6;
    msg.length = static_cast<std::uint16_t>(1 + random() % (random() % 4 == 0 ? 300 : 40));
    for (int i = 0; i < msg.length; ++i) msg.data[i] = static_cast<std::uint8_t>(random());
    std::vector<Frame> frames;
    cut(msg, random() % 8, definitions, [&](std::uint32_t identifier, FrameBytes bytes) {
        Frame frame{identifier,
                    static_cast<std::uint8_t>(bytes.size()),
                    3,
                    static_cast<std::int16_t>(random() % 3),
                    {}};
        std::ranges::copy(bytes, frame.data);
        frames.push_back(frame);
    });
    return frames;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,
                                               unsigned seed) {
    std::mt19937 random(seed);
    auto frames = frames_of(data, size);
    const auto any = [&] { return frames.begin() + static_cast<std::ptrdiff_t>(random() % frames.size()); };
    switch (frames.empty() ? 0 : random() % 8) {
        case 0: {
            const auto more = message(random);
            const auto at = frames.empty() ? frames.end() : any();
            frames.insert(at, more.begin(), more.end());
            break;
        }
        case 1: frames.insert(any(), Frame(*any())); break;  // the same frame again, somewhere
        case 2: std::iter_swap(any(), any()); break;
        case 3: frames.erase(any()); break;
        case 4: {  // the next frame of its message
            const auto at = any();
            Frame next = *at;
            ++next.data[0];
            next.step = static_cast<std::int16_t>(random() % 3);
            frames.insert(at + 1, next);
            break;
        }
        case 5: {  // later or earlier
            static constexpr std::int16_t steps[] = {0,    1,    49,    51, 749, 751,
                                                     1000, 1251, 32767, -1, -51, -32768};
            any()->step = steps[random() % std::size(steps)];
            break;
        }
        case 6: {  // another source, or the other side
            const auto at = any();
            at->identifier = (at->identifier & ~std::uint32_t{0xFF}) | random() % 4;
            break;
        }
        default: {
            Frame& frame = *any();
            std::uint8_t bytes[sizeof frame];
            std::memcpy(bytes, &frame, sizeof frame);
            LLVMFuzzerMutate(bytes, sizeof frame, sizeof frame);
            std::memcpy(&frame, bytes, sizeof frame);
        }
    }
    const std::size_t used = std::min(frames.size(), most / sizeof(Frame)) * sizeof(Frame);
    if (used > 0) std::memcpy(data, frames.data(), used);
    return used;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // As new behind finish(), but for the list of who lost what, which may fill up once in a while.
    static std::unique_ptr<Watched> watched;
    static int runs = 0;
    if (!watched || ++runs % 4096 == 0) watched = std::make_unique<Watched>();
    std::int64_t milliseconds = 0;
    Record record;
    record.kind = Record::Kind::frame;
    for (const Frame& frame : frames_of(data, size)) {
        std::memset(record.msg.data, 0, max_frame_bytes);
        set_header(record.msg, frame.identifier & max_identifier);
        record.msg.length = frame.length_and_bus % 9;
        record.bus = frame.length_and_bus < 216 ? 0 : 1;
        std::memcpy(record.msg.data, frame.data, record.msg.length);
        record.time = {(milliseconds += frame.step) * 1'000'000,
                       static_cast<RecordTime::Origin>(frame.origin % 4)};
        watched->put(record);
    }
    watched->finish();
    return 0;
}
