#include "monitor/player.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <vector>

namespace vistel {
namespace {

/// A recording in a file of its own.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::string& text) {
        const int descriptor = ::mkstemp(name_);
        EXPECT_EQ(::write(descriptor, text.data(), text.size()), static_cast<ssize_t>(text.size()));
        ::close(descriptor);
    }
    ~TemporaryFile() { ::unlink(name_); }
    const char* name() const { return name_; }

  private:
    char name_[32] = "/tmp/player_test_XXXXXX";
};

std::vector<N2KMsg> shown(LatestMessages& latest) {
    std::vector<N2KMsg> messages;
    latest.show_pending([&messages](const N2KMsg& msg) { messages.push_back(msg); });
    return messages;
}

TEST(Player, HandsOverTheLatestOfEachStream) {
    // Two streams of 127505 (tanks 1 and 2), and one of 129025.
    const TemporaryFile file(
        "00:00:00.00,6,127505,5,255,8,01,00,00,ff,ff,ff,ff,ff\n"
        "00:00:00.10,2,129025,3,255,8,00,00,00,00,00,00,00,00\n"
        "00:00:00.20,6,127505,5,255,8,01,10,27,ff,ff,ff,ff,ff\n"
        "00:00:00.30,6,127505,5,255,8,02,20,4e,ff,ff,ff,ff,ff\n"
        "nonsense\n");
    Player player({.file = file.name(), .format = {}, .speed = 0});
    std::string error;
    ASSERT_TRUE(player.open(error)) << error;
    LatestMessages latest;
    while (!player.ended()) player.advance(latest);

    const auto messages = shown(latest);
    ASSERT_EQ(messages.size(), 3u);
    EXPECT_EQ(messages[0].data[1], 0x10);  // the later one, in the earlier one's place
    EXPECT_EQ(messages[0].time_stamp, 20u);
    EXPECT_EQ(messages[1].pgn, 129025u);
    EXPECT_EQ(messages[2].data[0], 2);
    EXPECT_EQ(player.counters().messages, 4u);
    EXPECT_EQ(player.counters().replaced, 1u);
    EXPECT_EQ(player.counters().problems, 1u);
    EXPECT_TRUE(shown(latest).empty());
}

TEST(Player, CountsWhatTooManyStreamsPushOut) {
    std::string text;
    const int sources = 252, instances = 17;  // of batteries: 4,284 streams
    for (int i = 0; i < sources * instances; ++i) {
        char line[64];
        std::snprintf(line, sizeof line, "00:00:00.00,6,127508,%d,255,8,%02x,ff,ff,ff,ff,ff,ff,ff\n",
                      i % sources, i / sources);
        text += line;
    }
    const TemporaryFile file(text);
    Player player({.file = file.name(), .format = {}, .speed = 0});
    std::string error;
    ASSERT_TRUE(player.open(error)) << error;
    LatestMessages latest;
    while (!player.ended()) player.advance(latest);
    EXPECT_EQ(latest.dropped(), 4096u);
    EXPECT_EQ(shown(latest).size(), sources * instances - 4096u);
    EXPECT_EQ(player.counters().replaced, 0u);
    latest.clear();
    EXPECT_EQ(latest.dropped(), 0u);
}

TEST(Player, WaitsForWhatIsNotDueAndStandsStillWhilePaused) {
    const TemporaryFile file(
        "00:00:00.00,2,127250,7,255,8,01,10,27,ff,7f,ff,7f,fd\n"
        "01:00:00.00,2,127250,7,255,8,02,10,27,ff,7f,ff,7f,fd\n");
    Player player({.file = file.name(), .format = {}, .speed = 1});
    std::string error;
    ASSERT_TRUE(player.open(error)) << error;
    LatestMessages latest;
    player.pause(true);
    player.advance(latest);
    EXPECT_TRUE(shown(latest).empty());
    player.pause(false);
    player.advance(latest);
    EXPECT_EQ(shown(latest).size(), 1u);
    player.advance(latest);  // the second is due in an hour
    EXPECT_TRUE(shown(latest).empty());
    EXPECT_FALSE(player.ended());
}

TEST(Player, LoopsUntilStopped) {
    const TemporaryFile file("00:00:00.00,2,127250,7,255,8,01,10,27,ff,7f,ff,7f,fd\n");
    Player player({.file = file.name(), .format = {}, .speed = 0, .loop = true});
    std::string error;
    ASSERT_TRUE(player.open(error)) << error;
    LatestMessages latest;
    while (player.counters().messages < 3) player.advance(latest);
    EXPECT_FALSE(player.ended());
    const TemporaryFile empty("");
    Player nothing({.file = empty.name(), .format = {}, .speed = 0, .loop = true});
    ASSERT_TRUE(nothing.open(error)) << error;
    while (!nothing.ended()) nothing.advance(latest);  // or it would open the file for ever
    EXPECT_EQ(nothing.counters().messages, 0u);
}

}  // namespace
}  // namespace vistel
