#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// The text of a DF 50 or DF 51 field with any length and encoding in its header.
std::wstring string_field(DF df, int length, int encoding, const Bytes& text) {
    Bytes field = {static_cast<std::uint8_t>(length), static_cast<std::uint8_t>(length >> 8),
                   static_cast<std::uint8_t>(encoding)};
    if (df == 50) field.erase(field.begin() + 1);
    field.insert(field.end(), text.begin(), text.end());
    field.resize(4000);
    const Converted c = convert(df, field.data(), unit::V);
    EXPECT_EQ(c.value.type, CV_TEXT);
    EXPECT_EQ(c.count, length);
    return c.value.value.wide;
}

TEST(Texts, Short) {
    EXPECT_EQ(string_field(50, 5, 1, {'A', 'b', 'c', 'd'}), L"Abc");
    EXPECT_EQ(string_field(50, 8, 1, {'A', 'b', 0, 'd', 'e', 'f'}), L"Ab");
    EXPECT_EQ(string_field(50, 7, 1, {0x80, 0x81, 0x8C, 0x9C, 0xE9}), L"\x20AC\x03A9\x0152\x0153\x00E9");
    EXPECT_EQ(string_field(50, 6, 0, {'A', 0, 0xA9, 0x03, 'c', 0}), L"A\x03A9");
    EXPECT_EQ(string_field(50, 7, 0, {'A', 0, 'b', 0, 'c'}), L"Ab") << "half a character is none";
    EXPECT_EQ(string_field(50, 8, 0, {'A', 0, 0, 0, 'c', 0}), L"A");
    EXPECT_EQ(string_field(50, 252, 1, Bytes(250, 'x')), std::wstring(125, L'x'));
    EXPECT_EQ(string_field(50, 252, 0, Bytes(250, 'x')), std::wstring(125, L'\x7878'));
    EXPECT_EQ(string_field(50, 2, 1, {'A'}), L"");
    string_field(50, 4, 1, {'o', 'k'});
    for (const auto& [length, encoding] : {std::pair{0, 1}, {1, 1}, {253, 1}, {255, 0}, {5, 2}, {5, 255}})
        EXPECT_EQ(string_field(50, length, encoding, {'X', 'Y', 'Z'}), L"ok") << "refused: the previous text";
}

TEST(Texts, Medium) {
    EXPECT_EQ(string_field(51, 6, 1, {'A', 'b', 'c'}), L"Abc");
    EXPECT_EQ(string_field(51, 9, 0, {'A', 0, 'b', 0, 'c', 0}), L"Ab") << "without the last character";
    for (const auto& [length, encoding] : {std::pair{3, 1}, {3, 0}, {4, 0}, {5, 0}})
        EXPECT_EQ(string_field(51, length, encoding, {'A', 0, 'b', 0}), L"");
    EXPECT_EQ(string_field(51, 1785, 1, Bytes(1782, 'x')), std::wstring(891, L'x'));
    EXPECT_EQ(string_field(51, 1785, 0, Bytes(1782, 'x')), std::wstring(890, L'\x7878'));
    string_field(51, 5, 1, {'o', 'k'});
    for (const auto& [length, encoding] : {std::pair{0, 1}, {2, 1}, {1786, 1}, {65535, 0}, {6, 2}})
        EXPECT_EQ(string_field(51, length, encoding, {'X', 'Y', 'Z'}), L"ok");
}

std::string narrow_text(DF df, Bytes field, int count) {
    field.resize(2000, 'z');
    const Converted c = convert(df, field.data(), unit::raw_count, count);
    EXPECT_EQ(c.value.type, CV_TEXT_NARROW);
    EXPECT_EQ(c.count, count);
    return c.value.value.narrow;
}

TEST(Texts, FixedLengthAndHexDump) {
    EXPECT_EQ(narrow_text(63, {'A', 'B', 0xFF, 0xFF}, 4), "AB");
    EXPECT_EQ(narrow_text(63, {'A', 0, 'C', 'D'}, 4), "A");
    EXPECT_EQ(narrow_text(63, {'A', 0xE9}, 3), "A\xE9z");
    EXPECT_EQ(narrow_text(63, {}, 5000), std::string(1785, 'z'));
    EXPECT_EQ(narrow_text(3002, {0x01, 0xAB}, 2), "01 AB");
    std::string longest = "7A";
    for (int i = 1; i < 84; ++i) longest += " 7A";
    for (const int count : {84, 256}) EXPECT_EQ(narrow_text(3002, {}, count), longest);
    for (const int count : {0, -5}) EXPECT_EQ(narrow_text(63, {}, count) + narrow_text(3002, {}, count), "");
}

}  // namespace
}  // namespace pgn_vistel::test
