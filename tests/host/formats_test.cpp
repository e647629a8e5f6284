// What the table of formats says, held against its own samples.
#include <gtest/gtest.h>

#include <algorithm>
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

}  // namespace
}  // namespace vistel
