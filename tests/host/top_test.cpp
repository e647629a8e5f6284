#include "terminal/top.h"

#include <gmock/gmock.h>

#include "host/descriptors.h"
#include "host/playing.h"
#include "host/temporary_recording.h"

namespace vistel {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// `vistel top` on a recording, with a clock that the test turns.
struct Shown {
    explicit Shown(const std::string& text, StreamFilter filter = {})
        : file(text),
          player(test::playing({file.name()}), [this] { return clock; }),
          top(player, {{"default", {}}, {"si", pgn_vistel::core::UnitSelection::si()}}, std::move(filter)) {
        EXPECT_TRUE(player.open());
    }
    void turn(std::chrono::milliseconds time) {
        clock += time;
        top.advance();
    }
    std::vector<std::string> lines(int width = 80, int height = 24) {
        std::vector<std::string> texts;
        for (const PageLine& line : top.page(width, height)) {
            EXPECT_LE(line.width(), std::max(width, 0)) << line.text();
            EXPECT_EQ(line.width(), columns_of(line.text())) << line.text();
            texts.push_back(line.text());
        }
        EXPECT_EQ(texts.size(), static_cast<std::size_t>(std::max(height, 2)));
        return texts;
    }
    std::string line(std::size_t number) { return lines().at(number); }
    std::string all() {
        std::string text;
        for (const std::string& line : lines()) text += line + "\n";
        return text;
    }
    void type(std::string_view keys) {
        for (const char key : keys) EXPECT_TRUE(top.press(static_cast<std::uint32_t>(key)));
    }

    Player::Clock::time_point clock{};
    test::TemporaryRecording file;
    Player player;
    Top top;
};

std::string every_second(int count, const char* rest) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        char line[80];
        std::snprintf(line, sizeof line, "00:00:%02d,2,%s\n", i, rest);
        text += line;
    }
    return text;
}

TEST(Top, ShowsStreamsWithTheirRatesAndAges) {
    Shown shown("00:00:00,2,127250,7,255,8,00,00,00,ff,7f,ff,7f,fd\n" +
                every_second(12, "128267,4,255,8,00,2c,01,00,00,ff,7f,ff"));
    shown.turn(0ms);
    for (int i = 0; i < 8; ++i) shown.turn(1000ms);
    EXPECT_THAT(shown.line(0), StartsWith(" 2 devices · 2 streams · 1/s · "));
    EXPECT_THAT(shown.line(2),
                StartsWith(" 127250   7      -  8.0s Vessel Heading  Heading Sensor Reading 0.0000"));
    EXPECT_THAT(shown.line(3), StartsWith(" 128267   4  1.0/s  0.0s Water Depth  "));
    const Page page = shown.top.page(80, 24);
    EXPECT_EQ(page[2].pieces()[0].style, Style::marked) << "the cursor";
    shown.type("o");
    EXPECT_THAT(shown.line(1), HasSubstr("(by PGN)"));
    EXPECT_TRUE(shown.top.press(key_down));
    EXPECT_EQ(shown.top.page(80, 24)[3].pieces()[0].style, Style::marked);
    shown.type("s");
    EXPECT_THAT(shown.line(0), StartsWith(" 2 devices · 1 of 2 streams · "));
    EXPECT_THAT(shown.line(2), StartsWith(" 128267"));
    shown.type("s/DUCER: 9.8");
    EXPECT_THAT(shown.line(0), StartsWith(" 2 devices · 1 of 2 streams · "));
    EXPECT_THAT(shown.line(23), StartsWith(" filter: DUCER: 9.8_"));
    for (const std::uint32_t key :
         std::initializer_list<std::uint32_t>{key_backspace, 0xB0, key_backspace, key_enter})
        EXPECT_TRUE(shown.top.press(key));
    EXPECT_THAT(shown.line(23), StartsWith(" filter: DUCER: 9. "));
    EXPECT_FALSE(shown.top.press('q'));
}

TEST(Top, ShowsAMessageInFullInTheUnitsWanted) {
    Shown shown("00:00:00,2,127250,7,255,9,00,10,27,ff,7f,ff,7f,fd,AA\n");
    shown.turn(0ms);
    shown.lines();
    EXPECT_TRUE(shown.top.press(key_enter));
    EXPECT_THAT(shown.all(), AllOf(HasSubstr(" 127250 Vessel Heading"), HasSubstr("2.0+16  10 27"),
                                   HasSubstr("8.0+2  01"), HasSubstr("8.2+6  3F"), HasSubstr("57.296 °M")));
    shown.type("u");
    EXPECT_THAT(shown.all(), AllOf(HasSubstr("1.0000 Rad"), HasSubstr(" Data AA")));
    EXPECT_TRUE(shown.top.press(key_escape));
    EXPECT_THAT(shown.line(2), StartsWith(" 127250"));
    shown.type("h");
    EXPECT_THAT(shown.all(), HasSubstr("this page"));
}

TEST(Top, ShowsTheDevicesAndWhatOneOfThemSends) {
    Shown shown("00:00:00,6,60928,35,255,8,79,53,22,FA,00,A0,64,C0\n" +
                every_second(2, "127250,35,255,8,00,00,00,ff,7f,ff,7f,fd") +
                every_second(2, "127251,7,255,8,00,00,00,ff,7f,ff,7f,fd"));
    shown.turn(0ms);
    shown.turn(1000ms);
    shown.type("d");
    EXPECT_THAT(shown.line(1), StartsWith(" Addr Device"));
    EXPECT_THAT(shown.line(2), HasSubstr("   7 "));
    EXPECT_THAT(shown.line(2), HasSubstr("unknown at 7"));
    EXPECT_THAT(shown.line(3), HasSubstr("  35 2001 Engine Gateway "));
    EXPECT_THAT(shown.line(3), HasSubstr(" 3.0/s "));
    EXPECT_THAT(shown.line(0), HasSubstr(" · 0.3 % of the bus · "));
    EXPECT_TRUE(shown.top.press(key_down));
    shown.lines();
    EXPECT_TRUE(shown.top.press(key_enter));
    EXPECT_THAT(shown.line(0), HasSubstr(" 2 devices · 2 of 3 streams · "));
    EXPECT_TRUE(shown.top.press(key_enter));
    EXPECT_THAT(shown.line(2), StartsWith(" 2001 Engine Gateway"));
}

TEST(Top, KeepsBusesApart) {
    Shown shown(
        "(1.0) can0 09F11207#05102700FF7FFF7F\n(1.0) boat 09F11207#05EC3D00FF7FFF7F\n"
        "(1.0) boat 09F80107#00000000FFFFFF7F\n(2.0) can0 09F11207#05102700FF7FFF7F\n"
        "(2.0) boat 09F80107#00000000FFFFFF7F\n");
    shown.turn(0ms);
    shown.turn(1000ms);
    EXPECT_THAT(shown.line(0), HasSubstr(" · 0.2 % of the busiest bus · "));
    EXPECT_THAT(shown.line(0), HasSubstr(" 2 devices · 3 streams · "));
    EXPECT_THAT(shown.line(2), StartsWith(" 127250   7 can0  1.0/s  0.0s Vessel Heading  "));
    EXPECT_THAT(shown.line(3), StartsWith(" 127250   7 boat      -  1.0s Vessel Heading  "));
    shown.type("b");
    EXPECT_THAT(shown.line(0), HasSubstr(" 1 device · 1 of 3 streams · "));
    shown.type("b");
    EXPECT_THAT(shown.line(2), StartsWith(" 127250   7 boat "));
    EXPECT_THAT(shown.line(23), HasSubstr("bus: boat"));
    shown.type("bd");
    EXPECT_THAT(shown.line(3), AllOf(StartsWith(" boat    7 "), HasSubstr(" unknown at 7")));
    EXPECT_TRUE(shown.top.press(key_down));
    shown.lines();
    EXPECT_TRUE(shown.top.press(key_enter));
    EXPECT_THAT(shown.line(0), HasSubstr(" 1 device · 2 of 3 streams · ")) << "of this bus";
    shown.type("s");
    EXPECT_THAT(shown.line(0), HasSubstr(" 2 devices · 3 streams · "));
}

TEST(Top, TellsBusesOfLongNamesApart) {
    Shown shown(
        "(1.0) gateway-at-the-chart-table-1 09F11207#05102700FF7FFF7F\n"
        "(1.0) gateway-at-the-chart-table-2 09F11207#05EC3D00FF7FFF7F\n");
    shown.turn(0ms);
    EXPECT_THAT(shown.line(2), HasSubstr(" ~-chart-table-1 "));
    EXPECT_THAT(shown.line(3), HasSubstr(" ~-chart-table-2 "));
}

TEST(Top, CountsTheLossesOfADevice) {
    Shown shown("(1.0) can0 19F01423#0086010203040506\n(1.1) can0 09F11207#05102700FF7FFF7F\n(1.0) noise\n");
    shown.turn(0ms);
    shown.turn(1000ms);
    shown.turn(1000ms);
    EXPECT_THAT(shown.line(0), HasSubstr(" · 1 stream · 0/s · at 100 % · 1 incomplete · 1 error"));
    shown.type("l");
    EXPECT_THAT(shown.all(), HasSubstr("incomplete fast packets                   1\n"));
    EXPECT_THAT(shown.all(), HasSubstr(" 126996   35       19         0         0  Product Information\n"));
    shown.type("l");
    shown.type("d");
    EXPECT_THAT(shown.line(2), Not(HasSubstr("lost")));
    EXPECT_THAT(shown.line(3), HasSubstr(" unknown at 35, lost: 1"));
}

TEST(Top, AsksNothingOfAPipeAndForgetsWhatAPauseKept) {
    int ends[2];
    ASSERT_EQ(open_pipe(ends), 0);
    const std::string heading = "00:00:00,2,127250,7,255,8,00,00,00,ff,7f,ff,7f,fd\n";
    ASSERT_EQ(::write(ends[1], heading.data(), heading.size()), static_cast<ssize_t>(heading.size()));
    ::close(ends[1]);
    PlayOptions options = test::playing({"/dev/fd/" + std::to_string(ends[0])});
    options.input.sends = true;
    Player player(options);
    ASSERT_TRUE(player.open());
    Top top(player, {{"default", {}}}, {});
    top.advance();
    EXPECT_THAT(top.page(120, 24)[0].text(), HasSubstr(" · only a live source can be sent something"));
    for (const char key : {' ', 'c'}) EXPECT_TRUE(top.press(static_cast<std::uint32_t>(key)));
    EXPECT_THAT(top.page(120, 24)[0].text(), StartsWith(" PAUSED · END · 1 device · 0 streams"));
    ::close(ends[0]);
}

TEST(Top, SaysThatItIsPaused) {
    Shown paused(every_second(3, "127250,7,255,8,00,00,00,ff,7f,ff,7f,fd"),
                 {.pgns = {127251}, .sources = {}, .text = {}});
    paused.turn(0ms);
    paused.type(".");
    EXPECT_EQ(paused.player.counters().messages, 1u) << "steps are for what stands still";
    paused.type(" ");
    EXPECT_THAT(paused.line(0), StartsWith(" PAUSED · 1 device · 0 of 1 stream"));
    paused.turn(1000ms);
    EXPECT_EQ(paused.player.counters().messages, 1u);
    paused.type(".");
    EXPECT_EQ(paused.player.counters().messages, 2u);
    paused.type("c");
    EXPECT_THAT(paused.line(0), StartsWith(" PAUSED · 1 device · 0 streams"));
    paused.type(" ");
    EXPECT_THAT(paused.line(0), Not(HasSubstr("PAUSED")));
}

TEST(Top, FitsIntoAnyTerminal) {
    Shown shown(test::batteries(300));
    shown.turn(0ms);
    shown.lines();
    EXPECT_TRUE(shown.top.press(key_end));
    EXPECT_EQ(shown.top.page(80, 24).at(22).pieces().at(0).style, Style::marked) << "the last one";
    const std::vector<std::uint32_t> keys = {
        key_end,    key_page_up, key_enter, key_page_down, 'h',       key_home, '/', 0xB0, 'x',
        key_escape, key_down,    'c',       key_down,      key_enter, '<',      's', 'o',  'u'};
    for (const std::uint32_t key : keys) {
        EXPECT_TRUE(shown.top.press(key));
        for (const auto& [width, height] : {std::pair(80, 24), {1, 1}, {0, 0}, {10, 3}, {300, 100}})
            shown.lines(width, height);
    }
}

}  // namespace
}  // namespace vistel
