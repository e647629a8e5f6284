#pragma once

#include <concepts>
#include <cstdint>
#include <string_view>

#include "readers/block_reader.h"
#include "readers/line_format.h"

namespace vistel {

/// A sentence as NMEA 0183 frames it: "$PCDIN,01F112,...*51".
struct Sentence {
    enum class Checksum { none, right, wrong };

    char start = '$';
    std::string_view text;  ///< between start sign and checksum
    Checksum checksum = Checksum::none;
    bool torn = false;  ///< another one begins where its line should end

    /// Cuts the text up to the next comma off, with the comma.
    std::string_view take_field();
};

/// What was cut off a text in which sentences stand: on lines of their own, several on one line, behind tag
/// blocks, and torn ones.
enum class [[nodiscard]] Piece{
    sentence,
    nothing,  ///< blanks, a line end, a comment, a tag block
    problem,  ///< something else
    more,     ///< what is there has no end yet
};

/// Cuts pieces off a text and counts its lines.
class SentenceCutter {
  public:
    Piece take(std::string_view bytes, bool last, std::size_t& size, Sentence& sentence, Problem& problem);

    /// The line of the last piece, from 1.
    std::uint64_t line() const { return line_; }

  private:
    std::uint64_t line_ = 1;
    bool line_ended_ = false;  // with the last piece
    bool in_comment_ = false;  // of which more may come
};

/// Reads a PGN of six hexadecimal digits.
[[nodiscard]] bool read_pgn_field(std::string_view text, std::uint32_t& pgn, Problem& problem);

/// Whether `line` begins with sentences and has one of a format by whose `is_one` it is told.
bool has_sentence(std::string_view line, bool (*is_one)(const Sentence&));

/// Whether a sentence that must have a checksum has the right one; else the problem tells.
[[nodiscard]] bool is_whole(const Sentence& sentence, Problem& problem);

/// Reads a format whose `is_one` tells its sentences by start sign and text and whose `read` takes them.
/// Other sentences are foreign.
template <class Format>
class SentenceFormat {
  public:
    static bool resembles(std::string_view line) { return has_sentence(line, Format::is_one); }

    Found take(std::string_view bytes, bool last, std::size_t& size, Record& record, Problem& problem) {
        Sentence sentence;
        switch (cutter_.take(bytes, last, size, sentence, problem)) {
            case Piece::sentence: break;
            case Piece::nothing: return Found::nothing;
            case Piece::problem: return Found::problem;
            case Piece::more: return Found::more;
        }
        return Format::is_one(sentence) ? format_.read(sentence, record, problem) : Found::foreign;
    }

    std::uint64_t line() const { return cutter_.line(); }

  private:
    SentenceCutter cutter_;
    Format format_;
};

}  // namespace vistel
