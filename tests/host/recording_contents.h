// Recordings of tests, and what is read from them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "host/descriptors.h"
#include "host/memory_input.h"
#include "readers/recording.h"
#include "text/hex.h"

namespace vistel {

using Texts = std::vector<std::string>;

/// Bytes by their hexadecimal digits, with blanks anywhere between them.
inline std::string bytes(std::string_view digits) {
    std::string text;
    for (std::size_t i = 0; i < digits.size(); ++i)
        if (digits[i] != ' ') text += static_cast<char>(hex_pair(&digits[i++]));
    return text;
}

/// `F` or `M` for frame or message, priority, PGN, source, destination, payload: "F 2 127250 7 255 FF103B".
inline std::string show(const Record& record) {
    const N2KMsg& msg = record.msg;
    std::string text = record.kind == Record::Kind::frame ? "F " : "M ";
    for (const std::uint32_t number :
         {std::uint32_t{msg.priority}, msg.pgn, std::uint32_t{msg.source}, std::uint32_t{msg.destination}})
        text += std::to_string(number) + ' ';
    for (int i = 0; i < msg.length; ++i) append_hex(text, msg.data[i], 2);
    EXPECT_EQ(std::count(msg.data + msg.length, std::end(msg.data), 0),
              std::end(msg.data) - msg.data - msg.length);
    return text;
}

struct Contents {
    Texts shown;  // records as by show(), problems as "LINE: text"; last "3 foreign", "2 dropped" if there
                  // were so many
    Texts times;  // of the records: "1456660800000000000 epoch"
    Texts buses;  // of the records
    std::string format;
    std::uint64_t bytes_read;
};

inline std::unique_ptr<ByteInput> input_of(int descriptor) {
    auto input = attach_descriptor(descriptor);
    EXPECT_TRUE(input);
    return std::move(*input);
}

inline Contents drain(Recording& recording) {
    constexpr const char* origins[] = {" none", " start", " day", " epoch"};
    Contents contents;
    Record record;
    for (ReadResult result; (result = recording.next(record)) != ReadResult::end;) {
        if (result == ReadResult::record) {
            contents.shown.push_back(show(record));
            contents.buses.push_back(std::to_string(record.bus));
            contents.times.push_back(std::to_string(record.time.nanoseconds) +
                                     origins[static_cast<int>(record.time.origin)]);
        } else if (result == ReadResult::problem) {
            contents.shown.push_back(std::to_string(recording.problem().number) + ": " +
                                     recording.problem().text);
        }
    }
    contents.format = recording.format_name();
    contents.bytes_read = recording.bytes_read();
    if (const auto foreign = recording.foreign_frames(); foreign > 0)
        contents.shown.push_back(std::to_string(foreign) + " foreign");
    if (const auto dropped = recording.dropped_frames(); dropped > 0)
        contents.shown.push_back(std::to_string(dropped) + " dropped");
    return contents;
}

/// What was read but for problems and counts.
inline Texts records_of(const Contents& contents) {
    Texts records = contents.shown;
    std::erase_if(records, [](const std::string& line) { return line[0] != 'F' && line[0] != 'M'; });
    return records;
}

/// What is read of bytes that come at most so many at a time.
inline Contents read_drops(const std::string& text, std::size_t most, const std::string& format = "") {
    Recording recording;
    EXPECT_TRUE(recording.attach(std::make_unique<test::Drops>(text, most), {.format = format}));
    return drain(recording);
}

inline void write_all(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t size = ::write(descriptor, text.data(), text.size());
        ASSERT_GT(size, 0);
        text.remove_prefix(static_cast<std::size_t>(size));
    }
}

enum class From { file, pipe };

inline Contents read(std::string_view text, const std::string& format = "", From from = From::file,
                     ContentKind kind = ContentKind::as_it_seems) {
    int ends[2] = {open_nameless_file(), -1};
    std::thread writer;
    if (from == From::file) {
        write_all(ends[0], text);
        ::lseek(ends[0], 0, SEEK_SET);
    } else {
        ::close(ends[0]);
        EXPECT_EQ(0, open_pipe(ends));
        writer = std::thread([&] { write_all(ends[1], text), ::close(ends[1]); });
    }
    Recording recording;
    EXPECT_TRUE(recording.attach(input_of(ends[0]), {.format = format, .contents = kind}));
    EXPECT_EQ(recording.bytes_total(), from == From::file ? text.size() : 0);
    Contents contents = drain(recording);
    if (writer.joinable()) writer.join();
    return contents;
}

}  // namespace vistel
