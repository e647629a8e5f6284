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
#include "sources/event_loop.h"
#include "sources/source.h"

namespace vistel {

/// Several recordings or live sources as one stream of records: recordings one after the other, or merged by
/// time; behind them, wherever they are named, live sources side by side, as what they bring arrives.
///
/// Their buses are numbered over all of them. Where recordings follow one another a bus is known by its name,
/// or else by its number, so that the pieces of a long recording have the same buses; the buses of merged
/// recordings, and of several live sources, are different ones. More than 256 share the last number.
///
/// Merged recordings must all tell dates and times, or all times of day, which are taken as those of one
/// day. Each keeps its own order.
class Inputs {
  public:
    enum class [[nodiscard]] Event : std::uint8_t{
        begins,   ///< a recording begins, or all side by side: nothing before belongs to what follows
        record,   ///< `record` has the next one
        problem,  ///< problem() tells it; reading goes on, if need be with the next recording
        nothing,  ///< a piece without a record was passed, or the wait for input was cut short
        end,
    };

    struct Hooks {
        std::function<void()> before_wait = {};  ///< for input; no wait is longer than the patience
        std::function<void(const std::string& line)> tell = {};  ///< what a live source has to say
    };
    explicit Inputs(const InputOptions& options, Hooks hooks);
    Inputs(const Inputs&) = delete;
    Inputs& operator=(const Inputs&) = delete;

    /// Says what comes next. `record` is fresh or as the last call left it.
    Event next(Record& record) {
        if (current_ == nullptr) [[unlikely]]
            return next_of_several(record);
        record.bus = 0;  // of recordings that tell none
        const ReadResult result = current_->recording.next(record);
        if (result != ReadResult::record) [[unlikely]]
            return go_on(result);
        record.bus = bus_of(*current_, record.bus);
        return Event::record;
    }

    /// @{ The problem that next() has just met, and the name of its recording.
    const Problem& problem() const { return *problem_; }
    const std::string& recording_of_problem() const { return names_[problem_place_]; }
    /// @}

    /// Where it is read no further: whether an input that may bring more has brought nothing but bytes of no
    /// known format, which problem() then tells. To be called until it is false.
    bool is_left_unknown();

    /// Whether next() would have to wait for input.
    bool would_wait();
    /// Whether what has begun is there from the first byte to the last, so that it can be read again.
    bool is_file() const;

    /// Whether records come from more than one bus, as far as that is known.
    bool has_several_buses() const { return buses_.size() > 1 || is_beside_; }
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
    std::uint64_t dropped_frames() const;  ///< as the recordings themselves say

    /// A recording that was read to its end in vain: an empty file, or nothing but problems.
    struct InVain {
        std::string name;
        std::string_view format;  ///< that it was read as; empty for an empty file
    };
    const std::vector<InVain>& read_in_vain() const { return in_vain_; }

    /// Where the reading of recordings stands, as in "at byte 4096 of boat.log". Empty where only live
    /// sources are left, which have no end of their own, or pipes of which everything that is there has been
    /// read.
    std::string unread_place();

    /// Sends a single frame to a bus of theirs, by way of the source that it is of; false where that is not
    /// possible, at present or ever, which `tell` is told. `kind` is that of the records that come from
    /// there.
    [[nodiscard]] bool send(Record frame);

    struct LinkState {
        std::string name;
        std::shared_ptr<const LinkCounters> counters;
    };
    /// What became of the live sources among them.
    const std::vector<LinkState>& links() const { return links_; }

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

        // of several that are open
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
    Event next_of_several(Record& record);
    Event next_beside(Record& record);
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

    const InputOptions options_;  // the names of recordings in front
    const Hooks hooks_;
    RecordingOptions how_;
    std::vector<std::string> names_;            // as they are shown
    std::size_t opened_ = 0;                    // of the names
    bool any_open_ = false;                     // could be opened
    std::vector<std::unique_ptr<Input>> open_;  // at present: one at a time, unless side by side
    Input* current_ = nullptr;                  // that one
    std::vector<LinkState> links_;
    std::vector<Bus> buses_;
    std::uint64_t bytes_total_ = 0;

    const Problem* problem_ = &failure_;
    std::size_t problem_place_ = 0;
    Problem failure_;

    // Of live sources side by side.
    std::size_t first_beside_;  // of the names; their number where there is one source at most
    bool is_beside_ = false;    // all are open
    std::shared_ptr<EventLoop> loop_;
    std::size_t turn_ = 0;  // the source that is looked at
    unsigned in_turn_ = 0;  // records that it has given since the one before

    // Of merged ones.
    bool begun_ = false;
    bool is_refused_ = false;
    RecordTime::Origin origin_ = RecordTime::Origin::none;

    // Of those that are closed.
    std::uint64_t bytes_read_ = 0;
    std::uint64_t foreign_frames_ = 0;
    std::uint64_t dropped_frames_ = 0;
    std::vector<std::string_view> formats_;
    std::vector<InVain> in_vain_;
};

}  // namespace vistel
