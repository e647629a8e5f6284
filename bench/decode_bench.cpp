// Decoding of the sample voyage: CPU time per message and per field, without reading and without writing.

#include <benchmark/benchmark.h>
#include <fcntl.h>

#include <memory>

#include "output/writers.h"
#include "pgn_vistel/stream_lines.h"
#include "sample.h"

namespace {

using pgn_vistel::find_pgn_def;
using pgn_vistel::MessageWalk;

const std::vector<SampleMessage>& sample() {
    static const auto messages = load_sample(SAMPLE);
    return messages;
}

std::int64_t count_fields() {
    std::int64_t fields = 0;
    for (const SampleMessage& entry : sample()) {
        MessageWalk walk(find_pgn_def(entry.msg.pgn), entry.msg);
        for (; walk.next(); ++fields) {
            ConvValue value{};
            const auto& field = walk.field();
            walk.position = read_field(qv_n2k_pgn_db, entry.msg, *field.row->dd, field.bytes, field.bits,
                                       walk.position, pgn_vistel::unit::selected, &value)
                                .next;
        }
    }
    return fields;
}

void report(benchmark::State& state) {
    const auto rounds = static_cast<double>(state.iterations());
    using benchmark::Counter;
    state.counters["messages"] = Counter(rounds * static_cast<double>(sample().size()), Counter::kIsRate);
    state.counters["fields"] = Counter(rounds * static_cast<double>(count_fields()), Counter::kIsRate);
}

// The lines of the monitor as wide text.
void lines(benchmark::State& state) {
    wchar_t line[pgn_vistel::line_size];
    for (auto _ : state) {
        for (const SampleMessage& entry : sample()) {
            const auto* const pgn = find_pgn_def(entry.msg.pgn);
            benchmark::DoNotOptimize(print_stream_line(line, pgn_vistel::line_size, entry.msg, pgn));
            pgn_vistel::StreamLines rest(qv_n2k_pgn_db, pgn, entry.msg, 0);
            while (rest.next(line, pgn_vistel::line_size) >= 0) benchmark::DoNotOptimize(line);
        }
    }
    report(state);
}
BENCHMARK(lines)->Unit(benchmark::kMillisecond);

void write_with(benchmark::State& state, vistel::MessageWriter& writer) {
    const auto sink = std::make_unique<vistel::Sink>(open("/dev/null", O_WRONLY | O_CLOEXEC));
    for (auto _ : state)
        for (const SampleMessage& entry : sample())
            writer.write(*sink, {entry.msg, find_pgn_def(entry.msg.pgn), entry.time.nanoseconds, true,
                                 entry.time.nanoseconds});
    report(state);
}

void to_text(benchmark::State& state) {
    write_with(state, *vistel::make_text_writer(qv_n2k_pgn_db, 0));
}
BENCHMARK(to_text)->Unit(benchmark::kMillisecond);

void to_json(benchmark::State& state) {
    write_with(state, *vistel::make_json_writer(qv_n2k_pgn_db));
}
BENCHMARK(to_json)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
