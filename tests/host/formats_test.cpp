// What the table of formats says, held against its own samples.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "host/recording_contents.h"
#include "readers/line_reader.h"

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

/// What is read but for problems and counts.
Texts records_of(const Contents& contents) {
    Texts records = contents.shown;
    std::erase_if(records, [](const std::string& line) { return !std::isalpha(line[0]); });
    return records;
}

TEST(Formats, SamplesAreWhatTheirRowsSay) {
    ASSERT_EQ(samples.size(), all_formats().size());
    for (const Sample& sample : samples) {
        SCOPED_TRACE(sample.format);
        const Contents whole = read_drops(sample.text(), 1 << 20), drops = read_drops(sample.text(), 1);
        EXPECT_EQ(whole.format, sample.format);
        EXPECT_FALSE(whole.times.empty());
        EXPECT_EQ(drops.shown, whole.shown);
        const char* const kinds = sample.holds == "frames" ? "F" : sample.holds == "messages" ? "M" : "FM";
        for (const std::string& line : whole.shown) EXPECT_EQ(line.find(": "), line.npos) << line;
        for (const std::string& line : records_of(whole)) EXPECT_EQ(line.find_first_of(kinds), 0u) << line;
        const std::string origins = ',' + sample.times + ',';
        for (const std::string& time : whole.times)
            EXPECT_NE(origins.find(',' + time.substr(time.find(' ') + 1) + ','), origins.npos) << time;
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
        const Texts whole = records_of(read_drops(text, text.size(), sample.format));
        for (std::size_t size = 0; size < text.size(); ++size) {
            Texts cut = records_of(read_drops(text.substr(0, size), 7, sample.format));
            ASSERT_LE(cut.size(), whole.size()) << sample.format << ' ' << size;
            if (!cut.empty()) cut.pop_back();  // a line may be a shorter one when it is cut
            EXPECT_TRUE(std::equal(cut.begin(), cut.end(), whole.begin())) << sample.format << ' ' << size;
        }
    }
}

TEST(Formats, DamagedOnesAreTheSameHoweverTheyCome) {
    using namespace std::string_literals;
    const std::string heading = "\x57\xEA\x23\x12\xF1\x09\1\2\3\4\5\6\7\x08"s,
                      request = "\x0A\0\x03\x23\xEA\x18\x14\xF0\1"s;
    const std::tuple<std::string, std::string, Texts> cases[] = {
        {"ikonvert", "# $PDGY,1, and more\n!PDGY,127250,2,35,255,1.250,ATkw\n", {"M 2 127250 35 255 013930"}},
        // too few records behind the place where they were lost
        {"ydvr",
         heading + heading + std::string(30, '\xF0') + heading + request + std::string(30, '\x98'),
         {"M 2 127250 35 255 0102030405060708",
          "14: here the records are lost, as what follows cannot be any"}},
    };
    for (const auto& [format, text, shown] : cases)
        for (const std::size_t most : {std::size_t{1}, std::size_t{16}, text.size()})
            EXPECT_EQ(read_drops(text, most, format).shown, shown) << format << ' ' << most;
}

}  // namespace
}  // namespace vistel
