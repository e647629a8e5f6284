#include "monitor/player.h"

#include <vector>

#include "host/temporary_recording.h"

namespace vistel {
namespace {

/// A player on a recording.
struct Played {
    explicit Played(const std::string& text, double speed, bool loop = false)
        : file(text), player({.file = file.name(), .format = {}, .speed = speed, .loop = loop}) {
        std::string error;
        EXPECT_TRUE(player.open(error)) << error;
    }
    void play() {
        while (!player.ended()) player.advance(latest);
    }
    std::vector<N2KMsg> shown() {
        std::vector<N2KMsg> messages;
        latest.show_pending([&](const N2KMsg& msg) { messages.push_back(msg); });
        return messages;
    }

    test::TemporaryRecording file;
    Player player;
    LatestMessages latest;
};

TEST(Player, HandsOverTheLatestOfEachStream) {
    // Two streams of 127505 (tanks 1 and 2), and one of 129025.
    Played played(
        "00:00:00.00,6,127505,5,255,8,01,00,00,ff,ff,ff,ff,ff\n"
        "00:00:00.10,2,129025,3,255,8,00,00,00,00,00,00,00,00\n"
        "00:00:00.20,6,127505,5,255,8,01,10,27,ff,ff,ff,ff,ff\n"
        "00:00:00.30,6,127505,5,255,8,02,20,4e,ff,ff,ff,ff,ff\n"
        "nonsense\n",
        0);
    played.play();
    const auto messages = played.shown();
    ASSERT_EQ(messages.size(), 3u);
    EXPECT_EQ(messages[0].data[1], 0x10);  // the later one, in the earlier one's place
    EXPECT_EQ(messages[0].time_stamp, 20u);
    EXPECT_EQ(messages[1].pgn, 129025u);
    EXPECT_EQ(messages[2].data[0], 2);
    const PlayCounters& counters = played.player.counters();
    EXPECT_EQ(counters.messages, 4u);
    EXPECT_EQ(counters.replaced, 1u);
    EXPECT_EQ(counters.problems, 1u);
    EXPECT_TRUE(played.shown().empty());
    EXPECT_FALSE(played.latest.put(messages[0])) << "the one before was shown";
    EXPECT_EQ(played.shown().size(), 1u);
}

TEST(Player, CountsWhatTooManyStreamsPushOut) {
    Played played(test::batteries(4200), 0);
    played.play();
    EXPECT_EQ(played.latest.dropped(), 4096u);
    EXPECT_EQ(played.shown().size(), 4200 - 4096u);
    EXPECT_EQ(played.player.counters().replaced, 0u);
    played.latest.clear();
    EXPECT_EQ(played.latest.dropped(), 0u);
}

TEST(Player, WaitsForWhatIsNotDueAndStandsStillWhilePaused) {
    Played played(
        "00:00:00.00,2,127250,7,255,8,01,10,27,ff,7f,ff,7f,fd\n"
        "01:00:00.00,2,127250,7,255,8,02,10,27,ff,7f,ff,7f,fd\n",
        1);
    const std::size_t counts[] = {0, 1, 0};  // paused, the first, the second is due in an hour
    for (std::size_t i = 0; i < 3; ++i) {
        played.player.pause(i == 0);
        played.player.advance(played.latest);
        EXPECT_EQ(played.shown().size(), counts[i]);
    }
    EXPECT_FALSE(played.player.ended());
}

TEST(Player, LoopsUntilStopped) {
    Played played(
        "00:00:00.00,2,127250,7,255,8,01,10,27,ff,7f,ff,7f,fd\n"
        "00:00:00.05,2,127250,7,255,8,02,10,27,ff,7f,ff,7f,fd\n",
        1, true);
    const auto start = std::chrono::steady_clock::now();
    while (played.player.counters().messages < 6) played.player.advance(played.latest);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150)) << "at the same pace";
    EXPECT_FALSE(played.player.ended());
    Played nothing("", 0, true);
    nothing.play();  // or it would open the file for ever
    EXPECT_EQ(nothing.player.counters().messages, 0u);
}

}  // namespace
}  // namespace vistel
