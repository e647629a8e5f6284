#pragma once

#include <string>

#include "can/frames.h"
#include "can/record.h"

namespace vistel {

/// Writes records in one format. Bytes are appended to a text of the caller, who empties it when he has used
/// them; nothing is allocated once it has its size.
class RecordWriter {
  public:
    virtual ~RecordWriter() = default;

    virtual bool takes(Record::Kind kind) const = 0;

    /// What stands in front of the first record, which is of this kind.
    virtual void begin(Record::Kind /*kind*/, std::string& /*out*/) {}

    /// How an interface is named that records are going to come from; empty where it has no name. Returns how
    /// it is called in what is written; empty where the format does not tell interfaces apart.
    virtual std::string_view name_bus(std::uint8_t /*bus*/, std::string_view /*name*/) { return {}; }

    /// The origin that this time of the next record is read with again. Another one than `none` for a record
    /// without a time: it is going to be read with some time.
    virtual RecordTime::Origin origin_written(const RecordTime& time) const = 0;

    /// A record of a kind that it takes. Returns null, or why the format cannot hold it; then nothing is
    /// appended.
    virtual const char* put(const Record& record, std::string& out) = 0;
};

/// One of a format whose records are frames with their identifiers.
class FrameWriter : public RecordWriter {
  public:
    bool takes(Record::Kind kind) const final { return kind == Record::Kind::frame; }

    const char* put(const Record& record, std::string& out) final {
        const char* const why = why_unframed(record.msg);
        if (why == nullptr) put_frame(identifier_of(record.msg), record, out);
        return why;
    }

  private:
    virtual void put_frame(std::uint32_t identifier, const Record& record, std::string& out) = 0;
};

/// One of a format whose records are whole messages.
class WholeMessageWriter : public RecordWriter {
  public:
    bool takes(Record::Kind kind) const final { return kind == Record::Kind::message; }
};

/// The origin of a time that is written in seconds of no kind, and read as those of any clock.
constexpr RecordTime::Origin origin_of_written_seconds(const RecordTime& time) {
    return origin_of_seconds(time.nanoseconds / 1'000'000'000);
}

inline FrameBytes payload_of(const Record& record) {
    return {record.msg.data, record.msg.length};
}

}  // namespace vistel
