#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "inputs/inputs.h"
#include "network/streams.h"
#include "pgn_vistel/core/catalogue.h"
#include "reassembly/reassembler.h"

namespace vistel {

struct PlayOptions {
    InputOptions input = {};
    std::optional<double> speed = {};  ///< times a recording's own pace; 0 as fast as the display can
    bool loop = false;
    pgn_vistel::core::Definitions definitions = pgn_vistel::core::Definitions::corrected;
};

/// What became of the input so far.
struct PlayCounters {
    std::uint64_t messages = 0;
    std::uint64_t problems = 0;
    std::uint64_t skipped_gaps = 0;  ///< times without a record that were not waited for
    std::uint64_t steps_back = 0;    ///< records with an earlier time than the one before on their bus
};

/// Who gets what is played.
class PlayListener {
  public:
    virtual ~PlayListener() = default;
    virtual void on_message(const N2KMsg& msg, const RecordTime& time, std::uint8_t bus, PlayTime now) = 0;
    /// Behind the messages that the record completed.
    virtual void on_record(const Record& record) { (void)record; }
    /// A message of this source stays incomplete.
    virtual void on_lost(std::uint8_t bus, std::uint8_t source) { (void)bus, (void)source; }
};

/// Plays recordings in their own time, or live sources as they come. Never waits: `advance` takes what is
/// due. Each recording begins when the one before it is over, and several that are merged are one.
///
/// Time stamps pace a recording alone: one that comes by a file, or for which a speed is asked. It waits for
/// no gap that is longer than `longest_gap`. A clock that was put back by more than that is followed, once
/// `most_early` records in a row say so; fewer are played at once, as those of a second clock are. A pause
/// stops a recording; a live source is read on.
class Player {
  public:
    using Clock = std::chrono::steady_clock;
    using Now = std::function<Clock::time_point()>;

    explicit Player(PlayOptions options, Now clock = Clock::now)
        : options_(std::move(options)), clock_(std::move(clock)) {}

    /// A failure names the input that cannot be read: one that is not there, or a file that is no recording.
    Status open();

    /// Reads what is due by now.
    void advance(PlayListener& listener);

    /// How long nothing will be due; 0 where that is not known.
    Clock::duration until_due() const;

    void pause(bool paused);
    bool paused() const { return paused_; }
    /// Whether nothing more will come.
    bool ended() const { return ended_; }
    bool is_paced() const { return paced_; }

    /// Time that has been played: what messages are given as theirs.
    PlayTime now() const;

    /// @{ A file's: goes to a place between 0 and 1, showing nothing on the way but handing everything over;
    /// back to the start where the place lies behind. Takes the next message while paused.
    bool can_seek() const { return can_repeat_ && inputs_->bytes_total() > 0; }
    double place() const;
    void seek(double place, PlayListener& listener);
    void step(PlayListener& listener);
    /// @}

    void set_speed(double speed);
    void set_loop(bool loop) { options_.loop = loop; }

    /// Sends a single frame to the bus; see SourceState::send.
    Result<bool> send(const Record& frame);

    /// @{ Buses that records came from so far, and what each is called.
    std::size_t bus_count() const { return buses_.size(); }
    const std::string& bus_label(std::uint8_t bus) const { return buses_.at(bus); }
    /// @}

    const PlayCounters& counters() const { return counters_; }
    /// What went wrong first, with its place; empty as long as nothing did.
    const std::string& first_problem() const { return first_problem_; }
    /// Whether an input is no recording, or nothing but errors came of all of them.
    bool is_unreadable() const {
        return has_failed_ || (ended_ && counters_.messages == 0 && counters_.problems > 0);
    }
    const Reassembler& reassembler() const { return *reassembler_; }
    /// What became of all live sources together.
    LinkCounters links() const;
    const PlayOptions& options() const { return options_; }

    static constexpr PlayTime longest_gap = 3 * one_second;
    static constexpr unsigned most_early = 16;
    /// What live sources said last, that one was lost or is silent, and for a while that a gap was not waited
    /// for. Empty as long as all is well.
    std::string notice() const;

  private:
    void hear(std::string_view line);
    void begin(PlayTime present);
    void note(Inputs::Event event);
    void note_record();
    bool has_record();
    bool is_due();
    void hand_over();
    void rewind();
    void continue_at(PlayTime time);
    double speed() const { return options_.speed.value_or(1); }

    PlayOptions options_;
    Now clock_;
    std::unique_ptr<Inputs> inputs_;
    std::vector<std::string> buses_;       // their labels
    std::array<RecordTime, 256> times_{};  // of the last record of each
    bool can_repeat_ = false;
    bool has_failed_ = false;  // an input as a whole
    std::unique_ptr<Reassembler> reassembler_;
    PlayListener* listener_ = nullptr;
    Record record_;
    bool has_record_ = false;  // read, but not yet due
    bool paced_ = false;
    std::optional<RecordTime> start_;  // of the recording
    PlayTime start_played_ = 0;        // when that was
    PlayTime record_played_ = 0;       // when the record is to be played
    PlayTime latest_ = 0;              // of these times since the start
    unsigned early_ = 0;               // records in a row that are far before it
    PlayTime base_ = 0;                // played by the time `since_`
    Clock::time_point since_;
    bool paused_ = false;
    bool ended_ = false;
    PlayCounters counters_;
    std::string first_problem_;
    std::map<std::size_t, std::string> notices_;  // by input
    PlayTime gap_ = 0;                            // that was not waited for
    Clock::time_point gap_told_until_;
    bool is_sending_ = false;
    std::string send_failure_;  // what was said while sending
};

}  // namespace vistel
