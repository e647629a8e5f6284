// What the table of formats says, held against its own samples.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/memory_input.h"
#include "readers/line_reader.h"
#include "readers/recording.h"
#include "text/hex.h"

namespace vistel {
namespace {

struct Sample {
    std::string format, holds, times;
    std::vector<unsigned char> bytes;

    std::string text() const { return {bytes.begin(), bytes.end()}; }
};

const std::vector<Sample> samples = {
#include "format_samples.inc"
};

struct Found {
    std::vector<std::string> records;
    std::string kinds, format, problem;
    std::vector<std::string> origins;
};

Found read(const std::string& text, std::size_t most, const std::string& format = "") {
    constexpr const char* origins[] = {"none", "start", "day", "epoch"};
    Recording recording;
    EXPECT_TRUE(recording.attach(std::make_unique<test::Drops>(text, most), {.format = format}));
    Found found;
    Record record;
    for (ReadResult result; (result = recording.next(record)) != ReadResult::end;) {
        if (result == ReadResult::problem) found.problem = described(recording.problem(), "sample");
        if (result != ReadResult::record) continue;
        const N2KMsg& msg = record.msg;
        std::string shown = std::to_string(msg.pgn) + ' ' + std::to_string(msg.source);
        for (int i = 0; i < msg.length; ++i) append_hex(shown += ' ', msg.data[i], 2);
        found.records.push_back(shown);
        found.kinds += record.kind == Record::Kind::frame ? 'f' : 'm';
        found.origins.emplace_back(origins[static_cast<int>(record.time.origin)]);
    }
    found.format = recording.format_name();
    return found;
}

TEST(Formats, SamplesAreWhatTheirRowsSay) {
    ASSERT_EQ(samples.size(), all_formats().size());
    for (const Sample& sample : samples) {
        const Found whole = read(sample.text(), 1 << 20), drops = read(sample.text(), 1);
        EXPECT_EQ(whole.format, sample.format);
        EXPECT_EQ(whole.problem, "") << sample.format;
        EXPECT_FALSE(whole.records.empty()) << sample.format;
        EXPECT_EQ(drops.records, whole.records) << sample.format;
        if (sample.holds != "either") {
            EXPECT_EQ(whole.kinds, std::string(whole.kinds.size(), sample.holds[0])) << sample.format;
        }
        const std::string times = ',' + sample.times + ',';
        for (const std::string& origin : whole.origins)
            EXPECT_NE(times.find(',' + origin + ','), std::string::npos) << sample.format;
    }
}

/// Order would decide, and whether a recording is understood would hang on a row's place.
TEST(Formats, NoneTakesTheSampleOfAnother) {
    for (const Sample& sample : samples)
        for (const Format& other : all_formats()) {
            if (other.name == sample.format) continue;
            const std::string text = sample.text();
            EXPECT_FALSE(other.begins != nullptr && other.begins(text)) << sample.format << ' ' << other.name;
            std::string_view rest = text, line;
            while (take_line(rest, line))
                EXPECT_FALSE(other.resembles != nullptr && other.resembles(line))
                    << line << " is " << sample.format << ", not " << other.name;
        }
}

TEST(Formats, SamplesMayBeCutAnywhere) {
    for (const Sample& sample : samples) {
        const std::string text = sample.text();
        const Found whole = read(text, text.size(), sample.format);
        for (std::size_t size = 0; size < text.size(); ++size) {
            Found cut = read(text.substr(0, size), 7, sample.format);
            ASSERT_LE(cut.records.size(), whole.records.size()) << sample.format << ' ' << size;
            if (!cut.records.empty()) cut.records.pop_back();  // a line may be a shorter one when it is cut
            EXPECT_TRUE(std::equal(cut.records.begin(), cut.records.end(), whole.records.begin()))
                << sample.format << ' ' << size;
        }
    }
}

TEST(Formats, DamagedOnesAreTheSameHoweverTheyCome) {
    using namespace std::string_literals;
    const std::string heading = "\x57\xEA\x23\x12\xF1\x09\1\2\3\4\5\6\7\x08"s,
                      request = "\x0A\0\x03\x23\xEA\x18\x14\xF0\1"s;
    const std::tuple<std::string, std::string, std::size_t, std::string> cases[] = {
        {"ikonvert", "# $PDGY,1, and more\n!PDGY,127250,2,35,255,1.250,ATkw\n", 1, ""},
        // too few records behind the place where they were lost
        {"ydvr", heading + heading + std::string(30, '\xF0') + heading + request + std::string(30, '\x98'), 1,
         "sample: byte 14: here the records are lost, as what follows cannot be any"},
    };
    for (const auto& [format, text, records, problem] : cases)
        for (const std::size_t most : {std::size_t{1}, std::size_t{16}, text.size()}) {
            const Found found = read(text, most, format);
            EXPECT_EQ(found.records.size(), records) << format << ' ' << most;
            EXPECT_EQ(found.problem, problem) << format << ' ' << most;
        }
}

}  // namespace
}  // namespace vistel
