#include "reassembly/reassembler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <sstream>
#include <string>
#include <vector>

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
Bytes payload(std::size_t length, unsigned seed) {
    Bytes bytes(length);
    for (std::size_t i = 0; i < length; ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 5 + seed * 97 + (i >> 6));
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

std::string bytes_of(const N2KMsg& msg) {
    return std::string(reinterpret_cast<const char*>(&msg), sizeof msg);
}

/// Messages by letters. In place of a fast packet's sequence, `by_transport` has one sent by transport
/// protocol.
constexpr unsigned by_transport = 8;
const std::tuple<char, Header, unsigned, unsigned> sent_messages[] = {
    // clang-format off
    // a and A, t and T are successive messages of the same sequence.
    {'a', {129029, 3, 1, 255}, 0, 20}, {'A', {129029, 3, 1, 255}, 0, 20}, {'b', {129029, 3, 1, 255}, 1, 20},
    {'c', {129029, 3, 1, 255}, 2, 20}, {'d', {129029, 3, 1, 255}, 3, 20}, {'e', {129029, 3, 1, 255}, 7, 20},
    {'s', {129029, 3, 2, 255}, 0, 20}, {'p', {129038, 4, 1, 255}, 0, 27}, {'q', {126720, 6, 1, 10}, 0, 20},
    {'r', {126720, 6, 1, 11}, 0, 20}, {'l', {129794, 4, 1, 255}, 5, 223}, {'6', {130060, 7, 1, 255}, 0, 6},
    {'7', {130060, 7, 1, 255}, 0, 7}, {'0', {130060, 7, 1, 255}, 0, 0}, {'3', {129285, 7, 1, 255}, 4, 13},
    {'4', {129285, 7, 1, 255}, 4, 14},
    {'t', {65240, 7, 1, 255}, by_transport, 20}, {'T', {65240, 7, 1, 255}, by_transport, 20},
    {'u', {65240, 7, 2, 255}, by_transport, 20}, {'v', {126208, 6, 1, 2}, by_transport, 20},
    {'w', {126208, 6, 2, 1}, by_transport, 21}, {'x', {129029, 6, 1, 3}, by_transport, 22},
    {'L', {129540, 6, 1, 255}, by_transport, 1785}, {'1', {130820, 6, 1, 255}, by_transport, 1},
    // clang-format on
};
const std::tuple<const char*, std::uint32_t, Bytes> odd[] = {
    // clang-format off
    {"empty", 129029, {}}, {"lone", 129029, {0}}, {"huge", 129029, {0, 224, 1, 2, 3, 4, 5, 6}},
    {"short0", 129029, {0, 20, 1, 2, 3, 4, 5}}, {"beyond", 129029, {3, 1, 2, 3, 4, 5, 6, 7}},
    {"zero", 60416, announcement(32, 0, 0, 65240)}, {"too_long", 60416, announcement(32, 1786, 255, 65240)},
    {"too_few", 60416, announcement(32, 22, 3, 65240)}, {"too_many", 60416, announcement(32, 21, 4, 65240)},
    {"no_pgn", 60416, announcement(32, 20, 3, 0x40000)}, {"other_stop", 60416, announcement(255, 20, 3, 65241)},
    {"packet0", 60160, {0, 1, 2, 3, 4, 5, 6, 7}}, {"packet4", 60160, {4, 1, 2, 3, 4, 5, 6, 7}},
    {"cut1", 60160, {1, 1, 2, 3, 4, 5, 6}}, {"empty_packet", 60160, {}},
    // clang-format on
};

/// What scripts are made of: frames by name, and the messages that they make up by letter.
struct Cast {
    std::map<std::string, Record> pieces;
    std::map<std::string, char> letters;  // by all bytes of the message

    Cast() {
        for (const auto& [letter, header, sequence, length] : sent_messages) {
            const Bytes bytes = payload(length, static_cast<unsigned char>(letter));
            letters[bytes_of(frame(header, bytes).msg)] = letter;
            if (sequence == by_transport) {
                add_transport({letter}, header, bytes);
            } else {
                int index = 0;
                for (const Record& piece : fast_frames(header, sequence, bytes))
                    pieces[letter + std::to_string(index++)] = piece;
            }
        }
        for (const auto& [name, pgn, bytes] : odd) pieces[name] = frame({pgn, 3, 1, 255}, bytes);
        (pieces["message_6"] = frame({130060, 7, 1, 255}, payload(6, '6'))).kind = Record::Kind::message;
        (pieces["short42"] = pieces["42"]).msg.length = 2;
        (pieces["short_t3"] = pieces["t3"]).msg.length = 7;
    }

    void add_transport(const std::string& letter, Header header, const Bytes& bytes) {
        const auto length = static_cast<unsigned>(bytes.size()), packets = (length + 6) / 7;
        const unsigned first = header.destination == 255 ? 32 : 16;
        const auto control = [&, pgn = header.pgn](unsigned byte, const Header& from) {
            return frame(from, announcement(byte, length, packets, pgn));
        };
        header.pgn = transport_protocol::control_pgn;
        const Header answer{header.pgn, 7, header.destination, header.source};
        pieces[letter + "!"] = control(first, header);
        pieces[letter + "stop"] = control(255, header);
        pieces[letter + "cts"] = control(17, answer);
        pieces[letter + "eom"] = control(19, answer);
        pieces[letter + "refuse"] = control(255, answer);
        header.pgn = transport_protocol::data_pgn;
        for (unsigned i = 0; i < packets; ++i) {
            Bytes packet{static_cast<std::uint8_t>(i + 1)};
            for (unsigned at = i * 7; at < std::min(i * 7 + 7, length); ++at) packet.push_back(bytes[at]);
            packet.resize(8, 0xFF);
            pieces[letter + std::to_string(i + 1)] = frame(header, packet);
        }
    }

    /// Plays the words of a script: `+750` and `-750` move the clock by milliseconds, `noclock` switches it
    /// off, `bus1` goes to another bus, `finish` ends the recording, `*4000` puts as many frames of others,
    /// any other word is the name of a piece.
    std::string outcome(const std::string& script) const {
        std::string delivered;
        std::uint64_t messages = 0, pieces_put = 0, pieces_emitted = 0;  // of sessions: emitted as they are
        const auto is_piece = [](const N2KMsg& msg) {
            return msg.pgn == transport_protocol::control_pgn || msg.pgn == transport_protocol::data_pgn;
        };
        RecordTime now{12'345 * ms, RecordTime::Origin::epoch};
        Reassembler reassembler([&](const N2KMsg& msg, const RecordTime& time) {
            ++messages;
            EXPECT_TRUE(time == now);
            const auto known = letters.find(bytes_of(msg));
            pieces_emitted += is_piece(msg);
            if (!is_piece(msg) && msg.source < 90) delivered += known == letters.end() ? '?' : known->second;
        });
        std::uint8_t bus = 0;
        const auto put = [&](Record record) {
            record.time = now;
            record.bus = bus;
            pieces_put += is_piece(record.msg);
            reassembler.put(record);
        };
        std::istringstream words(script + " finish finish");
        for (std::string word; words >> word;) {
            if (word[0] == '+' || word[0] == '-') {
                now.nanoseconds += std::stoll(word) * ms;
            } else if (word[0] == '=') {
                const ReassemblyCounters& c = reassembler.counters();
                EXPECT_EQ(std::stoul(word.substr(1)),
                          c.incomplete_fast_packets + c.incomplete_transports + c.orphan_frames);
            } else if (word == "noclock") {
                now.origin = RecordTime::Origin::none;
            } else if (word.starts_with("bus")) {
                bus = static_cast<std::uint8_t>(std::stoi(word.substr(3)));
            } else if (word == "finish") {
                reassembler.finish();
            } else if (word[0] == '*') {
                for (int i = std::stoi(word.substr(1)); i > 0; --i)
                    put(frame({127250, 2, 99, 255}, payload(8, 1)));
            } else {
                put(pieces.at(word));
            }
        }
        const ReassemblyCounters& c = reassembler.counters();
        EXPECT_EQ(c.messages, messages);
        EXPECT_EQ(pieces_emitted, pieces_put);
        std::uint64_t of_devices = 0;
        for (const Losses::Entry& entry : reassembler.losses().entries())
            of_devices += entry.orphans + entry.repeated;
        EXPECT_EQ(of_devices, c.orphan_frames + c.repeated_frames);
        for (const std::uint64_t count :
             {c.incomplete_fast_packets + c.incomplete_transports, c.orphan_frames, c.repeated_frames})
            delivered += " " + std::to_string(count);
        return delivered;
    }
};

/// The names of a message's frames, the last one first.
std::string backwards(char letter, int last, int first) {
    std::string names;
    for (int i = last; i >= first; --i) names += std::string(" ") + letter + std::to_string(i);
    return names;
}

TEST(Reassembly, OfScripts) {
    const Cast cast;
    // Letters of the messages; counts of incomplete, orphans, repeated.
    const std::tuple<const char*, std::string, const char*> cases[] = {
        // clang-format off
        {"the longest, backwards", backwards('l', 31, 0), "l 0 0 0"},
        {"every frame twice", "a0 a0 a1 a1 a2 b0 b0 b1 b1 b2", "ab 0 0 4"},
        {"interleaved", "a0 s0 b0 p0 q0 r0 s1 a1 p1 r1 q1 b1 b2 a2 s2 p2 q2 r2 p3", "basqrp 0 0 0"},
        {"all in the first frame", "60 00", "60 0 0 0"}, {"one missing", "a0 a2 b0 b1 b2", "b 1 0 0"},
        {"first missing", "a1 a2 b0 b1 b2", "b 0 2 0"}, {"begun again", "a0 a1 A0 A1 A2", "A 1 0 0"},
        {"begun again, first missing", "a0 a1 A1 A2", " 1 2 0"},
        {"begun again, first late", "a0 a1 A1 A0 A2", "A 1 0 0"},
        {"pieces without a first, then the next first", "a1 a2 +51 A0 A1 A2", "A 0 2 0"},
        {"first just late enough", "a1 a2 +50 a0", "a 0 0 0"},
        {"first too late without clock", "noclock a1 a2 *16 a0 *1 b1 b2 *15 b0", "b 1 2 0"},
        {"slow", "a0 +750 a1 +750 a2", "a 0 0 0"}, {"too slow", "a0 a1 +400 60 +351 a2", "6 1 1 0"},
        {"stalled", "a0 s0 +1200 a1 s1 s2 +9000 a2", "sa 0 0 0"}, {"a source stalled", "a0 a1 +500 s0 +500 s1 s2 a2", "sa 0 0 0"},
        {"stalled with several open", "a0 p0 b0 a1 p1 +1200 p2 a2 b1 p3 b2", "apb 0 0 0"},
        {"stalled, not the next frame", "a0 +1200 a2 a1", " 1 2 0"}, {"stalled, one missing", "a0 a2 +1200 a1", " 1 1 0"},
        {"stalled, first missing", "a1 +1200 a2 a0", " 1 1 0"}, {"stalled twice", "a0 a1 +1200 60 +1200 a2", "6 1 1 0"},
        {"stalled and repeated", "a0 a1 +1200 a1 a2", "a 0 0 1"}, {"stalled and begun again", "a0 +1200 a0 a1 a2", "a 0 0 1"},
        {"frames lost in the stall", "a0 s0 a1 +1200 p2 a2 s1 s2", " 2 4 0"},
        {"frames found lost behind the stall", "a0 +1200 a1 s2 a2", " 1 1 0"},
        {"clock put forward", "a0 a1 +999999999 a2 b0 b1 b2", "ab 0 0 0"},
        {"clock put back and on", "a0 -3600000 a1 +3600000 a2", "a 0 0 0"},
        {"not frozen by a clock put back", "a0 -9000 60 +400 60 +351 a1 a2", "66 1 2 0"},
        {"clock of whole seconds", "+655 a0 +1000 a1 a2", "a 0 0 0"},
        {"clock put back", "a0 a1 -3600000 a2", "a 0 0 0"},
        {"timed out while others talk", "a0 s1 *4095 =0 *256 =2", " 1 1 0"},
        {"last one repeated", "a0 a1 a2 a2 b0 b1 s0 b2 s1 b2 60 60", "ab6 1 0 3"},
        {"last one again, but late", "a0 a1 a2 +51 a2 60 +51 60", "a66 0 1 0"},
        {"clock stands still", "a0 a1 *4094 a2 b0 b1 *4096 b2", "a 1 1 0"},
        {"no clock", "noclock a0 a1 a2 a0 *4095 a1 a2", "aa 0 0 0"},
        {"overtaken by half the sequences", "a0 a1 b0 c0 d0 e0 a2", " 5 1 0"},
        {"not yet overtaken", "a0 a1 b0 c0 d0 a2", "a 3 0 0"},
        {"others do not overtake", "a0 a1 s0 s1 s2 q0 q1 q2 r0 r1 r2 60 70 71 a2", "sqr67a 0 0 0"},
        {"longer than possible", "huge a1 a2 a0 huge", "a 2 0 0"}, {"cut short", "lone empty short0 a1 a2", " 1 4 0"},
        {"nothing behind the end", "40 41 short42", "4 0 0 0"},
        {"beyond the end", "a0 beyond a1 a2 beyond", "a 0 2 0"}, {"as new after the end", "a0 a1 finish a2", " 1 1 0"},
        {"the same on two buses", "a0 v! bus1 A0 v! bus0 a1 v1 v2 bus1 A1 A2 bus0 a2 v3 bus1 v1 v2 v3", "Aavv 0 0 0"},
        {"whole already", "message_6 70 message_6 71", "667 0 0 0"},
        // transport protocol
        {"the longest, backwards", "L!" + backwards('L', 255, 1), "L 0 0 0"},
        {"interleaved", "t! u! v! w! x! t1 v1 x1 w1 u1 t2 u2 v2 w2 x2 t3 u3 v3 w3 x3 x4", "tuvwx 0 0 0"},
        {"packets out of order and again", "v! v2 v1 v2 v2 v3", "v 0 0 2"},
        {"packets asked for again once complete", "v! v1 v2 v3 vcts v2 v3 veom v3", "v 0 1 2"},
        {"one missing", "t! t1 t3", " 1 0 0"}, {"announced twice", "v! v! v1 v2 v3", "v 0 0 1"},
        {"another one begun", "t! t1 1! t2 11", "1 1 1 0"},
        {"next announcement missing", "t! t1 t2 T1 T2 T3", " 1 3 0"}, {"sender aborts", "v! v1 vstop v2 v3", " 1 2 0"},
        {"receiver aborts", "v! v1 vrefuse v2 v3", " 1 2 0"},
        {"the other direction goes on", "v! w! v1 wstop v2 v3 w1", "v 1 1 0"},
        {"abort of something else", "t! t1 other_stop t2 t3", "t 0 0 0"},
        {"receiver done before us", "v! v1 v3 veom v2", " 1 1 0"},
        {"slow", "t! +1250 t1 +1250 t2 +1250 t3", "t 0 0 0"}, {"too slow", "t! +700 60 +551 t1", "6 1 1 0"},
        {"stalled", "t! +9000 t1 t2 +2000 t3", "t 0 0 0"}, {"stalled, not the next packet", "t! t1 +9000 t3 t2", " 1 2 0"},
        {"timed out while others talk", "t! *4095 =0 *256 =1", " 1 0 0"},
        {"held by the receiver", "v! +700 60 vcts +700 60 v1 v2 v3", "66v 0 0 0"},
        {"held by another receiver", "v! +700 60 xcts +700 60 v1", "66 1 1 0"},
        {"no clock", "noclock t! *4000 t1 *4000 t2 t3", "t 0 0 0"},
        {"contradictory announcements", "zero too_long too_few too_many no_pgn", " 5 0 0"},
        {"bad packets", "t! packet0 packet4 cut1 empty_packet t1 t2 t3", "t 0 4 0"},
        {"nothing behind the end", "t! t1 t2 short_t3", "t 0 0 0"},
        // clang-format on
    };
    for (const auto& [name, script, expected] : cases) EXPECT_EQ(cast.outcome(script), expected) << name;
}

TEST(Reassembly, TheDefinitionsSayWhatAFastPacketIs) {
    using pgn_vistel::core::Definitions;
    for (const auto& [definitions, expected] :
         {std::pair{Definitions::fixed, "8 8 "}, {Definitions::corrected, "10 "}}) {
        std::string lengths;
        Reassembler reassembler(
            [&](const N2KMsg& msg, const RecordTime&) { lengths += std::to_string(msg.length) + " "; },
            definitions);
        for (const Record& piece : fast_frames({127490, 6, 1, 255}, 0, payload(10, 1)))
            reassembler.put(piece);
        EXPECT_EQ(lengths, expected);
    }
}

TEST(Reassembly, AbandonsTheOldestWhenTooManyAreOpen) {
    const auto begin = [](unsigned i, unsigned piece) {
        const Header header{130820 + (i >> 8), 3, static_cast<std::uint8_t>(i), 255};
        return fast_frames(header, 0, payload(10, i))[piece];
    };
    std::vector<unsigned> delivered;
    Reassembler reassembler([&](const N2KMsg& msg, const RecordTime&) { delivered.push_back(msg.source); });
    for (unsigned i = 0; i < 4096; ++i) reassembler.put(begin(i, 0));
    reassembler.put(begin(4096, 1));  // without a first, in place of the first one
    EXPECT_EQ(reassembler.counters().incomplete_fast_packets, 1u);
    for (const unsigned i : {1u, 4095u, 0u}) reassembler.put(begin(i, 1));
    EXPECT_EQ(delivered, (std::vector<unsigned>{1, 255}));
    // Sessions have 256 places.
    const auto incomplete = reassembler.counters().incomplete_transports;
    for (unsigned i = 0; i < 300; ++i)
        reassembler.put(
            frame({60416, 7, static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(254 + i / 256)},
                  announcement(32, 7, 1, 65240)));
    EXPECT_EQ(reassembler.counters().incomplete_transports, incomplete + 44);
}

}  // namespace
}  // namespace vistel
