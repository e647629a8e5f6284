// soak [--messages N]: a bus with faults through reassembly, decoding, devices and the monitor's streams.
// Status 1 unless memory stays as it is, every loss that was put in is in the counters, and nothing else.
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <string_view>

#include "monitor/traffic.h"
#include "pgn_vistel/core/render.h"
#include "reassembly/reassembler.h"
#include "soak/bus.h"

namespace {

using namespace vistel;
using namespace pgn_vistel::core;

constexpr auto definitions = Definitions::corrected;

/// Sanitizers keep what was freed.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool is_memory_told = false;
#elif defined(__has_feature)
constexpr bool is_memory_told = !__has_feature(address_sanitizer);
#else
constexpr bool is_memory_told = true;
#endif

int failures = 0;

void expect(std::uint64_t found, std::uint64_t wanted, const char* what) {
    std::printf("%-34s %14llu", what, static_cast<unsigned long long>(found));
    if (found != wanted) {
        std::printf("   but %llu were put in", static_cast<unsigned long long>(wanted));
        ++failures;
    }
    std::printf("\n");
}

std::size_t memory() {
    std::size_t pages = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) / 1024;
}

double cpu_seconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// What a message becomes on the way to a person or a program.
class Decoder {
  public:
    void take(const N2KMsg& msg) {
        const PgnDef* const pgn = find_definition(definitions, msg);
        switch (turn_++ % 3) {
            case 0: text_.start(msg, pgn, 0), write(text_); break;
            case 1: json_.start(msg, pgn, {}), write(json_); break;
            default: csv_.start(msg, pgn, {}), write(csv_); break;
        }
    }
    std::uint64_t bytes() const { return bytes_; }

  private:
    template <class Renderer>
    void write(Renderer& renderer) {
        do {
            bytes_ += static_cast<std::uint64_t>(renderer.write(area_, area_ + sizeof area_) - area_);
        } while (!renderer.is_done());
    }

    UnitSelection units_ = UnitSelection::si();
    TextRenderer text_{units_, false};
    JsonRenderer json_{units_};
    CsvRenderer csv_{units_};
    unsigned turn_ = 0;
    std::uint64_t bytes_ = 0;
    char area_[4 * piece_room];
};

/// A program that looks at the bus.
class Listener {
  public:
    Listener() {
        reassembler_.tell_lost(
            [this](std::uint8_t bus, std::uint8_t source) { traffic_.on_lost(bus, source); });
    }

    void take(const std::vector<Record>& records) {
        for (const Record& record : records) {
            reassembler_.put(record);
            traffic_.on_record(record);
        }
    }
    void finish() { reassembler_.finish(); }

    std::uint64_t messages() const { return reassembler_.counters().messages; }
    /// KiB that the streams take: there are more of them, up to their limit, as devices change their
    /// addresses.
    std::size_t stream_memory() const { return traffic_.streams().size() * (sizeof(Stream) + 128) / 1024; }

    void check(const soak::Bus& bus) const {
        const auto& [counters, missing] = bus.expected();
        const ReassemblyCounters& found = reassembler_.counters();
        expect(found.frames, counters.frames, "frames");
        expect(found.messages, counters.messages, "messages");
        expect(found.incomplete_fast_packets, counters.incomplete_fast_packets, "incomplete fast packets");
        expect(found.incomplete_transports, counters.incomplete_transports, "incomplete sessions");
        expect(found.orphan_frames, counters.orphan_frames, "orphan frames");
        expect(found.repeated_frames, counters.repeated_frames, "repeated frames");
        std::uint64_t lost = reassembler_.losses().others().missing;
        for (const Losses::Entry& entry : reassembler_.losses().entries()) lost += entry.missing;
        expect(lost, missing, "frames missing of incomplete ones");
        expect(wrong_, 0, "messages that nobody has sent");
        expect(traffic_.messages(), counters.messages, "messages of streams");
        expect(traffic_.refused(), 0, "messages without a stream");

        std::map<std::uint64_t, std::uint8_t> known;
        std::uint64_t lost_of_devices = 0, right = 0;
        for (const DeviceRow& row : traffic_.devices()) {
            if (row.name && row.address) known[*row.name] = *row.address;
            constexpr std::string_view lost_note = "lost: ";
            const std::size_t note = row.notes.find(lost_note);
            if (note != std::string::npos)
                lost_of_devices += std::stoull(row.notes.substr(note + lost_note.size()));
        }
        for (unsigned i = 0; i < soak::Bus::devices; ++i) {
            const auto device = known.find(soak::Bus::name_of(i));
            right += device != known.end() && device->second == bus.address_of(i);
        }
        expect(right, soak::Bus::devices, "devices at their addresses");
        expect(lost_of_devices, counters.incomplete_fast_packets + counters.incomplete_transports,
               "incomplete messages of devices");
    }

  private:
    void on_message(const N2KMsg& msg, const RecordTime& time) {
        if (!soak::Bus::is_sent(msg)) ++wrong_;
        decoder_.take(msg);
        traffic_.on_message(msg, time, 0, time.nanoseconds);
    }

    Player player_{PlayOptions{}};
    Traffic traffic_{player_};
    Decoder decoder_;
    std::uint64_t wrong_ = 0;
    Reassembler reassembler_{[this](const N2KMsg& msg, const RecordTime& time) { on_message(msg, time); },
                             definitions};
};

}  // namespace

int main(int argc, char** argv) {
    std::uint64_t wanted = 1'000'000'000;
    if (argc == 3 && std::string_view(argv[1]) == "--messages") {
        wanted = std::strtoull(argv[2], nullptr, 10);
    } else if (argc != 1) {
        std::fprintf(stderr, "usage: soak [--messages N]\n");
        return 2;
    }
    constexpr unsigned parts = 10;
    soak::Bus bus;
    const auto listener = std::make_unique<Listener>();
    double before = cpu_seconds(), first_rate = 0, rate = 0;
    std::size_t first_memory = 0, latest_memory = 0;
    std::uint64_t counted = 0;
    for (unsigned part = 1; part <= parts; ++part) {
        const std::uint64_t until = wanted / parts * part;
        while (listener->messages() < until) listener->take(bus.next_tick());
        const double now = cpu_seconds();
        rate = static_cast<double>(listener->messages() - counted) / (now - before);
        const std::size_t taken = memory();
        latest_memory = taken - listener->stream_memory();
        if (part == 1) first_rate = rate, first_memory = latest_memory;
        std::printf("%14llu messages  %9.0f in a second of CPU time  %7zu KiB, %zu of streams\n",
                    static_cast<unsigned long long>(listener->messages()), rate, taken,
                    listener->stream_memory());
        std::fflush(stdout);
        counted = listener->messages();
        before = now;
    }
    bus.calm_down();
    while (bus.has_late_frames()) listener->take(bus.next_tick());
    listener->finish();
    const soak::Faults& faults = bus.faults();
    std::printf(
        "put in: %llu lost frames, %llu lost beginnings, %llu lost single frames, %llu repeated, %llu "
        "swapped,\n"
        "  %llu late, %llu too late, %llu late beginnings, %llu stale sequences, %llu clocks set, %llu "
        "addresses changed\n",
        static_cast<unsigned long long>(faults.lost_frames),
        static_cast<unsigned long long>(faults.lost_beginnings),
        static_cast<unsigned long long>(faults.lost_singles),
        static_cast<unsigned long long>(faults.repeated), static_cast<unsigned long long>(faults.swapped),
        static_cast<unsigned long long>(faults.late), static_cast<unsigned long long>(faults.too_late),
        static_cast<unsigned long long>(faults.late_beginnings),
        static_cast<unsigned long long>(faults.stale_sequences),
        static_cast<unsigned long long>(faults.clock_jumps),
        static_cast<unsigned long long>(faults.address_changes));
    listener->check(bus);
    constexpr std::size_t most_growth = 512;
    if (is_memory_told && latest_memory > first_memory + most_growth) {
        std::printf("memory grew by %zu KiB\n", latest_memory - first_memory);
        ++failures;
    }
    constexpr double steady = 0.5;  // what else the machine does shows, too
    if (rate < steady * first_rate) {
        std::printf("it became slower\n");
        ++failures;
    }
    return failures > 0 ? 1 : 0;
}
