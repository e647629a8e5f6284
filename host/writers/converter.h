#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "can/record.h"
#include "pgn_vistel/core/catalogue.h"
#include "reassembly/reassembler.h"
#include "reassembly/transports.h"
#include "writers/record_writer.h"

namespace vistel {

/// Writes the records of recordings in another format: frames as they are or put together to messages,
/// messages as they are or cut into frames, as the format needs. What takes both is given what the first
/// record is. Nothing is allocated for a record.
class Converter {
  public:
    /// Told of each message or frame that the format cannot hold, and why.
    using Refused = std::function<void(const N2KMsg& msg, const char* why)>;

    /// Appends to `out`. The definitions say which PGNs are fast packets.
    Converter(RecordWriter& writer, std::string& out, Refused refused,
              pgn_vistel::core::Definitions definitions = pgn_vistel::core::Definitions::corrected);

    void put(const Record& record);

    /// To be called behind the last record.
    void finish() { reassembler_.finish(); }

    std::uint64_t written() const { return written_; }  ///< records: messages or frames

    /// Messages, or frames that stayed frames, whose time had one origin and is read again with another.
    /// Those without a time are written with the last one that is known.
    std::uint64_t messages_of_times(RecordTime::Origin had, RecordTime::Origin written) const {
        return times_[static_cast<std::size_t>(had)][static_cast<std::size_t>(written)];
    }

    const ReassemblyCounters& counters() const { return reassembler_.counters(); }

  private:
    void write(const Record& record);
    bool append(const Record& record);
    std::uint64_t& count_of(const RecordTime& time);
    void write_frames(const Record& message);
    bool is_said(const N2KMsg& msg);

    RecordWriter& writer_;
    std::string& out_;
    const Refused refused_;
    const pgn_vistel::core::Definitions definitions_;
    std::optional<Record::Kind> kind_;  // of what is written
    std::uint64_t written_ = 0;
    RecordTime last_time_;  // of those that were known
    std::array<std::array<std::uint64_t, 4>, 4>
        times_{};  // by the origins that they had and are written with

    Reassembler reassembler_;
    std::uint8_t bus_ = 0;
    Record joined_;

    /// Sequences of the next fast packets by a hash of source and PGN. Streams that share one skip numbers.
    std::array<std::uint8_t, 1 << 14> sequences_{};

    /// Recordings of whole messages may have the frames of the transport protocol beside the message that
    /// they hold. These are followed here, so that it is not written a second time.
    ReassemblyCounters ignored_;
    Losses ignored_losses_{ignored_};
    Transports transports_{ignored_losses_};
    std::uint64_t frames_ = 0;
    N2KMsg said_{};
};

}  // namespace vistel
