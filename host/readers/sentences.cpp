#include "readers/sentences.h"

#include <algorithm>

#include "can/identifier.h"
#include "readers/scan.h"
#include "text/characters.h"
#include "text/hex.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {
namespace {

/// The longest one has 1785 bytes as pairs of digits.
constexpr std::size_t most_size = 4096;

constexpr char tag_block = '\\';

/// An exclamation mark begins a sentence before its name alone: old devices have one within a time.
bool begins_sentence(char c, char next) {
    return c == '$' || (c == '!' && next >= 'A' && next <= 'Z');
}

bool is_line_end(char c) {
    return c == '\n' || c == '\r';
}

bool is_filling(char c) {
    return is_blank(c) || c == '\0';
}

/// Where the piece ends that begins `text`, at the latest at its end; that is behind the last character
/// where it may go on in bytes to come.
std::size_t find_end(std::string_view text, bool last) {
    for (std::size_t i = 1; i < text.size(); ++i) {
        const char c = text[i];
        if (is_line_end(c) || c == tag_block) return i;
        if (i + 1 == text.size() && !last) break;
        if (begins_sentence(c, i + 1 < text.size() ? text[i + 1] : '\0')) return i;
    }
    return text.size();
}

/// Cuts the checksum off the text of a sentence.
Sentence::Checksum take_checksum(std::string_view& text) {
    const std::size_t star = text.find('*');
    if (star == std::string_view::npos) return Sentence::Checksum::none;
    std::uint32_t given = 0;
    const std::string_view digits = text.substr(star + 1);
    text = text.substr(0, star);
    unsigned sum = 0;
    for (const char c : text) sum ^= static_cast<unsigned char>(c);
    const bool right = digits.size() == 2 && parse_hex(digits, given) && given == sum;
    return right ? Sentence::Checksum::right : Sentence::Checksum::wrong;
}

}  // namespace

std::string_view Sentence::take_field() {
    const std::size_t comma = text.find(',');
    const std::string_view field = text.substr(0, comma);
    text.remove_prefix(std::min(text.size(), field.size() + 1));
    return field;
}

Piece SentenceCutter::take(std::string_view bytes, bool last, std::size_t& size, Sentence& sentence,
                           Problem& problem) {
    if (line_ended_) ++line_;
    line_ended_ = bytes[0] == '\n';
    size = 1;
    if (line_ended_) {
        in_comment_ = false;
        return Piece::nothing;
    }
    if (bytes[0] == '#' || in_comment_) {
        size = std::min(bytes.find('\n'), bytes.size());
        in_comment_ = true;
        return Piece::nothing;
    }
    if (is_filling(bytes[0])) {
        while (size < bytes.size() && is_filling(bytes[size])) ++size;
        return Piece::nothing;
    }
    if (bytes[0] == tag_block) {
        size = std::min(bytes.find_first_of("\\\n", 1), bytes.size());
        if (size == bytes.size() && !last && size < most_size) return Piece::more;
        if (size < bytes.size() && bytes[size] == tag_block) {
            ++size;
            return Piece::nothing;
        }
        size = 1;
        describe(problem, "a tag block has no end");
        return Piece::problem;
    }
    bytes = bytes.substr(0, most_size);
    size = find_end(bytes, last || bytes.size() == most_size);
    if (size == bytes.size() && !last && size < most_size) return Piece::more;
    const std::string_view text = trimmed(bytes.substr(0, size));
    if ((text[0] == '$' || text[0] == '!') && text.find(',') != std::string_view::npos && size < most_size) {
        sentence.start = text[0];
        sentence.text = text.substr(1);
        sentence.checksum = take_checksum(sentence.text);
        sentence.torn = size < bytes.size() && !is_line_end(bytes[size]);
        return Piece::sentence;
    }
    describe(problem, quoted(text.substr(0, 80)), " is no sentence");
    return Piece::problem;
}

bool is_whole(const Sentence& sentence, Problem& problem) {
    if (sentence.checksum == Sentence::Checksum::right) return true;
    describe(problem, sentence.checksum == Sentence::Checksum::none ? "a sentence without its checksum"
                                                                    : "the checksum of a sentence is wrong");
    return false;
}

bool read_pgn_field(std::string_view text, std::uint32_t& pgn, Problem& problem) {
    if (!read_hex_field(text, "PGN", 6, pgn, problem)) return false;
    if (pgn > max_pgn) describe(problem, "PGN ", pgn, " is above ", max_pgn);
    return pgn <= max_pgn;
}

bool has_sentence(std::string_view line, bool (*is_one)(const Sentence&)) {
    if (line.empty() || (line[0] != '$' && line[0] != '!' && line[0] != tag_block)) return false;
    SentenceCutter cutter;
    Sentence sentence;
    Problem problem;
    for (std::size_t size = 0; !line.empty(); line.remove_prefix(size)) {
        if (cutter.take(line, true, size, sentence, problem) == Piece::sentence && is_one(sentence))
            return true;
    }
    return false;
}

}  // namespace vistel
