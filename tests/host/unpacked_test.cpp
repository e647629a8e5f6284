// Compressed recordings are read like others.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/recording_contents.h"
#include "readers/unpacker.h"

namespace vistel {
namespace {

using namespace std::string_literals;

/// "can0 09F8017F#01\ncan0 09F8017F#02\n" and, in a piece of its own, "can0 09F8017F#03\n".
struct Packed {
    std::string name, two, one;
    friend std::ostream& operator<<(std::ostream& out, const Packed& packed) { return out << packed.name; }
};
const Packed all_packed[] = {
    {"gzip", bytes("1F8B08000000000002034B4ECC335030B074B330303477533630E44A461530E20200A2AA69D022000000"),
     bytes("1F8B08000000000002034B4ECC335030B074B330303477533630E602004FEB584F11000000")},
    {"xz",
     bytes("FD377A585A0000016922DE360200210116000000742FE5A3E00021001A5D0031984A1D2F9D15B8CE1073FD0F6EC37F40"
           "C35AD535E8E2BC8700000000A2AA69D000013222BEA096189042990D010000000001595A"),
     bytes(
         "FD377A585A0000016922DE360200210116000000742FE5A301001063616E302030394638303137462330330A000000004F"
         "EB584F000125113E45C5A29042990D010000000001595A")},
    {"zstd", bytes("28B52FFD2422CD00009863616E302030394638303137462330310A320A0100A99B4BD40BA5FE"),
     bytes("512A4D1803000000010203"  // skipped
           "28B52FFD241189000063616E302030394638303137462330330AED668B22")},
    {"bzip2",
     bytes(
         "425A6839314159265359B81AA25100000F5D000010480070E001002801200020AAA1A7E927A8F5080680248B6376E7C429"
         "4E96F58F98FC5DC914E14242E06A8944"),
     bytes("425A68393141592653591F8F50E6000007DD000010480068E00100280120002204C27A34201A0098045DCA7E9C61D3C2"
           "EE48A70A1203F1EA1CC0")},
};

/// The payloads of records, each behind a blank, and what was wrong.
std::string shown(const Contents& contents) {
    std::string all;
    for (const std::string& line : contents.shown)
        all += line.starts_with("F ") ? " " + line.substr(line.size() - 1) : "; " + line;
    return all;
}
std::string read(const std::string& packed, std::size_t most = 1 << 20) {
    return shown(read_drops(packed, most));
}

class Unpacked : public testing::TestWithParam<Packed> {
  protected:
    void SetUp() override {
        if (!make_unpacker(Packing::gzip)) GTEST_SKIP() << "built without the libraries";
    }
    const std::string &name = GetParam().name, &two = GetParam().two, &one = GetParam().one;
};

TEST_P(Unpacked, PiecesAreOneRecording) {
    const std::string all =
        two + one + std::string(7, '\0') + one + all_packed[0].two + std::string(600, '\0');
    for (const std::size_t most : {std::size_t{1}, std::size_t{13}, all.size()}) {
        const Contents contents = read_drops(all, most);
        EXPECT_EQ(shown(contents), " 1 2 3 3 1 2");
        EXPECT_EQ(contents.bytes_read, all.size());
    }
}

TEST_P(Unpacked, WhatIsCutOffGivesWhatThereIs) {
    std::string last;
    for (std::size_t size = 10; size < two.size(); ++size) {
        last = read(one + two.substr(0, size), 5);
        const std::size_t problem = last.find(';');
        ASSERT_NE(problem, std::string::npos) << size;
        EXPECT_TRUE(std::string(" 3 1 2").starts_with(last.substr(0, problem))) << last;
        EXPECT_NE(last.find("cannot read on: the " + name + " data is cut off"), std::string::npos) << last;
    }
    EXPECT_TRUE(last.starts_with(" 3 1 2; 4: ")) << last;
}

TEST_P(Unpacked, DamageIsTold) {
    std::string damaged = two;
    damaged[damaged.size() - 3] ^= 1;
    EXPECT_TRUE(read(one + damaged).ends_with("cannot read on: the " + name + " data is damaged"));
    EXPECT_EQ(read(one + "can0"),
              " 3; 2: cannot read on: the " + name + " data is followed by something else");
    for (std::size_t at = 0; at < two.size(); ++at) {  // whatever comes of it, it ends
        damaged = two;
        damaged[at] ^= 0x55;
        (void)read(damaged, 3);
    }
}

INSTANTIATE_TEST_SUITE_P(Each, Unpacked, testing::ValuesIn(all_packed),
                         [](const auto& tested) { return tested.param.name; });

TEST(Archives, AreNotReadAsRecordings) {
    const std::string line = "can0 09F8017F#01\n";
    const std::pair<std::string, std::string> cases[] = {
        {"PK\3\4"s + line, "zip"},
        {"one.log" + std::string(250, '\0') + "ustar  \0"s + line, "tar"},
        {bytes("377ABCAF271C") + line, "7z"},
        {"Rar!\x1A\7" + line, "rar"}};
    for (const auto& [bytes, kind] : cases)
        for (const std::size_t most : {std::size_t{1}, bytes.size()})
            EXPECT_EQ(read(bytes, most), "; 0: this is a " + kind + " archive; take the recording out of it");
}

}  // namespace
}  // namespace vistel
