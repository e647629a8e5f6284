#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "can/record.h"
#include "inputs/input_options.h"
#include "readers/recording.h"
#include "sources/source.h"

namespace vistel {

/// Several recordings or live sources as one stream of records: one after the other, or merged by time.
///
/// Their buses are numbered over all of them. Where recordings follow one another a bus is known by its name,
/// or else by its number, so that the pieces of a long recording have the same buses; the buses of merged
/// recordings are different ones. More than 256 share the last number.
///
/// Merged recordings must all tell dates and times, or all times of day, which are taken as those of one
/// day. Each keeps its own order.
class Inputs {
  public:
    enum class [[nodiscard]] Event : std::uint8_t{
        begins,   ///< a recording begins, or all that are merged: nothing before belongs to what follows
        record,   ///< `record` has the next one
        problem,  ///< problem() tells it; reading goes on, if need be with the next recording
        nothing,  ///< a piece without a record was passed, or the wait for input was cut short
        end,
    };

    struct Hooks {
        std::function<void()> before_wait = {};  ///< for input; no wait is longer than a quarter of a second
        std::function<void(const std::string& line)> tell = {};  ///< what a live source has to say
    };
    explicit Inputs(const InputOptions& options, Hooks hooks);
    Inputs(const Inputs&) = delete;
    Inputs& operator=(const Inputs&) = delete;

    /// Says what comes next. `record` is fresh or as the last call left it.
    Event next(Record& record) {
        if (current_ == nullptr) [[unlikely]]
            return options_.merge ? next_merged(record) : begin_next();
        const ReadResult result = current_->recording.next(record);
        if (result != ReadResult::record) [[unlikely]]
            return go_on(result);
        record.bus = bus_of(*current_, record.bus);
        return Event::record;
    }

    /// @{ Of the problem that next() has just met: whether a recording as a whole is meant, and all of it as
    /// a text, with the name of the recording and the place.
    bool is_problem_of_whole() const { return problem_->place == Problem::Place::whole; }
    std::string problem() const { return described(*problem_, names_[problem_place_]); }
    /// @}

    /// Buses that records came from so far. Their names are UTF-8 text without control characters.
    std::size_t bus_count() const { return buses_.size(); }
    /// The name of a bus of theirs; empty where the recording does not tell one.
    std::string_view bus_name(std::uint8_t bus) const {
        return buses_[bus].is_named ? std::string_view(buses_[bus].label) : std::string_view{};
    }
    /// The name, or else the number.
    std::string_view bus_label(std::uint8_t bus) const { return buses_[bus].label; }

    std::uint64_t bytes_read() const;
    std::uint64_t bytes_total() const { return bytes_total_; }  ///< 0 when unknown; told from `begins` on
    std::uint64_t foreign_frames() const;

    /// Where the reading of recordings stands, as in "at byte 4096 of boat.log". Empty where only live
    /// sources are left, which have no end of their own, or pipes of which everything that is there has been
    /// read.
    std::string unread_place();

    /// Sends a single frame to a bus of theirs, by way of the source that it is of; false where that is not
    /// possible, at present or ever, which `tell` is told. `kind` is that of the records that come from
    /// there.
    bool send(Record frame);

    /// What became of the live sources among them.
    const std::vector<std::shared_ptr<const LinkCounters>>& links() const { return links_; }

    /// The formats that were found, each once, with commas between them.
    std::string format_names() const;

  private:
    struct Input {
        explicit Input(std::size_t number) : place(number) { buses.fill(-1); }

        const std::size_t place;  // among the names
        Recording recording;
        bool is_live = false;
        std::function<Result<bool>(const Record&)> send;  // to its bus, where it can
        std::array<std::int16_t, 256> buses;  // their numbers over all inputs, -1 for those not met yet

        // of merged ones
        Record ahead;
        bool has_record = false;
        std::int64_t time = INT64_MIN;  // of `ahead`, or of the last record that told one
    };
    struct Bus {
        std::string label;
        bool is_named;
    };

    bool open_next();
    Event begin_next();
    Event go_on(ReadResult result);
    Event next_merged(Record& record);
    Event begin_merged();
    Event pass_problem(const Input& input);
    void fail(std::size_t place, std::string text);
    void close(const Input& input);
    std::uint8_t bus_of(Input& input, std::uint8_t number) {
        std::int16_t& known = input.buses[number];
        if (known < 0) [[unlikely]]
            known = add_bus(input, number);
        return static_cast<std::uint8_t>(known);
    }
    std::uint8_t add_bus(const Input& input, std::uint8_t number);
    static void note_format(std::vector<std::string_view>& formats, const Recording& recording);

    const InputOptions options_;
    const Hooks hooks_;
    RecordingOptions how_;
    std::vector<std::string> names_;            // as they are shown
    std::size_t opened_ = 0;                    // of the names
    bool any_open_ = false;                     // could be opened
    std::vector<std::unique_ptr<Input>> open_;  // at present: one at a time, unless they are merged
    Input* current_ = nullptr;                  // that one
    std::vector<std::shared_ptr<const LinkCounters>> links_;
    std::vector<Bus> buses_;
    std::uint64_t bytes_total_ = 0;

    const Problem* problem_ = &failure_;
    std::size_t problem_place_ = 0;
    Problem failure_;

    // Of merged ones.
    bool begun_ = false;
    bool is_refused_ = false;
    RecordTime::Origin origin_ = RecordTime::Origin::none;

    // Of those that are closed.
    std::uint64_t bytes_read_ = 0;
    std::uint64_t foreign_frames_ = 0;
    std::vector<std::string_view> formats_;
};

}  // namespace vistel
