// What is written in another format is read back as the same messages.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "can/transport_protocol.h"
#include "host/recording_contents.h"
#include "writers/converter.h"
#include "writers/written_formats.h"

namespace vistel {
namespace {

using Messages = std::vector<std::string>;
using Kind = Record::Kind;

/// The messages of records but for the pieces that transport protocol cuts them into; times in milliseconds
/// of the day since the first.
class Joined {
  public:
    void put(const Record& record) { reassembler_.put(record); }
    Messages messages() {
        reassembler_.finish();
        const ReassemblyCounters& c = reassembler_.counters();
        EXPECT_EQ(c.incomplete_fast_packets + c.incomplete_transports + c.orphan_frames, 0u);
        return messages_;
    }

  private:
    Messages messages_;
    std::int64_t start_ = -1;
    Reassembler reassembler_{[this](const N2KMsg& msg, const RecordTime& time) {
        const std::int64_t now = time.nanoseconds / 1'000'000;
        if (start_ < 0) start_ = now;
        if (msg.pgn != transport_protocol::control_pgn && msg.pgn != transport_protocol::data_pgn)
            messages_.push_back(std::to_string(now - start_) + ' ' + show({Kind::message, 0, msg, time}));
    }};
};

std::string converted(const std::vector<Record>& records, const std::string& format,
                      std::vector<std::string>* refused = nullptr) {
    const auto writer = make_writer(format);
    std::string out;
    Converter converter(*writer, out, [&](const N2KMsg& msg, const char* why) {
        if (refused == nullptr) ADD_FAILURE() << format << ": " << why;
        if (refused != nullptr) refused->push_back(std::to_string(msg.pgn) + ": " + why);
    });
    for (const Record& record : records) converter.put(record);
    converter.finish();
    return out;
}

std::vector<Record> records_in(const std::string& bytes, const std::string& format) {
    Recording recording;
    EXPECT_TRUE(recording.attach(std::make_unique<test::Drops>(bytes, 4096)));
    std::vector<Record> records;
    Record record;
    for (ReadResult result; (result = recording.next(record)) != ReadResult::end;) {
        EXPECT_NE(result, ReadResult::problem) << format << ": " << described(recording.problem(), "written");
        if (result == ReadResult::record) records.push_back(record);
    }
    EXPECT_EQ(recording.format_name(), format);
    return records;
}

Messages joined(const std::vector<Record>& records) {
    Joined all;
    for (const Record& record : records) all.put(record);
    return all.messages();
}

/// A message of each way to travel, at random.
Record any_message(std::mt19937& random, RecordTime::Origin origin, std::int64_t milliseconds) {
    struct Sort {
        std::uint32_t pgn;
        unsigned least, most;
    };
    constexpr Sort sorts[] = {
        {127250, 0, 8},  {59904, 3, 3},   {129029, 0, 223},       {126720, 2, 223},   {130306, 6, 6},
        {65240, 9, 9},   {126208, 6, 60}, {129540, 9, 223},       {126996, 134, 134}, {126998, 224, 1785},
        {61184, 9, 400}, {60928, 8, 8},   {262143 - 511, 9, 223},
    };
    const Sort& sort = sorts[random() % std::size(sorts)];
    Record record;
    N2KMsg& msg = record.msg;
    msg.pgn = sort.pgn;
    msg.priority = random() % 8;
    msg.source = static_cast<std::uint8_t>(random() % 4);
    msg.destination =
        static_cast<std::uint8_t>(is_addressed(sort.pgn) && random() % 3 > 0 ? random() % 254 : everyone);
    msg.length = static_cast<std::uint16_t>(sort.least + random() % (sort.most - sort.least + 1));
    for (unsigned i = 0; i < msg.length; ++i)
        msg.data[i] = static_cast<std::uint8_t>(random() % 3 > 0 ? random() : 0x10);
    record.time = {milliseconds * 1'000'000, origin};
    return record;
}

class EachFormat : public testing::TestWithParam<std::string> {};

TEST_P(EachFormat, HoldsTheSameMessages) {
    using Origin = RecordTime::Origin;
    std::mt19937 random(2000);
    for (const auto& [origin, start] : {std::pair{Origin::epoch, std::int64_t{1'777'887'000'250}},
                                        {Origin::day, std::int64_t{86'390'000}},
                                        {Origin::start, std::int64_t{12}}}) {
        std::vector<Record> messages;
        for (int i = 0; i < 100; ++i) messages.push_back(any_message(random, origin, start + 40 * i));
        const std::vector<Record> once = records_in(converted(messages, GetParam()), GetParam());
        EXPECT_EQ(joined(once), joined(messages));
        for (const std::string& other : written_formats()) {
            const std::vector<Record> there = records_in(converted(once, other), other);
            EXPECT_EQ(joined(there), joined(messages)) << other;
            EXPECT_EQ(joined(records_in(converted(there, GetParam()), GetParam())), joined(messages))
                << "back from " << other;
        }
    }
}

TEST(Converter, RefusesWhatFormatsCannotHold) {
    Record everyones, addressed;
    everyones.msg.pgn = 127250;
    everyones.msg.destination = 3;
    addressed.msg.pgn = 59905;
    for (const std::string& format : written_formats()) {
        const bool is_text = format == "plain" || format == "actisense-ascii";
        const std::size_t expected = is_text ? 0 : make_writer(format)->takes(Kind::message) ? 1 : 2;
        std::vector<std::string> refused;
        converted({everyones, addressed}, format, &refused);
        EXPECT_EQ(refused.size(), expected) << format;
    }
}

TEST(Converter, NumbersTheFastPacketsThatItMakes) {
    Record longest;
    longest.msg.pgn = 129029;
    longest.msg.length = 223;
    longest.msg.destination = 255;
    const std::string frames = converted({longest, longest}, "candump");
    EXPECT_EQ(std::ranges::count(frames, '\n'), 64);
    EXPECT_NE(frames.find("#00DF"), std::string::npos) << frames;
    EXPECT_NE(frames.find("#20DF"), std::string::npos) << frames;
}

TEST(Converter, KeepsTheNamesOfInterfaces) {
    const auto writer = make_writer("candump");
    const std::pair<const char*, const char*> names[] = {
        {"nmea", "nmea"}, {"", "can1"},     {"can1", "can2"}, {"tcp://10.0.0.1:1457", "can3"},
        {"a b", "can4"},  {"nmea", "can5"}, {"can7", "can7"}, {"", "can8"}};
    std::string out;
    Record record{.kind = Kind::frame, .bus = 0, .msg = {}, .time = {}};
    for (const auto& [name, written] : names) {
        EXPECT_EQ(writer->name_bus(record.bus, name), written);
        EXPECT_EQ(writer->put(record, out), nullptr);
        EXPECT_TRUE(out.starts_with(std::string(written) + " ")) << out;
        out.clear();
        ++record.bus;
    }
    EXPECT_EQ(make_writer("pcap")->name_bus(0, "can0"), "");
}

TEST(Converter, WritesTimesAsFormatsHaveThem) {
    Record record;
    record.msg.pgn = 127250;
    record.msg.destination = everyone;
    using Origin = RecordTime::Origin;
    constexpr std::int64_t second = 1'000'000'000, epoch = 1'777'887'000 * second;
    const std::tuple<const char*, std::int64_t, Origin, const char*> cases[] = {
        {"plain", epoch, Origin::epoch, "2026-05-04T09:30:00.000Z"},
        {"plain", epoch + 1'000, Origin::epoch, "2026-05-04T09:30:00.000001Z"},
        {"plain", epoch + 1, Origin::epoch, "2026-05-04T09:30:00.000000001Z"},
        {"plain", 86'399 * second, Origin::day, "23:59:59.000"},
        {"plain", 86'401 * second, Origin::day, "00:00:01.000"},
        {"plain", 0, Origin::none, ",0"},
        {"candump", epoch + 1'000, Origin::epoch, "(1777887000.000001)"},
        {"candump", 12'000'001, Origin::start, "(0.012000001)"},
        {"candump", 0, Origin::none, "can0"},
        {"yacht-devices", epoch + 999'999, Origin::epoch, "09:30:00.000"},
        {"actisense-ascii", epoch + second / 4, Origin::epoch, "A093000.250"},
    };
    for (const auto& [format, nanoseconds, origin, expected] : cases) {
        record.kind = make_writer(format)->takes(Kind::frame) ? Kind::frame : Kind::message;
        record.time = {nanoseconds, origin};
        const std::string out = converted({record}, format);
        EXPECT_EQ(out.substr(0, out.find_first_of(" ,", 1)), expected) << format;
    }
}

TEST_P(EachFormat, CountsTimesThatItSaysOtherwise) {
    using Origin = RecordTime::Origin;
    constexpr Origin origins[] = {Origin::none, Origin::start, Origin::day, Origin::epoch};
    std::mt19937 random(2000);
    const std::pair<Origin, int> tried[] = {// with hours: a clock is read by how far it has come
                                            {Origin::none, 0},       {Origin::start, 11},
                                            {Origin::start, 30'000}, {Origin::day, 11},
                                            {Origin::epoch, 11'000}, {Origin::epoch, 493'857}};
    for (const auto& [origin, hours] : tried) {
        const auto writer = make_writer(GetParam());
        std::string out;
        Converter converter(*writer, out, [](const N2KMsg&, const char* why) { ADD_FAILURE() << why; });
        Record timed = any_message(random, origin, std::int64_t{hours} * 3'600'000), untimed = timed;
        untimed.time = {};
        untimed.msg.source = 9;
        for (const Record& record : {timed, untimed}) converter.put(record);
        std::map<std::pair<Origin, Origin>, std::uint64_t> told, found;
        std::set<std::int64_t> times;
        Reassembler reassembler([&](const N2KMsg& msg, const RecordTime& time) {
            if (msg.pgn != timed.msg.pgn) return;  // what carries it
            ++found[{msg.source == 9 ? Origin::none : timed.time.origin, time.origin}];
            if (time.origin != Origin::none) times.insert(time.nanoseconds);
        });
        for (const Record& record : records_in(out, GetParam())) reassembler.put(record);
        for (const Origin had : origins)
            for (const Origin now : origins)
                if (const auto count = converter.messages_of_times(had, now)) told[{had, now}] = count;
        EXPECT_EQ(told, found);
        EXPECT_LE(times.size(), 1u) << "nothing says the time of the second";
    }
}

INSTANTIATE_TEST_SUITE_P(Converting, EachFormat, testing::ValuesIn(written_formats()));

}  // namespace
}  // namespace vistel
