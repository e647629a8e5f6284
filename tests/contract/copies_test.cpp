#include "contract/text_copy.h"

#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

TEST(Copies, CodePage) {
    wchar_t to_wide[2] = {};
    char to_narrow[4];
    for (int c = 1; c < 256; ++c) {
        const char text[] = {static_cast<char>(c), 0};
        to_wide[0] = static_cast<wchar_t>(character_of(static_cast<std::uint8_t>(c)));
        EXPECT_EQ(copy_w2n(to_narrow, to_wide, 2), 1);
        EXPECT_EQ(to_narrow[0], text[0]) << c;
        EXPECT_EQ(*widen(to_wide, text, 2), static_cast<wchar_t>(c));
    }
    EXPECT_EQ(copy_w2n(to_narrow, L"k\x2126", 4), 2);
    EXPECT_STREQ(to_narrow, "k\x26") << "the ohm sign is not the omega";
}

TEST(Copies, Bounds) {
    for (int size = 1; size <= 6; ++size)
        EXPECT_EQ(printed([](wchar_t* b, int n) { return copy_wide(b, L"abcd", n); }, size),
                  std::wstring(L"abcd").substr(0, static_cast<std::size_t>(std::clamp(size - 1, 0, 4))));
    wchar_t wide_text[] = L"?";
    EXPECT_EQ(copy_wide(wide_text, nullptr, 2), 0);
    EXPECT_EQ(wide_text[0], 0);
    wide_text[0] = L'?';
    EXPECT_EQ(copy_wide(wide_text, L"a", 0), 0);
    EXPECT_EQ(wide_text[0], 0) << "always terminated";
    EXPECT_EQ(copy_w2n(nullptr, L"a", 5), -1);
    EXPECT_EQ(copy_narrow(nullptr, "a", 5), -1);
}

}  // namespace
}  // namespace pgn_vistel::test
