// Decoding of the sample voyage, step by step: messages and fields a second, without reading and without
// writing.

#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <vector>

#include "pgn_vistel/core/render.h"
#include "sample.h"

namespace {

using namespace pgn_vistel::core;

/// The messages, and where the walk goes in each of them.
struct Sample {
    std::vector<SampleMessage> messages = load_sample(SAMPLE);
    std::vector<PayloadPosition> positions;  // behind each field, one message after the other

    Sample() {
        TextScratch scratch;
        for (const SampleMessage& entry : messages) {
            MessageWalk walk(find_pgn_def(entry.msg.pgn), entry.msg);
            while (walk.next()) {
                walk.position =
                    read_field(entry.msg, walk.field(), walk.position, {}, unit::selected, scratch).next;
                positions.push_back(walk.position);
            }
        }
    }
};

const Sample& sample() {
    static const Sample loaded;
    return loaded;
}

/// Runs `act` on every message, again and again.
template <class Act>
void run(benchmark::State& state, Act act) {
    const Sample& all = sample();
    for (auto _ : state)
        for (const SampleMessage& entry : all.messages) act(entry);
    const auto rounds = static_cast<double>(state.iterations());
    using benchmark::Counter;
    state.counters["messages"] = Counter(rounds * static_cast<double>(all.messages.size()), Counter::kIsRate);
    state.counters["fields"] = Counter(rounds * static_cast<double>(all.positions.size()), Counter::kIsRate);
}

/// Which field comes next, and nothing of what it says.
void walk(benchmark::State& state) {
    const PayloadPosition* position = nullptr;
    run(state, [&](const SampleMessage& entry) {
        if (&entry == sample().messages.data()) position = sample().positions.data();
        MessageWalk walk(find_pgn_def(entry.msg.pgn), entry.msg);
        for (; walk.next(); walk.position = *position++) benchmark::DoNotOptimize(&walk.field());
    });
}
BENCHMARK(walk)->Unit(benchmark::kMillisecond);

void values(benchmark::State& state) {
    const UnitSelection units;
    TextScratch scratch;
    run(state, [&](const SampleMessage& entry) {
        MessageWalk walk(find_pgn_def(entry.msg.pgn), entry.msg);
        while (walk.next()) {
            const FieldReading reading =
                read_field(entry.msg, walk.field(), walk.position, units, unit::selected, scratch);
            walk.position = reading.next;
            benchmark::DoNotOptimize(&reading);
        }
    });
}
BENCHMARK(values)->Unit(benchmark::kMillisecond);

/// The lines of the monitor as windows take them.
void wide_lines(benchmark::State& state) {
    const UnitSelection units;
    TextScratch scratch;
    run(state, [&](const SampleMessage& entry) {
        wchar_t line[line_size];
        const PgnDef* const pgn = find_pgn_def(entry.msg.pgn);
        benchmark::DoNotOptimize(print_stream_line(line, line_size, entry.msg, pgn));
        StreamLines lines(pgn, entry.msg, units, scratch, false);
        while (lines.next(line, line_size) >= 0) benchmark::DoNotOptimize(line);
    });
}
BENCHMARK(wide_lines)->Unit(benchmark::kMillisecond);

void start(TextRenderer& renderer, const SampleMessage& entry, const PgnDef* pgn) {
    renderer.start(entry.msg, pgn, entry.msg.time_stamp);
}
template <class R>
void start(R& renderer, const SampleMessage& entry, const PgnDef* pgn) {
    renderer.start(entry.msg, pgn, {entry.time.nanoseconds, true, entry.time.nanoseconds});
}

/// In UTF-8, into one buffer over and over.
template <class R>
void render(benchmark::State& state, R renderer) {
    const auto area = std::make_unique<std::array<char, 4 * piece_room>>();
    char* const limit = area->data() + area->size();
    run(state, [&](const SampleMessage& entry) {
        start(renderer, entry, find_pgn_def(entry.msg.pgn));
        do benchmark::DoNotOptimize(renderer.write(area->data(), limit));
        while (!renderer.is_done());
    });
}
BENCHMARK_CAPTURE(render, text, TextRenderer(UnitSelection(), false))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(render, json, JsonRenderer(UnitSelection()))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(render, csv, CsvRenderer(UnitSelection()))->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
