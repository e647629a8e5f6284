// Frames of fast packets from several devices at a time: CPU time per frame, by the number of open packets.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>

#include "can/fast_packet.h"
#include "reassembly/reassembler.h"

namespace {

using namespace vistel;

/// One message of the longest kind from each device, their frames in turn.
void fast_packet_frames(benchmark::State& state) {
    const auto devices = static_cast<unsigned>(state.range(0));
    std::uint64_t bytes = 0;
    const auto reassembler = std::make_unique<Reassembler>(
        [&bytes](const N2KMsg& msg, const RecordTime&) { bytes += msg.length; });
    Record frame;
    frame.kind = Record::Kind::frame;
    frame.msg.pgn = 129029;
    frame.msg.destination = 255;
    frame.msg.length = 8;
    for (auto _ : state) {
        for (unsigned number = 0; number < fast_packet::most_frames; ++number) {
            frame.msg.data[1] = fast_packet::most_bytes;
            for (unsigned device = 0; device < devices; ++device) {
                frame.msg.source = static_cast<std::uint8_t>(device);
                frame.msg.data[0] = fast_packet::first_byte(device % 8, number);
                reassembler->put(frame);
            }
        }
    }
    if (reassembler->counters().messages * fast_packet::most_bytes != bytes || bytes == 0)
        state.SkipWithError("messages are missing");
    const auto frames = state.iterations() * std::int64_t{fast_packet::most_frames} * devices;
    using benchmark::Counter;
    state.counters["per_frame"] = Counter(static_cast<double>(frames), Counter::kIsRate | Counter::kInvert);
}
BENCHMARK(fast_packet_frames)->Arg(1)->Arg(50)->Arg(250);

}  // namespace

BENCHMARK_MAIN();
