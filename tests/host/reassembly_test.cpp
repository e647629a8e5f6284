#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "can/record.h"
#include "reassembly/reassembler.h"

namespace vistel {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::int64_t ms = 1'000'000;

struct Header {
    std::uint32_t pgn;
    std::uint8_t priority, source, destination;
};

Record frame(const Header& header, const Bytes& bytes) {
    Record record;
    record.kind = Record::Kind::frame;
    record.msg.pgn = header.pgn;
    record.msg.priority = header.priority;
    record.msg.source = header.source;
    record.msg.destination = header.destination;
    record.msg.length = static_cast<std::uint16_t>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), record.msg.data);
    return record;
}

/// Payload that differs between messages and between the pieces of one.
Bytes payload(unsigned length, unsigned seed) {
    Bytes bytes(length);
    for (unsigned i = 0; i < length; ++i) bytes[i] = static_cast<std::uint8_t>(i * 5 + seed * 97 + (i >> 6));
    return bytes;
}

std::vector<Record> fast_frames(const Header& header, unsigned sequence, const Bytes& message) {
    std::vector<Record> frames;
    for (std::size_t at = 0; at < message.size() || frames.empty();) {
        Bytes bytes{static_cast<std::uint8_t>(sequence << 5 | frames.size())};
        if (frames.empty()) bytes.push_back(static_cast<std::uint8_t>(message.size()));
        while (bytes.size() < 8) bytes.push_back(at < message.size() ? message[at] : 0xFF), ++at;
        frames.push_back(frame(header, bytes));
    }
    return frames;
}

Bytes announcement(unsigned control, unsigned length, unsigned packets, std::uint32_t pgn) {
    const auto byte = [](unsigned value) { return static_cast<std::uint8_t>(value); };
    return {byte(control), byte(length), byte(length >> 8), byte(packets),
            0xFF,          byte(pgn),    byte(pgn >> 8),    byte(pgn >> 16)};
}

bool same(const N2KMsg& a, const N2KMsg& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

/// What a reassembler is told by a script of words, and what it emits.
class Script {
  public:
    using Pieces = std::map<std::string, Record>;

    explicit Script(const Pieces& pieces) : pieces_(pieces) {}

    /// `+750` and `-750` move the clock by milliseconds, `clock` and `noclock` switch it on and off, `finish`
    /// ends the recording, `*4000` puts as many frames of others, any other word is the name of a piece.
    void play(const std::string& text) {
        std::istringstream words(text);
        for (std::string word; words >> word;) {
            if (word[0] == '+' || word[0] == '-') {
                time_.nanoseconds += std::stoll(word) * ms;
            } else if (word == "clock" || word == "noclock") {
                time_.origin = word == "clock" ? RecordTime::Origin::epoch : RecordTime::Origin::none;
            } else if (word[0] == '*') {
                for (int i = std::stoi(word.substr(1)); i > 0; --i)
                    put(frame({127250, 2, 99, 255}, payload(8, 1)));
            } else if (word == "finish") {
                reassembler_.finish();
            } else {
                put(pieces_.at(word));
            }
        }
    }

    const std::vector<N2KMsg>& long_messages() const { return long_messages_; }
    const ReassemblyCounters& counters() const { return reassembler_.counters(); }
    std::uint64_t messages() const { return all_messages_; }

  private:
    void put(Record record) {
        record.time = time_;
        reassembler_.put(record);
    }

    const Pieces& pieces_;
    std::vector<N2KMsg> long_messages_;
    std::uint64_t all_messages_ = 0;
    RecordTime time_{12'345 * ms, RecordTime::Origin::epoch};
    Reassembler reassembler_{[this](const N2KMsg& msg, const RecordTime& time) {
        ++all_messages_;
        EXPECT_TRUE(time == time_);
        if (msg.source < 90 && msg.pgn != transport_protocol::control_pgn &&
            msg.pgn != transport_protocol::data_pgn) {
            long_messages_.push_back(msg);
        }
    }};
};

struct Case {
    const char* name;
    const char* script;
    const char* delivered;  // letters
    unsigned incomplete, orphans, repeated;
};

/// Plays every case and compares what comes out with `messages`, by letter.
void check(const std::vector<Case>& cases, const Script::Pieces& pieces,
           const std::map<char, Record>& messages, std::uint64_t ReassemblyCounters::*incomplete) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Script script(pieces);
        script.play(c.script);
        script.play("finish finish");
        std::string delivered;
        for (const N2KMsg& msg : script.long_messages()) {
            const auto known = std::find_if(messages.begin(), messages.end(),
                                            [&](const auto& entry) { return same(entry.second.msg, msg); });
            delivered += known == messages.end() ? '?' : known->first;
        }
        EXPECT_EQ(delivered, c.delivered);
        EXPECT_EQ(script.counters().*incomplete, c.incomplete);
        EXPECT_EQ(script.counters().incomplete_fast_packets + script.counters().incomplete_transports,
                  c.incomplete);
        EXPECT_EQ(script.counters().orphan_frames, c.orphans);
        EXPECT_EQ(script.counters().repeated_frames, c.repeated);
        EXPECT_EQ(script.counters().messages, script.messages());
    }
}

TEST(Reassembly, PutsFastPacketsTogether) {
    const struct {
        char letter;
        Header header;
        unsigned sequence, length;
    } definitions[] = {
        // a and A, b and B and so on are successive messages of the same sequence.
        {'a', {129029, 3, 1, 255}, 0, 20},  {'A', {129029, 3, 1, 255}, 0, 20},
        {'b', {129029, 3, 1, 255}, 1, 20},  {'c', {129029, 3, 1, 255}, 2, 20},
        {'d', {129029, 3, 1, 255}, 3, 20},  {'e', {129029, 3, 1, 255}, 7, 20},
        {'s', {129029, 3, 2, 255}, 0, 20},  {'p', {129038, 4, 1, 255}, 0, 27},
        {'q', {126720, 6, 1, 10}, 0, 20},   {'r', {126720, 6, 1, 11}, 0, 20},
        {'l', {129794, 4, 1, 255}, 5, 223}, {'6', {130060, 7, 1, 255}, 0, 6},
        {'7', {130060, 7, 1, 255}, 0, 7},   {'0', {130060, 7, 1, 255}, 0, 0},
        {'3', {129285, 7, 1, 255}, 4, 13},  {'4', {129285, 7, 1, 255}, 4, 14},
    };
    Script::Pieces pieces;
    std::map<char, Record> messages;
    for (const auto& d : definitions) {
        const Bytes bytes = payload(d.length, static_cast<unsigned char>(d.letter));
        messages[d.letter] = frame(d.header, bytes);
        const std::vector<Record> frames = fast_frames(d.header, d.sequence, bytes);
        for (std::size_t i = 0; i < frames.size(); ++i) pieces[d.letter + std::to_string(i)] = frames[i];
    }
    const Header header{129029, 3, 1, 255};
    pieces["empty"] = frame(header, {});
    pieces["lone"] = frame(header, {0x00});
    pieces["huge"] = frame(header, {0x00, 224, 1, 2, 3, 4, 5, 6});
    pieces["short0"] = frame(header, {0x00, 20, 1, 2, 3, 4, 5});
    pieces["short1"] = frame(header, {0x01, 1, 2, 3, 4, 5, 6});
    pieces["beyond"] = frame(header, {0x03, 1, 2, 3, 4, 5, 6, 7});
    pieces["short42"] = pieces["42"];
    pieces["short42"].msg.length = 2;

    std::string longest, longest_backwards;
    for (int i = 0; i < 32; ++i) {
        longest += " l" + std::to_string(i);
        longest_backwards += " l" + std::to_string(31 - i);
    }
    const std::vector<Case> cases = {
        {"in order", "a0 a1 a2", "a", 0, 0, 0},
        {"twice the same", "a0 a1 a2 a0 a1 a2", "aa", 0, 0, 0},
        {"the longest", longest.c_str(), "l", 0, 0, 0},
        {"backwards", longest_backwards.c_str(), "l", 0, 0, 0},
        {"out of order", "a2 a0 a1 b1 b2 b0", "ab", 0, 0, 0},
        {"every frame twice", "a0 a0 a1 a1 a2 b0 b0 b1 b1 b2", "ab", 0, 0, 4},
        {"a frame again later", "a0 a1 p0 a1 a2", "a", 1, 0, 1},
        {"interleaved", "a0 s0 b0 p0 q0 r0 s1 a1 p1 r1 q1 b1 b2 a2 s2 p2 q2 r2 p3", "basqrp", 0, 0, 0},
        {"all in the first frame", "60 00", "60", 0, 0, 0},
        {"one byte in the second", "70 71", "7", 0, 0, 0},
        {"two full frames, and a byte more", "30 31 40 41 42", "34", 0, 0, 0},
        {"one missing", "a0 a2 b0 b1 b2", "b", 1, 0, 0},
        {"first missing", "a1 a2 b0 b1 b2", "b", 0, 2, 0},
        {"begun again", "a0 a1 A0 A1 A2", "A", 1, 0, 0},
        {"begun again with the same bytes", "a0 a1 a0 a1 a2", "a", 1, 0, 0},
        {"begun again, first missing", "a0 a1 A1 A2", "", 1, 2, 0},
        {"begun again, first late", "a0 a1 A1 A0 A2", "A", 1, 0, 0},
        {"pieces without a first, then the next first", "a1 a2 +51 A0 A1 A2", "A", 0, 2, 0},
        {"first just late enough", "a1 a2 +50 a0", "a", 0, 0, 0},
        {"first too late without clock", "noclock a1 a2 *16 a0 *1 b1 b2 *15 b0", "b", 1, 2, 0},
        {"slow", "a0 +750 a1 +750 a2", "a", 0, 0, 0},
        {"too slow", "a0 +750 a1 +751 a2", "", 1, 1, 0},
        {"clock of whole seconds", "+655 a0 +1000 a1 a2", "a", 0, 0, 0},
        {"clock of whole seconds, too slow", "+655 a0 +2000 a1 a2", "", 1, 2, 0},
        {"a whole second by chance", "+655 a0 +751 a1", "", 1, 1, 0},
        {"clock put back", "a0 a1 -3600000 a2", "a", 0, 0, 0},
        {"clock stands still", "a0 a1 *4094 a2 b0 b1 *4096 b2", "a", 1, 1, 0},
        {"no clock", "noclock a0 a1 a2 a0 *4095 a1 a2", "aa", 0, 0, 0},
        {"overtaken by half the sequences", "a0 a1 b0 c0 d0 e0 a2", "", 5, 1, 0},
        {"not yet overtaken", "a0 a1 b0 c0 d0 a2", "a", 3, 0, 0},
        {"others do not overtake", "a0 a1 s0 s1 s2 q0 q1 q2 r0 r1 r2 60 70 71 a2", "sqr67a", 0, 0, 0},
        {"longer than possible", "huge a1 a2 a0 huge", "a", 2, 0, 0},
        {"longer than possible begins anew", "a0 a1 huge a2", "", 2, 1, 0},
        {"cut short", "lone empty short0 a1 a2", "", 1, 4, 0},
        {"cut short, then whole", "a0 short1 a1 a2", "a", 0, 1, 0},
        {"cut short before the first", "short1 a0 a1 a2", "a", 0, 1, 0},
        {"nothing behind the end", "40 41 short42", "4", 0, 0, 0},
        {"beyond the end", "a0 beyond a1 a2 beyond", "a", 0, 2, 0},
        {"beyond the end before the first", "beyond a0 a1 a2", "a", 0, 1, 0},
        {"open at the end", "a0 b1 b2 finish", "", 1, 2, 0},
        {"as new after the end", "a0 a1 finish a2", "", 1, 1, 0},
    };
    check(cases, pieces, messages, &ReassemblyCounters::incomplete_fast_packets);
}

TEST(Reassembly, PutsTransportsTogether) {
    const struct {
        char letter;
        Header header;  // of the announcement
        unsigned control, length;
        std::uint32_t pgn;
    } definitions[] = {
        {'a', {60416, 7, 1, 255}, 32, 20, 65240},    {'A', {60416, 7, 1, 255}, 32, 20, 65240},
        {'b', {60416, 7, 2, 255}, 32, 20, 65240},    {'c', {60416, 6, 1, 2}, 16, 20, 126208},
        {'d', {60416, 6, 2, 1}, 16, 21, 126208},     {'e', {60416, 6, 1, 3}, 16, 22, 129029},
        {'l', {60416, 6, 1, 255}, 32, 1785, 129540}, {'1', {60416, 6, 1, 255}, 32, 1, 130820},
    };
    Script::Pieces pieces;
    std::map<char, Record> messages;
    std::string longest;
    for (const auto& d : definitions) {
        Bytes bytes = payload(d.length, static_cast<unsigned char>(d.letter));
        messages[d.letter] = frame({d.pgn, d.header.priority, d.header.source, d.header.destination}, bytes);
        const unsigned packets = (d.length + 6) / 7;
        const auto control = [&](const char* suffix, unsigned byte, const Header& header) {
            pieces[d.letter + std::string(suffix)] =
                frame(header, announcement(byte, d.length, packets, d.pgn));
        };
        const Header answer{60416, 7, d.header.destination, d.header.source};
        control("!", d.control, d.header);
        control("cts", 17, answer);
        control("eom", 19, answer);
        control("stop", 255, d.header);
        control("refuse", 255, answer);
        const Header data{60160, 7, d.header.source, d.header.destination};
        for (unsigned i = 1; i <= packets; ++i) {
            Bytes packet{static_cast<std::uint8_t>(i)};
            for (unsigned k = 0; k < 7; ++k) {
                const unsigned at = (i - 1) * 7 + k;
                packet.push_back(at < bytes.size() ? bytes[at] : std::uint8_t{0xFF});
            }
            pieces[d.letter + std::to_string(i)] = frame(data, packet);
            if (d.letter == 'l') longest += " l" + std::to_string(256 - i);
        }
    }
    const Header control{60416, 7, 1, 255}, data{60160, 7, 1, 255};
    pieces["zero"] = frame(control, announcement(32, 0, 0, 65240));
    pieces["too_long"] = frame(control, announcement(32, 1786, 255, 65240));
    pieces["too_few"] = frame(control, announcement(32, 22, 3, 65240));
    pieces["too_many"] = frame(control, announcement(32, 21, 4, 65240));
    pieces["no_pgn"] = frame(control, announcement(32, 20, 3, 0x40000));
    pieces["cut"] = frame(control, {32, 20, 0, 3, 255, 0xD8, 0xFE});
    pieces["packet0"] = frame(data, {0, 1, 2, 3, 4, 5, 6, 7});
    pieces["packet4"] = frame(data, {4, 1, 2, 3, 4, 5, 6, 7});
    pieces["cut1"] = frame(data, {1, 1, 2, 3, 4, 5, 6});
    pieces["empty"] = frame(data, {});
    pieces["other_stop"] = frame(control, announcement(255, 20, 3, 65241));
    pieces["short3"] = pieces["a3"];
    pieces["short3"].msg.length = 7;
    const std::string longest_backwards = "l!" + longest;
    const std::vector<Case> cases = {
        {"to everyone", "a! a1 a2 a3", "a", 0, 0, 0},
        {"to one device", "c! ccts c1 c2 ccts c3 ceom", "c", 0, 0, 0},
        {"the longest, backwards", longest_backwards.c_str(), "l", 0, 0, 0},
        {"one byte", "1! 11", "1", 0, 0, 0},
        {"interleaved", "a! b! c! d! e! a1 c1 e1 d1 b1 a2 b2 c2 d2 e2 a3 b3 c3 d3 e3 e4", "abcde", 0, 0, 0},
        {"packets out of order and again", "c! c2 c1 c2 c2 c3", "c", 0, 0, 2},
        {"packets asked for again once complete", "c! c1 c2 c3 ccts c2 c3 ceom c3", "c", 0, 1, 2},
        {"one missing", "a! a1 a3", "", 1, 0, 0},
        {"announcement missing", "a1 a2 a3", "", 0, 3, 0},
        {"announced twice", "c! c! c1 c2 c3", "c", 0, 0, 1},
        {"begun again", "a! a1 a! a1 a2 a3", "a", 1, 0, 0},
        {"another one begun", "a! a1 1! a2 11", "1", 1, 1, 0},
        {"successive", "a! a1 a2 a3 A! A1 A2 A3", "aA", 0, 0, 0},
        {"next announcement missing", "a! a1 a2 A1 A2 A3", "", 1, 3, 0},
        {"sender aborts", "c! c1 cstop c2 c3", "", 1, 2, 0},
        {"receiver aborts", "c! c1 crefuse c2 c3", "", 1, 2, 0},
        {"the other direction goes on", "c! d! c1 dstop c2 c3 d1", "c", 1, 1, 0},
        {"the other direction refused", "c! d! c1 drefuse d1", "", 2, 0, 0},
        {"abort of something else", "a! a1 other_stop a2 a3", "a", 0, 0, 0},
        {"receiver done before us", "c! c1 c3 ceom c2", "", 1, 1, 0},
        {"abort after the end", "c! c1 c2 c3 cstop", "c", 0, 0, 0},
        {"slow", "a! +1250 a1 +1250 a2 +1250 a3", "a", 0, 0, 0},
        {"too slow", "a! +1251 a1", "", 1, 1, 0},
        {"held by the receiver", "c! +1000 ccts +1000 c1 c2 c3", "c", 0, 0, 0},
        {"held by another receiver", "c! +1000 ects +1000 c1", "", 1, 1, 0},
        {"no clock", "noclock a! *4000 a1 *4000 a2 a3", "a", 0, 0, 0},
        {"no clock, too slow", "noclock a! a1 *4096 a2 a3", "", 1, 2, 0},
        {"contradictory announcements", "zero too_long too_few too_many no_pgn", "", 5, 0, 0},
        {"contradiction ends what was open", "a! a1 too_few a2 a3", "", 2, 2, 0},
        {"announcement cut short", "cut a1", "", 0, 1, 0},
        {"bad packets", "a! packet0 packet4 cut1 empty a1 a2 a3", "a", 0, 4, 0},
        {"nothing behind the end", "a! a1 a2 short3", "a", 0, 0, 0},
    };
    check(cases, pieces, messages, &ReassemblyCounters::incomplete_transports);

    // The frames are shown as well, ahead of the message.
    std::string order;
    Reassembler reassembler(
        [&](const N2KMsg& msg, const RecordTime&) { order += std::to_string(msg.pgn) + ' '; });
    for (const char* name : {"a!", "a1", "a2", "a3"}) reassembler.put(pieces.at(name));
    EXPECT_EQ(order, "60416 60160 60160 60160 65240 ");
}

TEST(Reassembly, KnowsFastPackets) {
    const struct {
        std::uint32_t pgn;
        bool fast;
    } cases[] = {
        {59904, false},  {60928, false},  {65240, false},  {65300, false},  {65535, false},  {0x1ECFF, false},
        {126208, true},  {126464, true},  {126720, true},  {126992, false}, {126993, false}, {126996, true},
        {127250, false}, {127252, false}, {127744, false}, {127751, false}, {128000, false}, {128275, true},
        {129029, true},  {130060, true},  {130815, false}, {130816, true},  {130999, true},  {131071, true},
        {131072, false}, {262143, false},
    };
    for (const auto& c : cases) {
        int length = 0;
        Reassembler reassembler([&](const N2KMsg& msg, const RecordTime&) { length = msg.length; });
        reassembler.put(frame({c.pgn, 6, 1, 255}, {0x20, 5, 1, 2, 3, 4, 5, 0xFF}));
        EXPECT_EQ(length, c.fast ? 5 : 8) << c.pgn;
    }
}

TEST(Reassembly, LeavesWholeMessagesAlone) {
    for (const std::uint32_t pgn : {129029u, 60416u, 60160u, 127250u}) {
        Record record = frame({pgn, 3, 1, 255}, announcement(32, 20, 3, 65240));
        record.kind = Record::Kind::message;
        std::vector<N2KMsg> messages;
        Reassembler reassembler([&](const N2KMsg& msg, const RecordTime&) { messages.push_back(msg); });
        reassembler.put(record);
        reassembler.finish();
        ASSERT_EQ(messages.size(), 1u);
        EXPECT_TRUE(same(messages[0], record.msg));
        EXPECT_EQ(reassembler.counters(), (ReassemblyCounters{.messages = 1}));
    }
}

TEST(Reassembly, AbandonsTheOldestWhenTooManyAreOpen) {
    const auto begin = [](unsigned i, unsigned piece) {
        const Header header{129029, 3, static_cast<std::uint8_t>(i), 255};
        return fast_frames(header, i >> 8, payload(10, i))[piece];
    };
    std::vector<unsigned> delivered;
    Reassembler reassembler([&](const N2KMsg& msg, const RecordTime&) { delivered.push_back(msg.source); });
    for (unsigned i = 0; i < 256; ++i) reassembler.put(begin(i, 0));
    reassembler.put(begin(0, 0));    // repeated: no longer the oldest
    reassembler.put(begin(256, 0));  // source 0 with another sequence, in place of source 1
    reassembler.put(begin(257, 1));  // without a first, in place of source 2
    EXPECT_EQ(reassembler.counters().incomplete_fast_packets, 2u);
    for (const unsigned i : {0u, 3u, 255u, 256u, 1u}) reassembler.put(begin(i, 1));
    EXPECT_EQ(delivered, (std::vector<unsigned>{0, 3, 255, 0}));

    delivered.clear();
    Reassembler transports([&](const N2KMsg& msg, const RecordTime&) {
        if (msg.pgn == 65240) delivered.push_back(msg.source);
    });
    for (unsigned i = 0; i < 100; ++i) {
        transports.put(frame({60416, 7, static_cast<std::uint8_t>(i), 255}, announcement(32, 7, 1, 65240)));
    }
    EXPECT_EQ(transports.counters().incomplete_transports, 36u);
    for (const std::uint8_t i : {0, 35, 36, 99})
        transports.put(frame({60160, 7, i, 255}, Bytes{1, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(delivered, (std::vector<unsigned>{36, 99}));
}

TEST(Reassembly, TimeOutsAreCountedWhileOthersTalk) {
    Reassembler reassembler([](const N2KMsg&, const RecordTime&) {});
    const auto put = [&](Record record, std::int64_t time) {
        record.time = {time * ms, RecordTime::Origin::start};
        reassembler.put(record);
    };
    put(fast_frames({129029, 3, 1, 255}, 0, payload(20, 1))[0], 1);
    put(fast_frames({129029, 3, 2, 255}, 0, payload(20, 1))[1], 1);
    put(frame({60416, 7, 1, 255}, announcement(32, 20, 3, 65240)), 1);
    for (int i = 0; i < 256; ++i) put(frame({127250, 2, 3, 255}, payload(8, 1)), 1300);
    EXPECT_EQ(reassembler.counters().incomplete_fast_packets, 1u);
    EXPECT_EQ(reassembler.counters().orphan_frames, 1u);
    EXPECT_EQ(reassembler.counters().incomplete_transports, 1u);

    // The clock is put back: what was heard of later may be due first.
    put(fast_frames({129029, 3, 1, 255}, 0, payload(20, 1))[0], 3000);
    put(fast_frames({129029, 3, 2, 255}, 0, payload(20, 1))[0], 2000);
    for (int i = 0; i < 256; ++i) put(frame({127250, 2, 3, 255}, payload(8, 1)), 2751);
    EXPECT_EQ(reassembler.counters().incomplete_fast_packets, 2u);
}

/// Devices that all talk at once over a line that loses, repeats and swaps frames.
TEST(Reassembly, DeliversExactlyWhatArrivedWhole) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto chance = [&](unsigned percent) { return random() % 100 < percent; };
        const unsigned loss = seed % 4;  // per cent
        struct Sent {
            Record record;
            unsigned message;
        };
        std::vector<Sent> line;
        std::vector<N2KMsg> sent;
        std::vector<bool> whole;
        struct Device {
            Header header;
            unsigned sequence;
            std::vector<Record> queue;
            unsigned message;
        };
        std::vector<Device> devices;
        for (unsigned i = 0; i < 12; ++i) {
            devices.push_back(
                {{i % 2 != 0 ? 129029u : 129038u, 3, static_cast<std::uint8_t>(i / 2), 255}, i, {}, 0});
        }
        while (line.size() < 20'000) {
            Device& device = devices[random() % devices.size()];
            if (device.queue.empty()) {
                const Bytes bytes = payload(7 + random() % 217, static_cast<unsigned>(sent.size()));
                device.queue = fast_frames(device.header, device.sequence++ % 8, bytes);
                std::reverse(device.queue.begin(), device.queue.end());
                device.message = static_cast<unsigned>(sent.size());
                sent.push_back(frame(device.header, bytes).msg);
                whole.push_back(true);
            }
            const Sent next{device.queue.back(), device.message};
            device.queue.pop_back();
            if (chance(loss)) {
                whole[next.message] = false;
                continue;
            }
            line.push_back(next);
        }
        for (const Device& device : devices) {
            if (!device.queue.empty()) whole[device.message] = false;
        }
        for (std::size_t i = 0; i + 1 < line.size(); ++i) {
            if (chance(10)) std::swap(line[i], line[i + 1]);
        }

        std::vector<N2KMsg> delivered;
        Reassembler reassembler([&](const N2KMsg& msg, const RecordTime&) { delivered.push_back(msg); });
        std::int64_t time = 0;
        for (Sent& next : line) {
            next.record.time = {time += ms / 2, RecordTime::Origin::start};
            reassembler.put(next.record);
            if (chance(2)) reassembler.put(next.record);  // as buses do, at once
        }
        reassembler.finish();
        const auto bytes_of = [](const N2KMsg& msg) {
            return std::string(reinterpret_cast<const char*>(&msg), sizeof msg);
        };
        std::multiset<std::string> expected, got;
        std::uint64_t broken = 0;
        for (std::size_t i = 0; i < sent.size(); ++i) {
            if (whole[i])
                expected.insert(bytes_of(sent[i]));
            else
                ++broken;
        }
        for (const N2KMsg& msg : delivered) got.insert(bytes_of(msg));
        EXPECT_TRUE(got == expected) << got.size() << " instead of " << expected.size();
        EXPECT_LE(reassembler.counters().incomplete_fast_packets, broken);
    }
}

}  // namespace
}  // namespace vistel
