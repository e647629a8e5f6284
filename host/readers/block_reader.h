#pragma once

#include <cassert>
#include <concepts>
#include <cstddef>
#include <string_view>

#include "readers/byte_source.h"
#include "readers/problem.h"
#include "readers/record_reader.h"

namespace vistel {

/// What a format found at the beginning of the bytes that it was shown.
enum class [[nodiscard]] Found{
    record,
    nothing,  ///< belongs to the format but holds no record
    foreign,  ///< not NMEA 2000: another kind of frame, or a message of the gateway itself
    problem,
    hopeless,  ///< a problem behind which nothing can be read
    more,      ///< what is there is not whole: more bytes are wanted
};

/// One format whose records are not lines of their own: binary ones, and text that is cut by other signs.
///
/// It has `begins(std::string_view head)`, which tells whether the beginning of a recording speaks for it
/// (there may be less than there will be), or `resembles(std::string_view line)`, or both. `take` looks at
/// the next bytes, sets `size` to how many of them it has dealt with, and fills the record or the text of the
/// problem; of the record, `nothing` and `foreign` leave the payload and its length as they were, `problem`
/// may leave anything. All but `more` take at least one byte; `more` takes none. `bytes` is never empty;
/// `last` tells that nothing follows them: then `more` is a record that is cut off, and its bytes are passed.
/// No record is longer than ByteSource::capacity, else it is passed as well. A recording that is `hopeless`
/// from its first byte is so as a whole.
///
/// A format that takes several records at once has `take_held(record, problem)`, which gives one after the
/// other and `more` when there is none left; nothing else is taken before. One that counts lines has
/// `line()`, the line of what it took last, from 1; its problems are put there.
/// One that takes records in pieces has `is_within()`, whether it waits for another piece.
template <class Format>
concept BlockFormat = requires(Format format, std::string_view bytes, bool last, std::size_t& size,
                               Record& record, Problem& problem) {
    { format.take(bytes, last, size, record, problem) } -> std::same_as<Found>;
};

/// Reads a format of blocks.
template <BlockFormat Format>
class BlockReader final : public RecordReader {
  public:
    explicit BlockReader(ByteSource& source) : source_(source) {}

    ReadResult next(Record& record, Problem& problem) override {
        if (hopeless_) [[unlikely]]
            return ReadResult::end;
        if constexpr (requires { format_.take_held(record, problem); }) {
            const Found found = format_.take_held(record, problem);
            if (found != Found::more) return told(found, problem);
            holds_ = false;
        }
        for (;;) {
            const std::string_view bytes = source_.unread();
            if (bytes.empty() || bytes.size() == looked_at_) {
                if (bytes.size() == ByteSource::capacity) return pass(problem, "a record has no end");
                switch (source_.fill(ByteSource::Wait::yes)) {
                    case ByteSource::Fill::data: continue;
                    case ByteSource::Fill::idle: return ReadResult::nothing;
                    default: break;
                }
                if (bytes.empty()) return end(problem);
            }
            std::size_t size = 0;
            const std::uint64_t offset = source_.consumed();
            const Found found = format_.take(source_.unread(), source_.ended(), size, record, problem);
            if (found == Found::more) {
                if (source_.ended()) return pass(problem, cut_off);
                looked_at_ = source_.unread().size();
                continue;
            }
            assert(size > 0);
            looked_at_ = 0;
            place_ = offset;
            source_.consume(size);
            return told(found, problem);
        }
    }

    bool would_wait() override {
        const std::size_t size = source_.unread().size();
        return !hopeless_ && !holds_ && size == looked_at_ && size < ByteSource::capacity &&
               source_.fill(ByteSource::Wait::no) == ByteSource::Fill::idle;
    }
    std::uint64_t foreign_frames() const override { return foreign_frames_; }
    std::uint64_t dropped_frames() const override { return dropped_frames_of(format_); }
    std::string_view bus_name(std::uint8_t bus) const override { return bus_name_of(format_, bus); }

  private:
    static constexpr const char* cut_off = "the last record is cut off";

    ReadResult told(Found found, Problem& problem) {
        if constexpr (requires(Record & record) { format_.take_held(record, problem); }) holds_ = true;
        switch (found) {
            [[likely]] case Found::record : return ReadResult::record;
            case Found::foreign: ++foreign_frames_; return ReadResult::nothing;
            case Found::hopeless:
                hopeless_ = true;
                put_place(problem);
                if (place_ == 0) problem.put_at_whole();
                return ReadResult::problem;
            case Found::problem: put_place(problem); return ReadResult::problem;
            default: return ReadResult::nothing;
        }
    }

    void put_place(Problem& problem) const {
        if constexpr (requires { format_.line(); }) {
            problem.put_at_line(format_.line());
        } else {
            problem.put_at_byte(place_);
        }
    }

    /// Passes what is there.
    ReadResult pass(Problem& problem, const char* why) {
        place_ = source_.consumed();
        put_place(problem);
        describe(problem, why);
        source_.consume(source_.unread().size());
        looked_at_ = 0;
        return ReadResult::problem;
    }

    ReadResult end(Problem& problem) {
        if (failure_reported_) return ReadResult::end;
        if constexpr (requires { format_.is_within(); }) {
            if (source_.error().empty() && format_.is_within()) {
                failure_reported_ = true;
                put_place(problem);
                describe(problem, cut_off);
                return ReadResult::problem;
            }
        }
        if (source_.error().empty()) return ReadResult::end;
        failure_reported_ = true;
        place_ = source_.consumed();
        put_place(problem);
        describe(problem, "cannot read on: ", source_.error());
        return ReadResult::problem;
    }

    ByteSource& source_;
    Format format_;
    std::size_t looked_at_ = 0;  // bytes that are known not to be whole
    std::uint64_t place_ = 0;    // of what was taken last
    bool holds_ = false;         // perhaps there is more of what was taken
    bool hopeless_ = false;
    bool failure_reported_ = false;
    std::uint64_t foreign_frames_ = 0;
};

}  // namespace vistel
