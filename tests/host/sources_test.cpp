// Live sources against devices that the test plays: sockets of this machine, pseudo-terminals, made-up
// frames.
#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/can.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "can/identifier.h"
#include "commands/record.h"
#include "host/recording_contents.h"
#include "host/temporary_recording.h"
#include "inputs/inputs.h"
#include "readers/stream_capture.h"
#include "sources/can_reader.h"
#include "sources/gateway.h"
#include "sources/link_watch.h"
#include "sources/outlet.h"
#include "sources/source.h"
#include "sources/source_name.h"

namespace vistel {
namespace {

using namespace std::chrono_literals;
using namespace std::string_view_literals;

TEST(SourceNames, WhatTheyStandFor) {
    using Kind = SourceName::Kind;
    struct Case {
        const char* text;
        Kind kind;
        const char* target;
        unsigned port, speed;
        GatewayKind gateway;
    };
    for (const Case& c : {
             Case{"-", Kind::file, "-", 0, 0, GatewayKind::none},
             {"none.log", Kind::file, "none.log", 0, 0, GatewayKind::none},
             {"canal.log", Kind::file, "canal.log", 0, 0, GatewayKind::none},
             {"can", Kind::file, "can", 0, 0, GatewayKind::none},
             {"can0", Kind::can, "can0", 0, 0, GatewayKind::none},
             {"vcan12", Kind::can, "vcan12", 0, 0, GatewayKind::none},
             {"slcan0", Kind::can, "slcan0", 0, 0, GatewayKind::none},
             {"can:nmea", Kind::can, "nmea", 0, 0, GatewayKind::none},
             {"tcp://gw:1457", Kind::tcp, "gw", 1457, 0, GatewayKind::none},
             {"tcp://[::1]:65535?gateway=ngt1", Kind::tcp, "::1", 65535, 0, GatewayKind::ngt1},
             {"tcp-listen://:60002", Kind::tcp_listen, "", 60002, 0, GatewayKind::none},
             {"udp://:2000", Kind::udp, "", 2000, 0, GatewayKind::none},
             {"serial:/dev/none", Kind::serial, "/dev/none", 0, 115200, GatewayKind::recognised},
             {"serial:COM3?gateway=ikonvert", Kind::serial, "COM3", 0, 230400, GatewayKind::ikonvert},
             {"serial:x?speed=9600&gateway=none", Kind::serial, "x", 0, 9600, GatewayKind::none},
         }) {
        auto name = parse_source(c.text);
        ASSERT_TRUE(name) << c.text;
        EXPECT_EQ(std::tuple(name->kind, name->target, name->port, name->speed, name->gateway),
                  std::tuple(c.kind, c.target, c.port, c.speed, c.gateway))
            << c.text;
    }
    const std::pair<const char*, const char*> wrong[] = {
        {"tcp://gw", "has no port"},
        {"tcp://gw:0", "has no port"},
        {"tcp://gw:65536", "has no port"},
        {"tcp://:1457", "has no host"},
        {"udp://:1x", "has no port"},
        {"serial:", "names no device"},
        {"serial:x?speed=0", "no speed '0'"},
        {"serial:x?gateway=gw", "no gateway 'gw'"},
        {"can:c?speed=1", "no setting 'speed=1'"},
        {"tcp://gw:1?=", "no setting '='"},
    };
    for (const auto& [text, told] : wrong) {
        const auto name = parse_source(text);
        ASSERT_FALSE(name) << text;
        EXPECT_NE(name.error().text.find(told), std::string::npos) << name.error().text;
    }
}

/// What is said to a gateway and to the user.
struct Heard final : Gateway::Side {
    void send(std::string_view bytes) override { sent += bytes; }
    void tell(const std::string& text) override { told += text + "\n"; }
    bool wants_to_send() const override { return sends; }
    std::string sent, told;
    bool sends = false;
};

constexpr std::string_view ngt_filtered = "\x10\x02\xA1\x03\x11\x01\x00\x4A\x10\x03"sv;
constexpr std::string_view ngt_all = "\x10\x02\xA1\x03\x11\x02\x00\x49\x10\x03"sv;
/// Answers of an NGT-1 to the two, with the doubled escape in the serial number of the second one.
constexpr std::string_view ngt_is_filtered =
    "\x10\x02\xA0\x0E\x11\x01\x0E\x00\x01\x02\x03\x04\x00\x00\x00\x00\x01\x00\x18\x10\x03"sv;
constexpr std::string_view ngt_is_open =
    "\x10\x02\xA0\x0E\x11\x02\x0E\x00\x10\x10\x02\x03\x04\x00\x00\x00\x00\x02\x00\x07\x10\x03"sv;
constexpr std::string_view ngt_heading =
    "\x10\x02\x93\x13\x02\x12\xF1\x01\xFF\x23\x00\x00\x00\x00\x08\x00\x39\x30\x00\x00\xFF\x7F\xFD\x46\x10\x03"sv;

TEST(Gateways, AreAskedForWhatTheyHoldBack) {
    struct Step {
        std::chrono::milliseconds at;
        std::string_view comes;  // nothing: time passes
        std::string_view sent;
        bool traffic = false;
        std::string_view told = {};
        std::string_view state = {};
    };
    struct Case {
        GatewayKind kind;
        std::vector<Step> steps;  // the first one connects
        bool sends = false;
    };
    const std::string_view offline = "$PDGY,N2NET_OFFLINE\r\n", all = "$PDGY,N2NET_INIT,ALL\r\n";
    std::string off_the_bus;
    for (int i = 0; i < 10; ++i) off_the_bus += "$PDGY,000000,,,,,,\r\n";
    for (const Case& c : {
             Case{GatewayKind::ngt1,
                  {{0ms, "", ngt_filtered, false, "", "does not answer"},
                   {10ms, ngt_is_filtered.substr(0, 9), ""},
                   {20ms, ngt_is_filtered.substr(9), ngt_all, false, "", "not confirm its mode"},
                   {30ms, ngt_is_open, "", false, "", "answers, but has no traffic"},
                   {40ms, ngt_heading, "", true},
                   {15s, "", ""},
                   {21s, "", ngt_all},  // it may have lost its power
                   {42s, "", ngt_all}}},
             Case{GatewayKind::ngt1,
                  {{0ms, "", ngt_filtered},
                   {1s, ngt_heading, "", true},
                   {3s, "", ngt_all},
                   {6s, "", ngt_filtered},
                   {9s, "", ngt_all},
                   {12s, "", ngt_filtered, false, "the gateway does not confirm"},
                   {15s, "", ngt_all},
                   {16s, ngt_is_open, "", false, "the gateway confirms"}}},
             Case{GatewayKind::ikonvert,
                  {{0ms, "", offline},
                   {10ms, "$PDGY,TEXT,Digital Yacht\r\n$PDGY,0000", all},
                   {20ms, "00,,,,,,\r\n$PDGY,ACK,N2NET_INIT,ALL\r\n", "", false, "", "not on the bus"},
                   {1s, "!PDGY,127250,2,1,255,0.1,ADkwAAD/f/0=\r\n", "", true},
                   {2s, "$PDGY,000000,4,0,3,17,50,0\r\n", "", false, "", "answers, but has no traffic"},
                   {20s, off_the_bus, offline, false, "the gateway is not on the bus"}}},
             Case{GatewayKind::ikonvert, {{0ms, "", offline}, {5s, "", all}, {10s, "", offline}}},
             Case{GatewayKind::slcan,
                  {{0ms, "", "\rC\r", false, "", "does not answer"},
                   {1ms, "\r", "S5\r"},
                   {2ms, "\r", "L\r"},
                   {3ms, "\a", "O\r"},  // it cannot only listen
                   {4ms, "\r", "", false, "", "answers, but has no traffic"},
                   {5ms, "T09F11223800393", "", false},
                   {6ms, "00000FF7FFD\r", "", true},
                   {60s, "", ""}}},
             Case{GatewayKind::slcan,  // one that answers nothing
                  {{0ms, "", "\rC\r"},
                   {500ms, "", "S5\r"},
                   {1s, "", "L\r"},
                   {1100ms, "T09F1122380039300000FF7FFD\r", "", true},
                   {60s, "", ""}}},
             Case{GatewayKind::slcan,
                  {{0ms, "", "\rC\r"},
                   {1ms, "\r", "S5\r"},
                   {2ms, "\r", "O\r"},
                   {3ms, "\r", ""},
                   {60s, "", ""}},
                  true},
             Case{GatewayKind::ydnu,
                  {{0ms, "", "0\n"},
                   {1s, "$GPGLL,,,,,,V,N*64\r\n", "", false, "", "other things"},
                   {5s, "", "0\n"},
                   {6s, "19:07:21.014 R 09F8017F 50 C3 9E 2C\r\n", "", true},
                   {60s, "", ""}}},
             Case{GatewayKind::recognised,
                  {{0ms, "", ""},
                   {1s, "$GPGLL,,,,,,V,N*64\r\n", "", true, "", "?gateway="},
                   {2s, "$PDGY,TEXT,Digital Yacht\r\n", "$PDGY,N2NET_OFFLINE\r\n$PDGY,N2NET_INIT,ALL\r\n"}}},
             Case{GatewayKind::recognised, {{0ms, "", ""}, {2s, ngt_heading, ngt_filtered, true}}},
         }) {
        Heard heard;
        heard.sends = c.sends;
        const auto gateway = make_gateway(c.kind, heard);
        const Gateway::Time start{1h};
        for (const Step& step : c.steps) {
            SCOPED_TRACE(std::to_string(static_cast<int>(c.kind)) + " at " + std::to_string(step.at.count()));
            heard.sent = heard.told = "";
            if (&step == c.steps.data())
                gateway->connected(start);
            else if (step.comes.empty())
                gateway->elapsed(start + step.at);
            else
                EXPECT_EQ(gateway->received(step.comes, start + step.at), step.traffic);
            EXPECT_EQ(heard.sent, step.sent);
            EXPECT_EQ(heard.told.substr(0, step.told.size()), step.told);
            EXPECT_EQ(heard.told.empty(), step.told.empty()) << heard.told;
            EXPECT_NE(gateway->state().find(step.state), std::string::npos) << gateway->state();
        }
    }
}

/// A descriptor that is closed in the end.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) { EXPECT_GE(number, 0); }
    ~Descriptor() { ::close(number_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    operator int() const { return number_; }

    void put(std::string_view bytes) const {
        ASSERT_EQ(::write(number_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    /// What comes within a short time.
    std::string get() const {
        pollfd request{number_, POLLIN, 0};
        char room[256];
        const ssize_t size = ::poll(&request, 1, 0) > 0 ? ::read(number_, room, sizeof room) : 0;
        return {room, static_cast<std::size_t>(std::max<ssize_t>(0, size))};
    }

  private:
    int number_;
};

sockaddr_in here(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

const sockaddr* generic(const sockaddr_in& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

/// A bound socket and its port.
struct Bound {
    explicit Bound(int type, std::uint16_t wanted = 0) : socket(::socket(AF_INET, type, 0)) {
        const int on = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_in address = here(wanted);
        EXPECT_EQ(::bind(socket, generic(address), sizeof address), 0);
        socklen_t size = sizeof address;
        ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
        port = ntohs(address.sin_port);
        EXPECT_TRUE(type != SOCK_STREAM || ::listen(socket, 4) == 0);
    }
    bool is_asked() const {
        pollfd request{socket, POLLIN, 0};
        return ::poll(&request, 1, 0) > 0;
    }
    int accept() const { return ::accept(socket, nullptr, nullptr); }
    void send(std::string_view datagram, std::uint16_t to) const {
        const sockaddr_in address = here(to);
        ::sendto(socket, datagram.data(), datagram.size(), 0, generic(address), sizeof address);
    }
    Descriptor socket;
    std::uint16_t port = 0;
};

std::uint16_t free_port(int type) {
    return Bound(type).port;
}

/// A live source that is read until something is the case.
struct Listening {
    explicit Listening(const std::string& name, const char* format = "",
                       std::chrono::milliseconds silence = 0ms) {
        auto opened = open_source(recording, name, {.format = format, .patience_ms = 10},
                                  {.silence = silence,
                                   .first_pause = 10ms,
                                   .longest_pause = 40ms,
                                   .tell = [this](const std::string& text) { told += text + "\n"; }});
        failure = opened ? "" : opened.error().text;
        if (opened) state = *opened;
    }

    template <class Done>
    testing::AssertionResult until(Done done) {
        const auto end = std::chrono::steady_clock::now() + 20s;
        while (!done()) {
            if (std::chrono::steady_clock::now() > end)
                return testing::AssertionFailure() << messages << " messages; " << told;
            switch (recording.next(record)) {
                case ReadResult::record: ++messages; break;
                case ReadResult::problem: problems += recording.problem().text + "\n"; break;
                default: break;
            }
        }
        return testing::AssertionSuccess();
    }
    /// Sends a request of everyone's NAME, in the manner of the record that came last.
    Result<bool> ask() {
        Record question{.kind = record.kind, .bus = record.bus, .msg = {}, .time = {}};
        set_header(question.msg, 0x18EAFFFE);
        question.msg.length = 3;
        question.msg.data[1] = 0xEE;
        return state.send(question);
    }
    bool has_told(std::string_view text) const { return told.find(text) != std::string::npos; }

    Recording recording;
    SourceState state;
    Record record;
    int messages = 0;
    std::string told, problems, failure;
};

constexpr std::string_view raw_line = "19:07:21.014 R 09F8017F 50 C3 9E 2C 4A 21 B5 01\r\n";
const std::string pcdin = "$PCDIN,01F112,00000000,23,0039300000FF7FFD*5E";

TEST(Links, AreMadeAgainAndSaySoOnce) {
    Bound server(SOCK_STREAM);
    std::optional<Descriptor> gateway;
    Listening live("tcp://127.0.0.1:" + std::to_string(server.port), "", 100ms);
    ASSERT_EQ(live.failure, "");
    const auto before = std::chrono::system_clock::now().time_since_epoch();
    gateway.emplace(server.accept());
    gateway->put(raw_line);
    gateway->put(raw_line.substr(0, 30));  // a piece that would be a frame by itself
    ASSERT_TRUE(live.until([&] { return live.messages == 1; }));
    EXPECT_EQ(live.record.time.origin, RecordTime::Origin::epoch);
    EXPECT_GE(std::chrono::nanoseconds(live.record.time.nanoseconds), before);
    ASSERT_TRUE(live.until([&] { return live.has_told("connected, nothing received for 0.1 s\n"); }));
    EXPECT_FALSE(live.state.counters->is_well);

    for (int again = 0; again < 3; ++again) {  // and lost before anything came
        gateway.reset();
        ASSERT_TRUE(live.until([&] { return server.is_asked(); }));
        gateway.emplace(server.accept());
    }
    gateway->put(raw_line);
    ASSERT_TRUE(live.until([&] { return live.messages == 2; }));
    EXPECT_TRUE(live.state.counters->is_well);
    EXPECT_TRUE(live.has_told("connection lost: closed by the other side; trying again\n"));
    EXPECT_TRUE(live.has_told("receiving again after "));
    EXPECT_EQ(live.told.find("connection lost"), live.told.rfind("connection lost"));
    EXPECT_EQ(live.problems, "byte 3 `...` is not hexadecimal\n");
    EXPECT_EQ(live.state.counters->losses, 1u);
    EXPECT_GE(live.state.counters->attempts, 4u);
}

TEST(Links, AreRecordedWithTheirTimes) {
    constexpr std::int64_t start = 1'777'887'000'123'456'789, later = start + 5'000'000'000;
    std::string file;
    begin_stream_capture(file);
    append_stream_piece(file, start, raw_line.substr(0, 20));
    append_stream_piece(file, start + 1, std::string(raw_line.substr(20)) + std::string(raw_line));
    append_stream_piece(file, later, raw_line);
    const Texts times{"1777887000123456790 epoch", "1777887000123456790 epoch", "1777887005123456789 epoch"};
    for (std::size_t size = 0; size <= file.size(); ++size) {  // cut anywhere, in drops of any size
        Contents contents = read_drops(file.substr(0, size), 1 + size % 41);
        Texts& read = contents.times;
        std::erase_if(read, [](const std::string& time) { return !time.ends_with(" epoch"); });
        EXPECT_TRUE(
            std::equal(read.begin(), read.end(), times.begin(), times.begin() + std::ptrdiff_t(read.size())));
        const bool is_whole = std::ranges::none_of(
            contents.shown, [](const std::string& line) { return line.find(": ") != line.npos; });
        if (size == file.size()) {
            EXPECT_EQ(read, times);
            EXPECT_TRUE(is_whole);
        } else if (size > 40 && size != 60 && size != file.size() - raw_line.size() - 16) {
            EXPECT_FALSE(is_whole) << size;
        }
    }
}

TEST(Links, ThatAreSilentForLongAreMadeAnew) {
    Bound server(SOCK_STREAM);
    Listening live("tcp://127.0.0.1:" + std::to_string(server.port), "", 50ms);
    const Descriptor hung(server.accept());
    ASSERT_TRUE(live.until([&] { return server.is_asked(); }));
    const Descriptor gateway(server.accept());
    gateway.put(raw_line);
    ASSERT_TRUE(live.until([&] { return live.messages == 1; }));
    EXPECT_EQ(live.state.counters->losses, 0u);
    EXPECT_FALSE(live.has_told("lost"));
}

TEST(Links, ThatCannotBeMadeAreAFailure) {
    const std::string nobody = "127.0.0.1:" + std::to_string(free_port(SOCK_STREAM));
    const Bound taken(SOCK_STREAM);
    for (const std::string& name : {"tcp://" + nobody, "tcp-listen://127.0.0.1:" + std::to_string(taken.port),
                                    std::string("udp://host:1457"), std::string("serial:/dev/none"),
                                    std::string("can999"), std::string("none.log")})
        EXPECT_NE(Listening(name).failure, "") << name;
}

TEST(Links, OfDatagrams) {
    for (const std::string host : {"127.0.0.1", "239.192.17.3"}) {  // of a sender, or to a group
        const std::uint16_t datagrams = free_port(SOCK_DGRAM);
        Listening udp("udp://" + host + ":" + std::to_string(datagrams));
        if (host != "127.0.0.1" && udp.failure == std::strerror(ENODEV)) GTEST_SKIP() << "no route to groups";
        ASSERT_EQ(udp.failure, "");
        const Bound sender(SOCK_DGRAM);
        for (int i = 0; i < 2; ++i) sender.send(std::string(raw_line) + std::string(raw_line), datagrams);
        ASSERT_TRUE(udp.until([&] { return udp.messages == 4; }));
        ASSERT_TRUE(udp.ask()) << "whoever they come from";
        ASSERT_TRUE(udp.until([&] { return sender.is_asked(); }));
        EXPECT_EQ(sender.socket.get(), "18EAFFFE 00 EE 00\r\n");
    }
}

TEST(Links, OfGatewaysThatConnect) {
    const std::uint16_t port = free_port(SOCK_STREAM);
    Listening server("tcp-listen://:" + std::to_string(port), "candump");
    ASSERT_EQ(server.failure, "");
    for (unsigned i = 1; i <= 2; ++i) {
        const Descriptor gateway(::socket(AF_INET, SOCK_STREAM, 0));
        const sockaddr_in address = here(port);
        ASSERT_EQ(::connect(gateway, generic(address), sizeof address), 0);
        gateway.put(raw_line);
        ASSERT_TRUE(server.until([&] { return server.state.counters->bytes == i * raw_line.size(); }));
        ::shutdown(gateway, SHUT_RDWR);
        ASSERT_TRUE(server.until([&] { return server.state.counters->losses == i; }));
    }
    EXPECT_TRUE(server.has_told("these bytes look like yacht-devices, not like candump\n"));
}

TEST(Links, OfDatagramsThatAreLinesOrPieces) {
    const std::string line(raw_line.substr(0, raw_line.size() - 2));
    const struct {
        const char* what;
        std::vector<std::string> datagrams;
        int messages;
    } cases[] = {
        {"a line alone", {line}, 1},
        {"lines", {"# a comment", line, line, line}, 3},
        {"foreign ones among them", {"$GPGLL,,,,,,V,N*64", pcdin, "$GPGLL,,,,,,V,N*64", pcdin}, 2},
        {"pieces of lines",
         {"(1789027200.0)", " can0 18", "EAFF17#00", "EE00\n", "can0 18EAFF17#0", "0\n"},
         2},
        {"pieces of binary records",
         {std::string(ngt_heading.substr(0, 17)), std::string(ngt_heading.substr(17, 2)),
          std::string(ngt_heading.substr(19))},
         1},
    };
    for (const auto& c : cases) {
        const std::uint16_t port = free_port(SOCK_DGRAM);
        Listening live("udp://:" + std::to_string(port));
        const Bound sender(SOCK_DGRAM);
        const sockaddr_in to = here(port);
        for (const std::string& each : c.datagrams)
            ::sendto(sender.socket, each.data(), each.size(), 0, generic(to), sizeof to);
        EXPECT_TRUE(live.until([&] { return live.messages == c.messages; })) << c.what;
        EXPECT_EQ(live.problems, "") << c.what;
    }
}

TEST(Links, TellWhatTheSystemDropped) {
    const std::uint16_t port = free_port(SOCK_DGRAM);
    Listening live("udp://:" + std::to_string(port));
    const Bound sender(SOCK_DGRAM);
    constexpr int sent = 20'000;  // more than any usual buffer holds
    for (int i = 0; i < sent; ++i) sender.send(raw_line, port);
    const LinkCounters& counters = *live.state.counters;
    EXPECT_TRUE(live.until([&] {
        return static_cast<std::uint64_t>(live.messages) + counters.dropped == sent;
    })) << counters.dropped;
    EXPECT_GT(counters.dropped, 0u);
    EXPECT_TRUE(live.has_told("datagrams that the system dropped, because they were not read in time: "));
}

TEST(Links, SendFramesAsTheGatewaySpeaks) {
    const struct {
        std::string_view speaks, format, sent;
    } gateways[] = {
        {raw_line, "", "18EAFFFE 00 EE 00\r\n"},
        {"  can1  09F8017F   [8]  50 C3 9E 2C 4A 21 B5 01\n", "", "(0.000000) can1 18EAFFFE#00EE00\n"},
        {"A173321.107 23FF7 1F513 012F3070002F30709F\r\n", "", "A000000.000 FEFF6 0EA00 00EE00\r\n"},
        {"2026-09-10T08:00:00.25Z,2,127250,7,255,8,05,10,27,ff,7f,ff,7f,fd\n", "plain",
         ",6,59904,254,255,3,00,EE,00\n"},
        {"T09F1122380039300000FF7FFD\r", "slcan", "T18EAFFFE300EE00\r"},
        {"!PDGY,127250,2,1,255,0.1,ADkwAAD/f/0=\r\n", "ikonvert", "!PDGY,59904,255,AO4A\r\n"},
        {"$PCDIN,01F112,00000000,23,0039300000FF7FFD*5C\r\n", "",
         "nothing can be sent to a source that speaks pcdin"},
        {"$MXPGN,01F801,2801,C1308AC40C5DE343*19\r\n", "", "$MXPGN,00EAFF,E3FF,00EE00*12\r\n"},
        {ngt_heading, "actisense", "\x10\x02\x94\x09\x06\x00\xEA\x00\xFF\x03\x00\xEE\x00\x83\x10\x03"sv},
        {"\x10\x02\x95\x0E\x00\x00\x23\x12\xF1\x09\x00\x39\x30\x00\x00\xFF\x7F\xFD\x4A\x10\x03"sv,
         "actisense", "\x10\x02\x95\x09\x00\x00\xFE\xFF\xEA\x98\x00\xEE\x00\xF5\x10\x03"sv},
    };
    for (const auto& c : gateways) {
        auto server = std::make_unique<Bound>(SOCK_STREAM);
        Listening live("tcp://127.0.0.1:" + std::to_string(server->port), std::string(c.format).c_str());
        std::optional<Descriptor> gateway(server->accept());
        EXPECT_EQ(*live.ask(), !c.format.empty()) << "what it speaks is not known yet";
        ASSERT_TRUE(live.until([&] { return c.format.empty() || !gateway->get().empty(); }));
        gateway->put(c.speaks);
        ASSERT_TRUE(live.until([&] { return live.messages == 1 || !live.problems.empty(); })) << c.sent;
        EXPECT_EQ(gateway->get(), "") << "nothing by itself";
        const auto asked = live.ask();
        std::string sent = asked ? "" : asked.error().text;
        EXPECT_TRUE(live.until([&] { return (sent += gateway->get()).size() >= c.sent.size(); }));
        EXPECT_EQ(sent, c.sent);
        server.reset();
        gateway.reset();
        ASSERT_TRUE(live.until([&] { return live.has_told("connection lost"); }));
        EXPECT_FALSE(asked && *live.ask());
    }
}

TEST(Links, OfSerialPorts) {
    Descriptor device(::posix_openpt(O_RDWR | O_NOCTTY));
    ASSERT_EQ(::grantpt(device) | ::unlockpt(device), 0);
    const std::string port = ::ptsname(device);
    {
        Listening live("serial:" + port + "?gateway=slcan", "yacht-devices");
        ASSERT_EQ(live.failure, "");
        std::string asked;
        ASSERT_TRUE(live.until([&] { return (asked += device.get()).ends_with("C\r"); }));
        device.put("\r");
        ASSERT_TRUE(live.until([&] { return (asked += device.get()).ends_with("S5\r"); }));
        device.put(raw_line);
        ASSERT_TRUE(live.until([&] { return live.messages == 1; }));
        device.get();
        ASSERT_TRUE(live.ask());
        asked.clear();
        ASSERT_TRUE(live.until([&] { return (asked += device.get()).ends_with("\n"); }));
        EXPECT_EQ(asked, "18EAFFFE 00 EE 00\r\n");
    }
    EXPECT_EQ(device.get(), "C\r");  // the bus is closed when it is left
}

TEST(Links, TellOnceOfBytesThatAreNoFormat) {
    Descriptor device(::posix_openpt(O_RDWR | O_NOCTTY));
    ASSERT_EQ(::grantpt(device) | ::unlockpt(device), 0);
    Listening live("serial:" + std::string(::ptsname(device)) + "?speed=9600&gateway=none", "", 30ms);
    ASSERT_EQ(live.failure, "");
    device.put("\r\a");  // what an adapter answers
    ASSERT_TRUE(live.until([&] { return live.has_told("nothing received"); }));
    EXPECT_FALSE(live.recording.is_left_unknown());
    EXPECT_FALSE(live.has_told("none of"));
    device.put("\xF8\x80");
    ASSERT_TRUE(live.until([&] {
        return live.has_told(
            "4 bytes received that are none of the known formats; is 9600 the right speed?\n");
    }));
    EXPECT_FALSE(live.recording.is_left_unknown()) << "a line has begun";
    device.put("\n" + std::string(raw_line));
    ASSERT_TRUE(live.until([&] { return live.messages == 1; }));
    EXPECT_EQ(live.told.find("none of"), live.told.rfind("none of"));
}

TEST(Links, AreReadSideBySide) {
    const Bound first(SOCK_STREAM), second(SOCK_STREAM);
    const std::string names[] = {"tcp://127.0.0.1:" + std::to_string(first.port),
                                 "tcp://127.0.0.1:" + std::to_string(second.port)};
    const test::TemporaryRecording file((std::string(raw_line)));
    std::string told;
    InputOptions options;
    options.names = {names[0], names[1], "none.log", file.name()};
    Inputs inputs(options,
                  {.before_wait = {}, .tell = [&](const std::string& line) { told += line + "\n"; }});
    std::map<std::string, unsigned> came;
    std::string order, failures;
    Record record;
    const auto take = [&](auto wanted) {
        for (const auto end = std::chrono::steady_clock::now() + 20s;
             !wanted() && std::chrono::steady_clock::now() < end;) {
            switch (inputs.next(record)) {
                case Inputs::Event::begins: order += '|'; break;
                case Inputs::Event::record:
                    ++came[std::string(inputs.bus_label(record.bus))];
                    if (order.size() < 4) order += std::to_string(record.bus);
                    break;
                case Inputs::Event::problem:
                    failures += described(inputs.problem(), inputs.recording_of_problem());
                    break;
                default: break;
            }
        }
        return wanted();
    };
    ASSERT_TRUE(take([&] { return order == "|0|" && second.is_asked(); })) << "first the file: " << order;
    EXPECT_NE(failures.find("none.log: "), std::string::npos) << failures;
    EXPECT_TRUE(inputs.has_several_buses());
    std::optional<Descriptor> busy(first.accept());
    const Descriptor quiet(second.accept());
    std::string much;
    for (int i = 0; i < 2000; ++i) much += raw_line;
    busy->put(much);
    quiet.put(pcdin + "\r\n");
    EXPECT_TRUE(take([&] { return came[names[1]] == 1; }));
    EXPECT_LT(came[names[0]], 2000u) << "who has much leaves the others their turn";
    EXPECT_TRUE(take([&] { return came[names[0]] == 2000; }));
    busy.reset();
    EXPECT_TRUE(take([&] { return told.find(names[0] + ": connection lost") != std::string::npos; }));
    quiet.put(pcdin + "\r\n");
    EXPECT_TRUE(take([&] { return came[names[1]] == 2; })) << "a lost one holds up nobody";
    EXPECT_FALSE(inputs.send(record) || inputs.send(record));
    const std::string refusal = names[1] + ": nothing can be sent to a source that speaks pcdin\n";
    EXPECT_EQ(told.find(refusal), told.size() - refusal.size()) << told;
    EXPECT_EQ(inputs.links().size(), 2u);
    EXPECT_EQ(inputs.links()[0].counters->losses, 1u);
    EXPECT_EQ(came["0"], 1u);
}

/// Frames and events of an interface that the test plays, and what it does behind them.
struct PlayedSocket final : CanSocket {
    using Events = std::deque<std::pair<Received, CanFrame>>;
    Events& events;
    std::uint64_t lost;
    std::function<void()> at_end;
    PlayedSocket(Events& played, std::uint64_t drops, std::function<void()> then = {})
        : events(played), lost(drops), at_end(std::move(then)) {}
    Received receive(CanFrame& frame, int) override {
        if (events.empty()) {
            if (at_end) std::exchange(at_end, nullptr)();
            return Received::nothing;
        }
        const auto [received, next] = events.front();
        events.pop_front();
        frame = next;
        return received;
    }
    bool send(const CanFrame&) override { return false; }
    void wake(EventLoop&) override {}
    std::uint64_t dropped() const override { return lost; }
};

constexpr CanFrame heading{CanFrame::extended | 0x09F11223, 8, {0, 0x39, 0x30, 0, 0, 0xFF, 0x7F, 0xFD}, 123};

TEST(CanInterfaces, GoDownAndAreRemoved) {
    using Received = CanSocket::Received;
    CanFrame error = heading, remote = heading, standard = heading;
    error.identifier |= CanFrame::error;
    remote.identifier |= CanFrame::remote;
    standard.identifier = 0x123;
    PlayedSocket::Events events{
        {Received::frame, error},   {Received::frame, remote}, {Received::frame, standard},
        {Received::frame, heading}, {Received::down, {}},      {Received::down, {}},
        {Received::frame, heading}, {Received::removed, {}},   {Received::frame, heading},
    };
    std::string told;
    LinkOptions options;
    options.first_pause = 1ms;
    options.tell = [&](const std::string& text) { told += text + "\n"; };
    int opened = 0;
    const auto open = [&]() -> Result<std::unique_ptr<CanSocket>> {
        if (++opened == 2) return Failure{"there is no such interface"};
        return std::unique_ptr<CanSocket>(std::make_unique<PlayedSocket>(events, 7));
    };
    auto port = std::make_shared<CanPort>(open, options);
    ASSERT_TRUE(port->open());
    Recording recording;
    recording.attach(std::make_unique<CanReader>(port, RecordingOptions{.patience_ms = 100}), "socketcan");
    EXPECT_EQ(std::tuple(recording.is_file(), recording.bytes_total(), recording.format_name()),
              std::tuple(false, 0u, "socketcan"));
    Record record;
    int frames = 0;
    for (int i = 0; i < 30 && frames < 3; ++i) frames += recording.next(record) == ReadResult::record;
    EXPECT_EQ(frames, 3);
    EXPECT_EQ(std::tuple(record.msg.pgn, record.msg.source, record.msg.length, record.time.nanoseconds),
              std::tuple(127250u, 0x23, 8, 123));
    EXPECT_EQ(recording.foreign_frames(), 3u);
    const LinkCounters& counters = *port->counters();
    EXPECT_EQ(std::tuple(counters.error_frames, counters.losses, counters.attempts, counters.dropped),
              std::tuple(1u, 2u, 3u, 14u));
    for (const char* text :
         {"because they were not read in time: 7\n", "connection lost: the interface is down",
          "connection lost: the interface is gone", "receiving again after"})
        EXPECT_NE(told.find(text), std::string::npos) << text << told;
}

TEST(CanInterfaces, AreRecordedInSeveralFiles) {
    PlayedSocket::Events events(20, {CanSocket::Received::frame, heading});
    auto port = std::make_shared<CanPort>(
        [&]() -> Result<std::unique_ptr<CanSocket>> {
            return std::unique_ptr<CanSocket>(
                std::make_unique<PlayedSocket>(events, 0, [] { std::raise(SIGINT); }));
        },
        LinkOptions{});
    ASSERT_TRUE(port->open());
    Recording source;
    source.attach(std::make_unique<CanReader>(port, RecordingOptions{.patience_ms = 0}), "socketcan");
    const test::TemporaryRecording place("");
    const RecordOptions options{
        .source = "can0", .output = place.name() + ".pcap", .rotation = {.bytes = 200}, .quiet = true};
    EXPECT_EQ(record_frames(options, source, *port->counters()), 0);
    std::map<std::string, std::size_t> frames;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(place.name()).parent_path())) {
        if (!entry.path().string().starts_with(place.name() + "-")) continue;
        Recording file;
        ASSERT_TRUE(file.open(entry.path()));
        const Contents contents = drain(file);
        frames[entry.path()] = contents.times.size();
        EXPECT_EQ(contents.shown.size(), contents.times.size()) << "nothing but frames";
        EXPECT_EQ(contents.times.back(), "123 start");
        std::filesystem::remove(entry.path());
    }
    // A file has 24 bytes at its head and 32 a frame, and the one that passes the limit is the last.
    std::string sizes;
    for (const auto& [file, count] : frames) sizes += std::to_string(count) + ' ';
    EXPECT_EQ(sizes, "6 6 6 2 ");
}

TEST(RecordedFiles, AreCutBehindARecordOrAnywhereAfterLong) {
    const test::TemporaryRecording place("");
    const struct {
        Rotation rotation;
        int pieces, records;  // pieces within a record, then such that end one
        std::chrono::milliseconds behind_first;
        std::size_t files;
    } cases[] = {{{.bytes = 10}, 3, 2, 0ms, 2},
                 {{.bytes = 10}, 1'001, 0, 0ms, 1},
                 {{.bytes = 10}, 1'003, 0, 0ms, 2},
                 {{.time = 1s}, 0, 3, 1001ms, 2}};
    for (const auto& c : cases) {
        RecordedFile file(place.name(), c.rotation, "head");
        EXPECT_TRUE(file.open());
        const auto begin = std::chrono::steady_clock::now();
        std::set<std::string> names;
        for (int i = 0; i < c.pieces + c.records; ++i) {
            if (i == 1) std::this_thread::sleep_for(c.behind_first);
            EXPECT_TRUE(file.put("piece", i >= c.pieces));
            names.insert(file.current());
        }
        for (const std::string& name : names) std::filesystem::remove(name);
        const auto late = std::chrono::steady_clock::now() - begin - c.behind_first;
        const bool is_held_up = c.rotation.time > 0s && late >= c.rotation.time;
        EXPECT_TRUE(names.size() == c.files || is_held_up) << names.size();
    }
}

TEST(CanInterfaces, GiveFramesOfTheKernel) {
    EventLoop loop;  // outlives the socket
    int ends[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends), 0);
    std::optional<Descriptor> sender(ends[0]);
    const auto socket = attach_can(ends[1]);
    can_frame raw{};
    raw.can_id = CAN_EFF_FLAG | 0x09F11223;
    for (const int length : {8, 3, 0, 200}) {
        raw.can_dlc = static_cast<std::uint8_t>(length);
        std::fill_n(raw.data, 8, 0xAA);
        ASSERT_EQ(::write(*sender, &raw, sizeof raw), static_cast<ssize_t>(sizeof raw));
        CanFrame frame;
        ASSERT_EQ(socket->receive(frame, 1000), CanSocket::Received::frame);
        EXPECT_EQ(std::tuple(frame.identifier, frame.length), std::tuple(raw.can_id, std::min(length, 8)));
        for (int i = 0; i < 8; ++i) EXPECT_EQ(frame.data[i], i < length ? 0xAA : 0);
        EXPECT_NEAR(static_cast<double>(frame.time) / 1e9, static_cast<double>(::time(nullptr)), 5);
    }
    N2KMsg request{};
    set_header(request, 0x18EA23FE);
    request.length = 3;
    request.data[2] = 0x5A;
    ASSERT_TRUE(socket->send(frame_of(request)));
    ASSERT_EQ(::read(*sender, &raw, sizeof raw), static_cast<ssize_t>(sizeof raw));
    EXPECT_EQ(std::tuple(raw.can_id, raw.can_dlc, raw.data[2]),
              std::tuple(CAN_EFF_FLAG | 0x18EA23FE, 3, 0x5A));
    CanFrame frame;
    EXPECT_EQ(socket->receive(frame, 0), CanSocket::Received::nothing);
    ASSERT_EQ(::write(*sender, &raw, 5), 5);
    EXPECT_EQ(socket->receive(frame, 1000), CanSocket::Received::nothing);
    // In a loop: nothing is there, then something comes.
    socket->wake(loop);
    EXPECT_EQ(socket->receive(frame, 0), CanSocket::Received::nothing);
    const auto before = std::chrono::steady_clock::now();
    ASSERT_EQ(::write(*sender, &raw, sizeof raw), static_cast<ssize_t>(sizeof raw));
    loop.run_one(20s);
    EXPECT_LT(std::chrono::steady_clock::now() - before, 10s);
    EXPECT_EQ(socket->receive(frame, 0), CanSocket::Received::frame);
    sender.reset();
    EXPECT_EQ(socket->receive(frame, 1000), CanSocket::Received::removed);
    EXPECT_FALSE(socket->send(frame));
}

/// An outlet and what it told.
struct Sending {
    explicit Sending(const std::string& to, std::size_t most_queued = 1 << 20) {
        auto opened =
            open_outlet(*parse_source(to), {.most_queued = most_queued,
                                            .patience = 50ms,
                                            .tell = [this](const std::string& text) { told += text; }});
        EXPECT_TRUE(opened) << opened.error().text;
        outlet = std::move(*opened);
    }
    template <class Done>
    bool until(Done done) const {
        const auto end = std::chrono::steady_clock::now() + 20s;
        while (!done() && std::chrono::steady_clock::now() < end) outlet->run(1ms);
        return done();
    }
    /// What a client gets, who is heard until he has so much.
    std::string heard_by(const Descriptor& client, std::size_t size) const {
        std::string heard;
        EXPECT_TRUE(until([&] { return (heard += client.get()).size() >= size; }));
        return heard;
    }
    std::string told;
    std::unique_ptr<Outlet> outlet;
};

TEST(Outlets, ServeManyClientsAndDropWhoDoesNotTake) {
    const std::uint16_t port = free_port(SOCK_STREAM);
    const Sending server("tcp-listen://127.0.0.1:" + std::to_string(port), 100'000);
    server.outlet->begin("head\n");
    EXPECT_FALSE(server.outlet->has_room()) << "nobody is there";
    const sockaddr_in address = here(port);
    const Descriptor idle(::socket(AF_INET, SOCK_STREAM, 0)), keen(::socket(AF_INET, SOCK_STREAM, 0));
    const int small = 4096;
    ::setsockopt(idle, SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
    for (const int client : {int(idle), int(keen)})
        ASSERT_EQ(::connect(client, generic(address), sizeof address), 0);
    ASSERT_TRUE(server.until([&] { return server.outlet->counters().clients == 2; }));
    EXPECT_EQ(server.heard_by(keen, 5), "head\n");
    const std::string record(200, 'x');
    std::size_t sent = 0;
    for (; server.outlet->counters().dropped == 0 && sent < 100'000'000; sent += record.size()) {
        server.outlet->put(record);
        if (sent % 20'000 == 0) {
            EXPECT_EQ(server.heard_by(keen, sent == 0 ? 200 : 20'000).find('h'), std::string::npos);
        }
    }
    EXPECT_EQ(server.outlet->counters().dropped, 1u);
    EXPECT_NE(server.told.find("does not take what is sent"), std::string::npos);
    EXPECT_TRUE(server.until([&] { return keen.get().empty() && server.outlet->is_empty(); }));
    EXPECT_TRUE(server.outlet->has_room());
    ::shutdown(keen, SHUT_RDWR);
    EXPECT_TRUE(server.until([&] { return !server.outlet->has_room(); }));
    EXPECT_EQ(server.outlet->counters().dropped, 1u) << "who leaves is not dropped";
}

TEST(Outlets, OfOneClientAreMadeAgain) {
    const Bound program(SOCK_STREAM);
    const Sending link("tcp://127.0.0.1:" + std::to_string(program.port));
    for (int again = 0; again < 2; ++again) {
        ASSERT_TRUE(link.until([&] { return program.is_asked(); }));
        const Descriptor client(program.accept());
        ASSERT_TRUE(link.until([&] { return link.outlet->has_room(); }));
        link.outlet->put(raw_line);
        EXPECT_EQ(link.heard_by(client, raw_line.size()), raw_line);
        ::shutdown(client, SHUT_RDWR);
        ASSERT_TRUE(link.until([&] { return !link.outlet->has_room(); }));
    }
    for (const std::string& name :
         {std::string("file.log"), std::string("serial:/dev/none"), std::string("udp://:2000"),
          "tcp://127.0.0.1:" + std::to_string(free_port(SOCK_STREAM)),
          "tcp-listen://127.0.0.1:" + std::to_string(program.port)})
        EXPECT_FALSE(open_outlet(*parse_source(name), {})) << name;
}

TEST(Outlets, SendWholeRecordsInDatagrams) {
    const Bound program(SOCK_DGRAM);
    const Sending udp("udp://127.0.0.1:" + std::to_string(program.port));
    for (const std::size_t size : {600u, 700u, 200u, 3000u, 10u}) udp.outlet->put(std::string(size, 'x'));
    udp.outlet->flush();
    for (const ssize_t size : {1300, 200, 3000, 10}) {
        char room[4096];
        pollfd request{program.socket, POLLIN, 0};
        ASSERT_EQ(::poll(&request, 1, 20'000), 1);
        EXPECT_EQ(::recv(program.socket, room, sizeof room, 0), size);
    }
}

TEST(Outlets, SendFramesToAnInterface) {
    int ends[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends), 0);
    const Descriptor bus(ends[0]);
    const auto outlet = make_can_outlet(attach_can(ends[1]), {});
    const std::string packet("\x89\xF1\x12\x23\x03\0\0\0\1\2\3\0\0\0\0\0", 16);
    outlet->put(std::string(16, '\0') + packet);
    outlet->put("cut");
    can_frame frame;
    ASSERT_EQ(::read(bus, &frame, sizeof frame), static_cast<ssize_t>(sizeof frame));
    EXPECT_EQ(std::tuple(frame.can_id, frame.can_dlc, frame.data[0], frame.data[2], frame.data[3]),
              std::tuple(0x89F11223, 3, 1, 3, 0));
    EXPECT_EQ(outlet->counters().lost, 0u);
    ::shutdown(bus, SHUT_RDWR);
    outlet->put(std::string(16, '\0') + packet);
    EXPECT_EQ(outlet->counters().lost, 1u);
}

TEST(LinkWatch, WaitsLongerFromOneAttemptToTheNext) {
    LinkOptions options;
    options.longest_pause = 4s;
    LinkWatch watch(std::move(options), "connected");
    LinkWatch::Time now{};
    for (int round = 1; round <= 2; ++round) {
        for (const auto pause : {0s, 1s, 2s, 4s, 4s}) {
            watch.lost(now, "gone");
            EXPECT_EQ(watch.retry_at() - now, pause) << round;
            now = watch.retry_at();
            watch.opened(now);
        }
        watch.traffic(now);
        EXPECT_EQ(watch.counters().without, round * 11s);
    }
}

}  // namespace
}  // namespace vistel
