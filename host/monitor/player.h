#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "monitor/latest.h"
#include "pgn_vistel/core/catalogue.h"
#include "readers/recording.h"
#include "reassembly/reassembler.h"

namespace vistel {

struct PlayOptions {
    std::string file = "-";
    std::string format;  ///< empty to recognise it
    double speed = 1;    ///< times the recording's own pace; 0 as fast as the display can
    bool loop = false;
    pgn_vistel::core::Definitions definitions = pgn_vistel::core::Definitions::corrected;
};

/// What became of the input so far.
struct PlayCounters {
    std::uint64_t messages = 0;
    std::uint64_t replaced =
        0;  ///< never shown, because a later one of the stream came before the next frame
    std::uint64_t problems = 0;
};

/// Plays a recording or live source in its own time. Never waits: `advance` takes what is due.
class Player {
  public:
    explicit Player(PlayOptions options) : options_(std::move(options)) {}

    /// False with the reason in `error`.
    bool open(std::string& error);

    /// Reads what is due by now into `latest`.
    void advance(LatestMessages& latest);

    void pause(bool paused);
    bool paused() const { return paused_; }
    bool ended() const { return ended_; }
    const PlayCounters& counters() const { return counters_; }
    const PlayOptions& options() const { return options_; }
    /// What a live source said last: that it was lost, or is silent. Empty as long as all is well.
    const std::string& notice() const { return notice_; }

  private:
    using Clock = std::chrono::steady_clock;

    bool read_record();
    bool is_due(const RecordTime& time) const;
    void rewind();

    PlayOptions options_;
    std::unique_ptr<Recording> recording_;
    std::unique_ptr<Reassembler> reassembler_;
    LatestMessages* latest_ = nullptr;
    Record record_;
    bool has_record_ = false;          // read, but not yet due
    std::optional<RecordTime> start_;  // of the recording
    Clock::time_point started_;        // when that was
    Clock::time_point paused_at_;
    bool paused_ = false;
    bool ended_ = false;
    PlayCounters counters_;
    std::string notice_;
};

}  // namespace vistel
