#include "network/network.h"

#include <map>

#include "network/questions.h"
#include "network/streams.h"
#include "support/testing.h"

namespace vistel {
namespace {

using pgn_vistel::test::Bytes;
using pgn_vistel::test::message;

constexpr std::int64_t second = 1'000'000'000;

/// A network and the clock of its records.
struct Bus {
    Network network;
    std::int64_t now = 1000 * second;

    void put(std::uint32_t pgn, std::uint8_t source, const Bytes& payload) {
        N2KMsg msg = message(pgn, payload);
        msg.source = source;
        network.put(msg, {now, RecordTime::Origin::epoch});
    }
    const Device& only() const { return *network.devices().at(0); }
};

/// A NAME of manufacturer 1855, class 60, function 170, which differs in its unique number.
Bytes name_of(char letter) {
    return {static_cast<std::uint8_t>(letter), 0, 0xE0, 0xE7, 0x2A, 0xAA, 0x78, 0xC3};
}

/// Who has which address, as in "b@35 a (35)": a displaced one in brackets, "-" without any, "?" unknown.
std::string seats(const Network& network) {
    std::string text;
    for (const Device* const device : network.devices()) {
        text += text.empty() ? "" : " ";
        text += device->name ? static_cast<char>(*device->name & 0xFF) : '?';
        if (device->address)
            text += '@' + std::to_string(*device->address);
        else
            text += device->state == Device::State::displaced
                        ? '(' + std::to_string(*device->last_address) + ')'
                        : "-";
        if (device->commanded) text += '>' + std::to_string(*device->commanded);
        if (device->address_changes > 0) text += '~' + std::to_string(device->address_changes);
        if (device->conflicts > 0) text += '!' + std::to_string(device->conflicts);
        text += '=' + std::to_string(device->messages.total.messages);
    }
    return text;
}

TEST(Network, KnowsWhoHasAnAddress) {
    // "a35": a claims 35; ".35": something comes from 35; "a>40": a is told to take 40.
    const struct {
        const char *events, *seats;
    } cases[] = {
        {".35 .35", "?@35=2"},
        {".35 a35 .35", "a@35=3"},
        {"a35 .35 .36", "a@35=2 ?@36=1"},
        {"a35 a36 .35", "?@35=1 a@36~1=2"},
        {"a35 b35 .35", "b@35!1=2 a(35)!1=1"},
        {"a35 b35 a36 .36", "b@35!1=1 a@36~1!1=3"},
        {"a35 b35 a35 b36", "a@35!2=2 b@36~1!2=2"},
        {"a35 .36 a36", "a@36~1=3"},
        {"a35 a254 .35", "?@35=1 a-=2"},
        {"a254 .254 a35", "a@35=2 ?@254=1"},
        {"a35 b36 a>40 c>41", "a@35>40=1 b@36=1 ?@99=2"},
    };
    for (const auto& c : cases) {
        Bus bus;
        for (const char* event = c.events; *event != 0; event += *event == ' ') {
            const char who = *event++;
            const bool is_command = *event == '>';
            char* end = nullptr;
            const auto address = static_cast<std::uint8_t>(std::strtoul(event + is_command, &end, 10));
            event = end;
            Bytes name = name_of(who);
            if (is_command) {
                name.push_back(address);
                bus.put(65240, 99, name);
            } else if (who == '.') {
                bus.put(127250, address, Bytes(8));
            } else {
                bus.put(60928, address, name);
            }
        }
        EXPECT_EQ(seats(bus.network), c.seats) << c.events;
    }
}

TEST(Network, CountsWhatADeviceSentBeforeItSaidWhoItIs) {
    for (const char* const first : {"unknown", "elsewhere"}) {
        Bus bus;
        for (int i = 0; i < 2; ++i) {
            if ((first == std::string_view("unknown")) == (i == 0))
                bus.put(127250, 35, Bytes(8));
            else
                bus.put(60928, 36, name_of('a'));
            bus.now += second;
        }
        bus.network.count_lost(35, 2);
        bus.network.count_lost(36, 3);
        bus.put(60928, 35, name_of('a'));
        EXPECT_EQ(bus.only().first_seen.value_or(RecordTime{}).nanoseconds, 1000 * second) << first;
        EXPECT_EQ(bus.only().lost, 5u) << first;
    }
}

Bytes padded(const std::string& text, std::uint8_t fill) {
    Bytes bytes(text.begin(), text.end());
    bytes.resize(32, fill);
    return bytes;
}

TEST(Network, ReadsWhatDevicesSayOfThemselves) {
    Bus bus;
    bus.put(60928, 35, name_of('a'));
    Bytes product{0x34, 0x08, 0x15, 0x2A};  // 2100, 10773
    for (const Bytes& text : {padded("Compass  ", 0xFF), padded("1.02", '@'),
                              padded(std::string("2\0junk", 6), 0), padded("S/N\n\x1b 7", ' ')})
        product.insert(product.end(), text.begin(), text.end());
    product.insert(product.end(), {1, 2});
    bus.put(126996, 35, product);
    bus.put(126998, 35, {7, 1, 'M', 'a', 's', 't', ' ', 6, 0, 'B', 0, 0xFC, 0, 2, 1});
    bus.put(126993, 35, {0x60, 0xEA, 7, 0xFC, 0xFF, 0xFF, 0xFF, 0xFF});
    bus.put(126464, 35, {0, 0x12, 0xF1, 0x01, 0x14, 0xF0, 0x01, 0x12, 0xF1, 0x01});
    const Device& device = bus.only();
    EXPECT_EQ(device.parts.manufacturer.text, "Furuno");
    EXPECT_EQ(device.parts.manufacturer.number, 1855);
    EXPECT_EQ(device.parts.device_class.text, "Navigation");
    EXPECT_EQ(device.parts.function.text, "Integrated Navigation");
    EXPECT_EQ(device.parts.device_instance, 0x2A);
    EXPECT_EQ(device.parts.system_instance, 3);
    EXPECT_NEAR(device.product.database_version.value_or(0), 2.1, 1e-6);
    EXPECT_EQ(device.product.product_code, 10773);
    EXPECT_EQ(device.product.model, "Compass");
    EXPECT_EQ(device.product.software_version, "1.02");
    EXPECT_EQ(device.product.model_version, "2");
    EXPECT_EQ(device.product.serial_number, "S/N\uFFFD\uFFFD 7");
    EXPECT_EQ(device.product.certification_level.text, "Level B");
    EXPECT_EQ(device.product.load_equivalency, 2);
    EXPECT_EQ(device.configuration.installation_1, "Mast");
    EXPECT_EQ(device.configuration.installation_2, "B\u00FC");
    EXPECT_EQ(device.configuration.manufacturer_information, "");
    EXPECT_EQ(device.heartbeat.interval, 60);
    EXPECT_EQ(device.heartbeat.controller_1.number, 0);
    EXPECT_EQ(device.transmits, (PgnList{126996, 127250}));
    EXPECT_FALSE(device.receives);
}

TEST(Network, NotesWhatIsNotAsItShouldBe) {
    Bus bus;
    const auto notes = [&bus] { return notes_on(*bus.network.devices().at(0), bus.network.now()); };
    bus.put(60928, 35, name_of('a'));
    bus.put(126993, 35, {0x60, 0xEA, 7, 0xFC, 0xFF, 0xFF, 0xFF, 0xFF});  // every 60 s
    EXPECT_EQ(notes(), "");
    bus.now += 119 * second;
    bus.put(127250, 36, Bytes(8));
    EXPECT_EQ(notes(), "");
    bus.now += 2 * second;
    bus.put(127250, 36, Bytes(8));
    EXPECT_EQ(notes(), "silent for 2 min");
    bus.put(60928, 35, name_of('b'));
    bus.put(60928, 35, name_of('a'));
    bus.put(126993, 35, {0x60, 0xEA, 7, 0xD9, 0xFF, 0xFF, 0xFF, 0xFF});
    bus.network.count_lost(35, 2);
    EXPECT_EQ(notes(),
              "address conflicts: 2, bus controller: Error passive, bus controller: Bus off, equipment: "
              "Fault, lost: 2");
}

TEST(Network, CountsInTheTimeOfTheRecords) {
    Bus bus;
    EXPECT_FALSE(bus.network.seconds());
    const auto run = [&bus](int messages, std::int64_t step) {
        for (; messages > 0; --messages) {
            bus.now += step;
            bus.put(127250, 7, Bytes(8));
        }
        const auto rates = bus.network.rates(bus.only().pgns.at(127250).messages);
        return rates ? rates->messages : -1;
    };
    EXPECT_EQ(run(1, 0), -1) << "no time went by";
    EXPECT_NEAR(run(100, second / 10), 10, 0.2);
    bus.network.turn();
    EXPECT_NEAR(run(20, second), 120 / 30.0, 0.1);
    bus.network.turn();
    EXPECT_NEAR(run(0, 0), 1, 0.01) << "of the last period alone";
    run(1, -500 * second);
    run(10, second);
    run(1, 3600 * second);
    EXPECT_NEAR(run(10, second), 1, 0.1) << "other recordings, not an hour's silence";

    Record frame;
    frame.kind = Record::Kind::frame;
    frame.msg = message(127250, Bytes(8, 0x55));
    frame.msg.source = 7;
    for (int i = 0; i < 100; ++i) bus.network.count_wire(frame, pgn_vistel::core::Definitions::corrected);
    const double seconds = bus.network.seconds().value_or(0);
    EXPECT_NEAR(bus.network.share(bus.only().wire).value_or(0), 100 * 131 / seconds / 250'000, 0.0001);
}

TEST(Network, CountsTheBitsOfAFrame) {
    // 67 bits, 8 a byte, and those that are stuffed in; counted on texts of 0 and 1, with the check sum as
    // the rest of a long division.
    const struct {
        std::uint32_t identifier;
        Bytes bytes;
        unsigned bits;
    } cases[] = {
        {0x0AAAAAAA, {}, 68},
        {0x15555555, Bytes(8, 0x55), 131},
        {0, Bytes(8, 0), 150},
        {0x1FFFFFFF, Bytes(8, 0xFF), 149},
        {0x09F11223, {0xFF, 0x10, 0x27, 0xFF, 0x7F, 0xFF, 0x7F, 0xFD}, 141},
        {0x18EAFFFE, {0, 0xEE, 0}, 98},
    };
    for (const auto& c : cases) EXPECT_EQ(wire_bits(c.identifier, c.bytes), c.bits) << c.identifier;

    const struct {
        std::uint32_t pgn;
        std::size_t length;
        std::uint64_t frames;
    } whole[] = {{127250, 8, 1}, {126996, 134, 20}, {126996, 3, 1}, {126998, 300, 44}};
    for (const auto& c : whole) {
        Record record;
        record.msg = message(c.pgn, Bytes(c.length));
        EXPECT_EQ(wire_count(record, pgn_vistel::core::Definitions::corrected).frames, c.frames) << c.length;
    }
}

TEST(Network, IsBoundedWhateverComes) {
    Bus bus;
    std::mt19937 random(5);
    for (int i = 0; i < pgn_vistel::test::trials(30'000); ++i) {
        constexpr std::uint32_t pgns[] = {60928, 60928, 65240, 126464, 126993, 126996, 126998};
        bus.put(pgns[random() % std::size(pgns)], static_cast<std::uint8_t>(random()),
                pgn_vistel::test::random_bytes(random, random() % (i % 7 == 0 ? 1786 : 20)));
    }
    EXPECT_LE(bus.network.devices().size(), Network::most_devices);
    Bus one;
    for (std::uint32_t pgn = 65280; pgn < 65280 + 600; ++pgn) one.put(pgn, 7, {1});
    EXPECT_EQ(one.only().pgns.size(), Device::most_pgns);
    EXPECT_EQ(one.only().pgns.at(Device::other_pgns).messages.total.messages, 600 - 255u);
}

TEST(Questions, AskForWhatIsMissingOnceAndSlowly) {
    Bus bus;
    bus.put(60928, 35, name_of('a'));
    bus.put(126996, 35, Bytes(134, ' '));
    bus.put(127250, 40, Bytes(8));
    bus.put(60928, 50, name_of('c'));
    std::string asked;
    int refusals = 2;  // of the third question
    Questions questions(
        [&](const N2KMsg& frame) {
            EXPECT_EQ(frame.pgn, 59904u);
            EXPECT_EQ(frame.length, 3);
            EXPECT_EQ(frame.source, 50);
            const std::uint32_t pgn =
                frame.data[0] | unsigned{frame.data[1]} << 8 | unsigned{frame.data[2]} << 16;
            if (asked.find("126996") != std::string::npos && refusals-- > 0) return false;
            asked += std::to_string(bus.now / second - 1000) + ':' + std::to_string(pgn) + '>' +
                     std::to_string(frame.destination) + ' ';
            return true;
        },
        50);
    for (; bus.now < 1100 * second; bus.now += second / 4) {
        if (bus.now == 1007 * second) bus.put(60928, 40, name_of('b'));
        questions.advance(bus.network, bus.now);
    }
    EXPECT_EQ(asked,
              "0:60928>255 5:60928>40 6:126996>40 9:126998>35 10:126998>40 11:126464>35 12:126464>40 ");
}

TEST(Streams, AreCountedBeforeTheZeroOfTheirClock) {
    Streams streams;
    N2KMsg msg{};
    msg.pgn = 127250;
    PlayTime now = -20 * one_second - 1;
    for (; now < -2 * one_second; now += one_second / 2) EXPECT_TRUE(streams.put(msg, 0, now));
    const auto all =
        streams.select({}, StreamOrder::appearance, now, {}, pgn_vistel::core::Definitions::fixed);
    ASSERT_EQ(all.size(), 1u);
    EXPECT_NEAR(all[0]->rate(now), 2, 0.5);
}

}  // namespace
}  // namespace vistel
