#include "monitor/player.h"

#include <vector>

#include "host/temporary_recording.h"

namespace vistel {
namespace {

using Milliseconds = std::chrono::milliseconds;

/// A player on a recording.
struct Played {
    explicit Played(const std::string& text, double speed, bool loop = false)
        : file(text), player({.file = file.name(), .format = {}, .speed = speed, .loop = loop}) {
        std::string error;
        EXPECT_TRUE(player.open(error)) << error;
    }
    std::vector<N2KMsg> shown() {
        std::vector<N2KMsg> messages;
        latest.show_pending([&](const N2KMsg& msg) { messages.push_back(msg); });
        return messages;
    }
    /// Plays up to so many messages, or to the end, or as long as may be. How long it takes.
    Milliseconds play(std::uint64_t messages = UINT64_MAX, Milliseconds most = limit) {
        const auto start = std::chrono::steady_clock::now();
        const auto taken = [start] { return std::chrono::steady_clock::now() - start; };
        while (!player.ended() && player.counters().messages < messages && taken() < most)
            player.advance(latest);
        return std::chrono::duration_cast<Milliseconds>(taken());
    }

    static constexpr Milliseconds limit{10'000};
    test::TemporaryRecording file;
    Player player;
    LatestMessages latest;
};

TEST(Player, HandsOverTheLatestOfEachStream) {
    // Two streams of 127505 (tanks 1 and 2), and one of 129025 from each of two sources.
    Played played(
        "00:00:00.00,6,127505,5,255,8,01,00,00,ff,ff,ff,ff,ff\n"
        "00:00:00.10,2,129025,3,255,8,00,00,00,00,00,00,00,00\n"
        "00:00:00.20,6,127505,5,255,8,01,10,27,ff,ff,ff,ff,ff\n"
        "00:00:00.30,6,127505,5,255,8,02,20,4e,ff,ff,ff,ff,ff\n"
        "00:00:00.40,2,129025,4,255,8,00,00,00,00,00,00,00,00\n"
        "nonsense\n",
        0);
    played.play();
    const auto messages = played.shown();
    ASSERT_EQ(messages.size(), 4u);
    EXPECT_EQ(messages[0].data[1], 0x10);  // the later one, in the earlier one's place
    EXPECT_EQ(messages[0].time_stamp, 20u);
    EXPECT_EQ(messages[2].data[0], 2);
    EXPECT_EQ(messages[3].source, 4);
    const PlayCounters& counters = played.player.counters();
    EXPECT_EQ(counters.messages, 5u);
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

// Each waits for the clock, so a busy machine can only make it last longer.
TEST(Player, KeepsTheRecordingsPace) {
    const std::string far = "00:00:00,2,127250,7,255,0,\n01:00:00,2,127250,7,255,0,\n";
    const std::string near = "00:00:00,2,127250,7,255,0,\n00:00:00.15,2,127250,7,255,0,\n";
    EXPECT_GE(Played(near, 1).play(), Milliseconds(150));
    EXPECT_GE(Played(near, 0.5).play(), Milliseconds(300));
    EXPECT_LT(Played(far, 36'000).play(), Played::limit) << "an hour in a tenth of a second";
    Played looped(near, 1, true);
    EXPECT_GE(looped.play(6), Milliseconds(450)) << "each round at the same pace";
    EXPECT_FALSE(looped.player.ended());
    Played nothing("", 0, true);
    nothing.play(1, Milliseconds(1000));
    EXPECT_TRUE(nothing.player.ended()) << "or it would open the file for ever";

    // Paused, the recording's time stands still.
    Played paused(near, 1);
    paused.player.pause(true);
    paused.player.advance(paused.latest);
    EXPECT_TRUE(paused.shown().empty());
    paused.player.pause(false);
    const Milliseconds before = paused.play(1);
    paused.player.pause(true);
    const Milliseconds pause = paused.play(2, Milliseconds(200));
    paused.player.pause(false);
    EXPECT_GE(before + pause + paused.play(), Milliseconds(340));
}

}  // namespace
}  // namespace vistel
