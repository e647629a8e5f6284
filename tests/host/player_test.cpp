#include "monitor/player.h"

#include <cerrno>
#include <cstring>
#include <vector>

#include "host/playing.h"
#include "host/temporary_recording.h"
#include "monitor/recorder.h"
#include "monitor/traffic.h"

namespace vistel {
namespace {

using namespace std::chrono_literals;

/// A player on a recording, with a clock that the test turns.
struct Played : PlayListener {
    Played(const std::string& text, std::optional<double> speed, bool loop = false)
        : file(text), player(test::playing({file.name()}, speed, loop), [this] { return clock; }) {
        EXPECT_TRUE(player.open());
    }
    void on_message(const N2KMsg& msg, const RecordTime&, std::uint8_t, PlayTime now) override {
        shown.push_back(msg.data[0]);
        times.push_back(static_cast<double>(now) / one_second);
    }
    /// The first bytes of what is due after some more time.
    std::vector<int> after(std::chrono::milliseconds time) {
        shown.clear();
        clock += time;
        player.advance(*this);
        return shown;
    }

    Player::Clock::time_point clock{1h};
    test::TemporaryRecording file;
    Player player;
    std::vector<int> shown;
    std::vector<double> times;
};

std::string line(const char* time, int byte) {
    char text[64];
    std::snprintf(text, sizeof text, "%s,2,127250,7,255,1,%02x\n", time, static_cast<unsigned>(byte));
    return text;
}

using Bytes = std::vector<int>;

TEST(Player, KeepsTheRecordingsPace) {
    const std::string text = line("00:00:00", 0) + line("00:00:01", 1) + line("00:00:02", 2);
    Played usual(text, 1);
    EXPECT_EQ(usual.after(0ms), Bytes{0});
    EXPECT_EQ(usual.times, std::vector{0.0}) << "whatever the host's clock says";
    EXPECT_EQ(usual.after(900ms), Bytes{});
    EXPECT_EQ(usual.after(100ms), Bytes{1});
    usual.player.pause(true);
    EXPECT_EQ(usual.after(5000ms), Bytes{}) << "the recording's time stands still";
    usual.player.step(usual);
    EXPECT_EQ(usual.shown, Bytes{2});
    usual.player.pause(false);
    EXPECT_EQ(usual.after(0ms), Bytes{});
    EXPECT_TRUE(usual.player.ended());
    EXPECT_EQ(usual.times, (std::vector<double>{0, 1, 2}));

    EXPECT_EQ(Played(text, 0).after(0ms), (Bytes{0, 1, 2}));
    Played quick(text, 4);
    EXPECT_EQ(quick.after(0ms), Bytes{0});
    EXPECT_EQ(quick.after(499ms), Bytes{1});
    quick.player.set_speed(0.5);
    EXPECT_EQ(quick.after(6ms), Bytes{});
    EXPECT_EQ(quick.after(2ms), Bytes{2});
}

TEST(Player, WaitsForNoLongGapAndNoClockThatIsPutBack) {
    Played played(line("00:00:00", 0) + line("01:00:00", 1) + line("01:00:02", 2) + line("00:30:00", 3), 1);
    EXPECT_EQ(played.after(0ms), (Bytes{0, 1}));
    EXPECT_EQ(played.player.counters().skipped_gaps, 1u);
    EXPECT_EQ(played.player.notice(), "nothing for 60m, skipped");
    EXPECT_EQ(played.after(1000ms), Bytes{});
    EXPECT_EQ(played.after(1000ms), (Bytes{2, 3}));
    EXPECT_EQ(played.times, (std::vector<double>{0, 3600, 3602, 1800}));
    played.after(5000ms);
    EXPECT_EQ(played.player.notice(), "");
}

TEST(Player, FollowsAClockThatWasPutBack) {
    std::string text = line("01:00:00", 0);
    for (int i = 1; i <= 40; ++i) {
        char time[16];
        std::snprintf(time, sizeof time, "00:00:%02d", i);
        text += line(time, i);
    }
    Played played(text, 1);
    EXPECT_EQ(played.after(0ms).size(), 1 + Player::most_early);
    EXPECT_EQ(played.player.until_due(), 1s);
    EXPECT_EQ(played.after(1000ms), Bytes{17});

    text.clear();
    for (unsigned i = 0; i < Player::most_early; ++i) text += line("01:00:00", 1) + line("00:00:01", 2);
    Played mixed(text + line("01:00:01", 3), 1);
    EXPECT_EQ(mixed.after(0ms).size(), 2 * Player::most_early);
    EXPECT_EQ(mixed.player.until_due(), 1s) << "two clocks: the later one is the recording's";
}

TEST(Player, PlaysSeveralOneAfterTheOther) {
    const test::TemporaryRecording first(line("00:00:00", 0) + line("00:00:01", 1)),
        second("(9.0) can1 09F11207#07\n(8.0) can1 09F11207#08\n"), none("no recording at all\n");
    Played played(line("00:00:05", 9), 1);
    Player several(test::playing({first.name(), second.name()}, 1), [&] { return played.clock; });
    ASSERT_TRUE(several.open());
    const auto after = [&](std::chrono::milliseconds time) {
        played.shown.clear();
        played.clock += time;
        several.advance(played);
        return played.shown;
    };
    EXPECT_EQ(after(0ms), Bytes{0});
    EXPECT_EQ(after(999ms), Bytes{});
    EXPECT_EQ(after(1ms), (Bytes{1, 7, 8})) << "the next one begins when the one before is over";
    EXPECT_EQ(several.counters().steps_back, 1u) << "within a recording";
    EXPECT_EQ(several.bus_count(), 2u);
    EXPECT_EQ(several.bus_label(1), "can1");
    EXPECT_FALSE(several.is_unreadable());
    Player twice(test::playing({first.name(), first.name()}, 0));
    ASSERT_TRUE(twice.open());
    while (!twice.ended()) twice.advance(played);
    EXPECT_EQ(twice.counters().steps_back, 0u) << "each has its own time";

    for (const auto& [name, reason] :
         {std::pair(none.name(), ": the format is none of "), {std::string("/none.log"), ": No such file"}}) {
        Player refused(test::playing({name}, 1));
        const Status opened = refused.open();
        ASSERT_FALSE(opened);
        EXPECT_EQ(opened.error().text.find(name + reason), 0u) << opened.error().text;
    }
    EXPECT_FALSE(Player(test::playing({first.name(), "/none.log"})).open()) << "told before it begins";
    Player half(test::playing({first.name(), none.name()}, 0));
    ASSERT_TRUE(half.open());
    while (!half.ended()) half.advance(played);
    EXPECT_TRUE(half.is_unreadable());
}

TEST(Player, BeginsAgainAndGoesToAPlace) {
    const std::string text = line("00:00:00", 0) + line("00:00:01", 1) + "nonsense\n";
    Played looped(text, 1, true);
    EXPECT_EQ(looped.after(0ms), Bytes{0});
    EXPECT_EQ(looped.after(1000ms), Bytes{1});
    EXPECT_EQ(looped.after(0ms), Bytes{0}) << "the next round begins with the end of this one";
    EXPECT_EQ(looped.after(1000ms), Bytes{1});
    EXPECT_FALSE(looped.player.ended());
    EXPECT_EQ(looped.player.counters().problems, 2u);
    EXPECT_EQ(looped.player.first_problem().find(looped.file.name() + ":3: "), 0u);
    looped.player.seek(0.9, looped);
    for (int i = 0; i < 3; ++i) looped.after(1000ms);
    EXPECT_FALSE(looped.player.ended()) << "rounds go on after a leap";
    Played nothing("", 0, true);
    nothing.after(0ms);
    EXPECT_TRUE(nothing.player.ended()) << "or it would open the file for ever";

    Played sought(line("00:00:00", 0) + line("00:00:10", 1) + line("00:00:20", 2) + line("00:00:21", 3), 1);
    sought.player.seek(0.6, sought);
    EXPECT_EQ(sought.shown, (Bytes{0, 1, 2})) << "all that lies before it";
    EXPECT_EQ(sought.after(900ms), Bytes{});
    EXPECT_EQ(sought.after(100ms), Bytes{3});
    sought.shown.clear();
    sought.player.seek(0.3, sought);
    EXPECT_EQ(sought.shown, (Bytes{0, 1}));
}

TEST(Recorder, WritesWhatComes) {
    const test::TemporaryRecording source("00:00:00,2,127250,7,255,8,00,00,00,ff,7f,ff,7f,fd\n" +
                                          line("00:00:01", 1) + "00:00:02,7,65300,7,255,1,05\n"),
        written("");
    const auto record = [&](const std::string& path, const char* format) {
        Player player(test::playing({source.name()}, 0));
        EXPECT_TRUE(player.open());
        Traffic traffic(player);
        auto recorder = Recorder::open(path, format, {source.name()}, player.options().definitions);
        if (!recorder) return recorder.error().text;
        traffic.record(recorder->get());
        while (!player.ended()) traffic.advance();
        (*recorder)->flush();
        EXPECT_EQ((*recorder)->written(), 3u);
        return (*recorder)->failure();
    };
    for (const char* const format : {"candump", "plain", "pcap"}) {
        EXPECT_EQ(record(written.name(), format), "") << format;
        Played played("", 0);
        Player back(test::playing({written.name()}, 0));
        ASSERT_TRUE(back.open()) << format;
        while (!back.ended()) back.advance(played);
        EXPECT_EQ(played.shown, (Bytes{0, 1, 5})) << format;
        EXPECT_EQ(back.counters().problems, 0u) << format;
    }
    EXPECT_EQ(record("/dev/full", "candump"), std::strerror(ENOSPC));
    EXPECT_NE(record(source.name(), "candump"), "") << "it would be emptied";
}

}  // namespace
}  // namespace vistel
