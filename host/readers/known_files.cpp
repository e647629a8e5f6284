#include "readers/known_files.h"

#include <algorithm>

namespace vistel {
namespace {

using namespace std::string_view_literals;

constexpr struct KnownFile {
    std::size_t offset;
    std::string_view bytes, what;
    bool is_archive = false;
} known[] = {
    {0, "\xFF\xFE"sv, "UTF-16 text"},
    {0, "\xFE\xFF"sv, "UTF-16 text"},
    {0, "PK\x03\x04"sv, "a zip archive", true},
    {0, "7z\xBC\xAF\x27\x1C"sv, "a 7z archive", true},
    {0, "Rar!\x1A\x07"sv, "a rar archive", true},
    {257, "ustar"sv, "a tar archive", true},
    {0, "\x89PNG\r\n"sv, "a PNG picture"},
    {0, "\xFF\xD8\xFF"sv, "a JPEG picture"},
    {0, "GIF8"sv, "a GIF picture"},
    {0, "%PDF-"sv, "a PDF document"},
    {0, "{\\rtf"sv, "an RTF document"},
    {0, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv, "an old Office document"},
    {0, "SQLite format 3"sv, "an SQLite database"},
    {0,
     "\x7F"
     "ELF"sv,
     "a program"},
    {0, "MZ"sv, "a program"},
    {0, "MDF  "sv, "an MDF measurement"},
    {0, "\xEF\xBB\xBF<"sv, "XML or HTML"},
    {0, "<?xml"sv, "XML"},
    {0, "<!DOCTYPE"sv, "HTML"},
    {0, "<html"sv, "HTML"},
    {0, "$GP"sv, "NMEA 0183 sentences"},
    {0, "$II"sv, "NMEA 0183 sentences"},
    {0, "!AIVDM"sv, "NMEA 0183 sentences"},
};

bool fits(std::string_view head, const KnownFile& file) {
    return head.size() > file.offset && head.substr(file.offset).starts_with(file.bytes);
}

/// Whether every second byte of text in Latin letters is 0.
bool looks_like_wide_text(std::string_view head) {
    constexpr std::size_t looked_at = 64;
    if (head.size() < looked_at) return false;
    std::size_t zeros[2] = {};
    for (std::size_t i = 0; i < looked_at; ++i) zeros[i % 2] += head[i] == '\0';
    return std::max(zeros[0], zeros[1]) > looked_at / 2 * 9 / 10 && std::min(zeros[0], zeros[1]) == 0;
}

}  // namespace

std::string_view guess_file(std::string_view head) {
    for (const auto& file : known)
        if (fits(head, file)) return file.what;
    return looks_like_wide_text(head) ? "UTF-16 text" : std::string_view{};
}

std::string_view archive_kind(std::string_view head) {
    for (const auto& file : known)
        if (file.is_archive && fits(head, file)) return file.what;
    return {};
}

}  // namespace vistel
