#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "monitor/player.h"
#include "network/network.h"
#include "network/questions.h"
#include "network/streams.h"

namespace vistel {

class Recorder;

/// A device as a list shows it.
struct DeviceRow {
    std::uint8_t bus = 0;
    std::optional<std::uint64_t> name;    ///< what it is known by
    std::optional<std::uint8_t> address;  ///< that it has
    std::string title;                    ///< manufacturer and model, or what else is known
    std::string model, function;
    double rate = 0;              ///< messages in a second
    std::optional<double> share;  ///< of what the bus could have carried
    std::string notes;            ///< what is not as it should be
};

/// What a player plays, as streams and devices for a display. While a live source is paused, which is read
/// on, the streams are those of the moment of the pause.
class Traffic final : public PlayListener {
  public:
    explicit Traffic(Player& player) : player_(player) {}

    /// Takes what is due.
    void advance();

    void pause(bool paused);
    /// @{ of a recording
    void step() { player_.step(*this); }
    void seek(double place) { player_.seek(place, *this); }
    /// @}

    /// Gives a recorder what comes, from here on; null for none.
    void record(Recorder* recorder) { recorder_ = recorder; }

    /// Forgets all streams; the devices stay.
    void clear();

    const Streams& streams() const { return frozen_ ? *frozen_ : streams_; }
    PlayTime now() const { return frozen_ ? frozen_at_ : player_.now(); }
    std::uint64_t messages() const { return streams_.messages(); }
    std::uint64_t refused() const { return streams_.refused(); }

    std::vector<DeviceRow> devices() const;
    /// Part of what the bus could have carried lately; of several the busiest one's.
    [[nodiscard]] std::optional<double> share_of_bus() const;

    void on_message(const N2KMsg& msg, const RecordTime& time, std::uint8_t bus, PlayTime now) override;
    void on_record(const Record& record) override;
    void on_lost(std::uint8_t bus, std::uint8_t source) override;

    /// Why devices cannot be asked for what they have not said, if that is wanted; else empty.
    const std::string& asking_failure() const { return asking_failure_; }

  private:
    [[nodiscard]] bool ask(std::uint8_t bus, const N2KMsg& frame);

    Player& player_;
    Recorder* recorder_ = nullptr;
    Streams streams_;
    std::unique_ptr<Streams> frozen_;  // what a paused display shows of a live source
    PlayTime frozen_at_ = 0;
    std::map<std::uint8_t, Network> networks_;  // by the bus that records name
    PlayTime next_turn_ = 0;
    BusQuestions questions_{[this](std::uint8_t bus, const N2KMsg& frame) { return ask(bus, frame); }};
    Record::Kind kind_ = Record::Kind::message;  // of the records that come
    std::string asking_failure_;
};

}  // namespace vistel
