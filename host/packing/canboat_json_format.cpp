#include "readers/canboat_json_format.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

#include "can/identifier.h"
#include "packing/value_packer.h"
#include "readers/timestamp.h"
#include "text/quotes.h"

using nlohmann::json;

namespace vistel {

/// What read() keeps from line to line.
class AnalyzedMessages {
  public:
    LineResult read(std::string_view line, Record& record, Problem& problem);

  private:
    Status read_header(const json& header);
    Status read_message(const json& object, Record& record);

    ValuePacker packer_;
    TimestampParser timestamps_;
};

namespace {

const json* member(const json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && !found->is_null() ? &*found : nullptr;
}

/// Leaves the number alone where it is missing.
template <class Number>
Status read_number(const json& object, const char* name, std::uint32_t most, Number& number) {
    const json* const value = member(object, name);
    if (value == nullptr) return done;
    if (!value->is_number_unsigned() || value->get<std::uint64_t>() > most)
        return failure("\"", name, "\" is no number up to ", most);
    number = value->get<Number>();
    return done;
}

bool is_message(const json& object) {
    return object.is_object() && object.contains("pgn") && object.contains("fields");
}

}  // namespace

Status AnalyzedMessages::read_header(const json& header) {
    const json* const units = member(header, "units");
    if (units == nullptr || *units == "std") {
        packer_.set_units(ValuePacker::Units::display);
    } else if (*units == "si") {
        packer_.set_units(ValuePacker::Units::si);
    } else {
        return failure("the units are neither \"std\" nor \"si\"");
    }
    return done;
}

Status AnalyzedMessages::read_message(const json& object, Record& record) {
    record.time = {};
    if (const json* const time = member(object, "timestamp")) {
        if (!time->is_string()) return failure("the timestamp is no text");
        auto parsed = timestamps_.parse(time->get_ref<const std::string&>());
        if (!parsed) return failure("timestamp: ", std::string_view(parsed.error()));
        record.time = *parsed;
    }
    std::uint32_t pgn = 0;
    std::uint8_t priority = usual_priority, source = nobody, destination = 255;
    for (const Status& each :
         {read_number(object, "pgn", max_pgn, pgn), read_number(object, "prio", 7, priority),
          read_number(object, "src", 255, source), read_number(object, "dst", 255, destination)})
        if (!each) return each;
    const json& values = object["fields"];
    if (!values.is_object()) return failure("the fields are no object");
    Result<N2KMsg> packed = packer_.pack(pgn, values);
    if (!packed) return failure("PGN ", pgn, ": ", packed.error().text);
    const auto stamp = record.msg.time_stamp;
    record.msg = *packed;
    std::ranges::fill(record.msg.data + record.msg.length, std::end(record.msg.data), std::uint8_t{0});
    record.msg.time_stamp = stamp;
    record.msg.priority = priority;
    record.msg.source = source;
    record.msg.destination = destination;
    record.kind = Record::Kind::message;
    return done;
}

LineResult AnalyzedMessages::read(std::string_view line, Record& record, Problem& problem) {
    const auto report = [&](std::string_view why) {
        constexpr std::size_t most = 160;
        std::size_t size = std::min(why.size(), most);
        while (size < why.size() && size > 0 && (why[size] & 0xC0) == 0x80) --size;  // within a character
        describe(problem, why.substr(0, size), size < why.size() ? " ..." : "");
        return LineResult::problem;
    };
    const json object = json::parse(line, nullptr, false);
    if (!object.is_object()) return report("this is no JSON object");
    if (member(object, "version") != nullptr && !object.contains("pgn")) {
        const Status header = read_header(object);
        return header ? LineResult::nothing : report(header.error().text);
    }
    const bool is_wrapped = !is_message(object) && object.size() == 1 && is_message(object.front());
    const json& message = is_wrapped ? object.front() : object;
    if (!is_message(message)) return report("no message with \"pgn\" and \"fields\"");
    const Status read = read_message(message, record);
    return read ? LineResult::record : report(read.error().text);
}

CanboatJsonFormat::CanboatJsonFormat() : messages_(std::make_unique<AnalyzedMessages>()) {}
CanboatJsonFormat::~CanboatJsonFormat() = default;

bool CanboatJsonFormat::resembles(std::string_view line) {
    const auto has = [line](std::string_view part) { return line.find(part) != std::string_view::npos; };
    if (line.starts_with("{\"version\":")) return has("\"units\":");
    return line.starts_with("{\"") && has("\"pgn\":") && (has("\"fields\":{") || has("\"fields\": {"));
}

LineResult CanboatJsonFormat::read(std::string_view line, Record& record, Problem& problem) {
    return messages_->read(line, record, problem);
}

}  // namespace vistel
