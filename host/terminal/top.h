#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "monitor/player.h"
#include "network/network.h"
#include "network/questions.h"
#include "network/streams.h"
#include "pgn_vistel/core/units.h"
#include "terminal/keys.h"
#include "terminal/page.h"

namespace vistel {

/// What `vistel top` shows, and what its keys do. Knows no terminal: pages go in and out as text.
class Top final : public PlayListener {
  public:
    struct NamedUnits {
        std::string name;
        pgn_vistel::core::UnitSelection units;
    };

    /// The units' key goes through the selections, of which there is one at least.
    Top(Player& player, std::vector<NamedUnits> units, StreamFilter filter);

    void on_message(const N2KMsg& msg, const RecordTime& time, std::uint8_t bus, PlayTime now) override;
    void on_record(const Record& record) override;
    void on_lost(std::uint8_t bus, std::uint8_t source) override;

    /// Takes what is due.
    void advance();

    /// Does what a key stands for. False when the user wants to leave.
    [[nodiscard]] bool press(std::uint32_t key);

    /// All lines of a terminal of this size.
    Page page(int width, int height);

  private:
    enum class View : std::uint8_t { streams, devices, message, help };

    /// A device and the number of its bus.
    struct DeviceRow {
        std::uint8_t bus;
        const Network* network;
        const Device* device;
    };

    bool ask(std::uint8_t bus, const N2KMsg& frame);
    bool press_in_filter(std::uint32_t key);
    void move(int lines);
    void pause(bool paused);
    PageLine status(int width) const;
    void add_streams(Page& page, int width, int height);
    void add_devices(Page& page, int width, int height);
    void add_message(Page& page, int width, int height);
    void add_rows(Page& page, const std::vector<PageLine>& rows, int height);
    void choose_device();
    std::string device_at(std::uint8_t bus, std::uint8_t address) const;
    PageLine row_of(const Stream& stream, int width) const;
    PageLine footer(int width) const;
    const Streams& shown() const { return frozen_ ? *frozen_ : streams_; }
    PlayTime now() const { return frozen_ ? frozen_at_ : player_.now(); }
    const pgn_vistel::core::UnitSelection& units() const { return units_[unit_set_].units; }

    Player& player_;
    std::vector<NamedUnits> units_;
    std::size_t unit_set_ = 0;
    Streams streams_;
    std::map<std::uint8_t, Network> networks_;  // by bus
    BusQuestions questions_{[this](std::uint8_t bus, const N2KMsg& frame) { return ask(bus, frame); }};
    Record::Kind kind_ = Record::Kind::message;  // of the records that come
    std::string cannot_ask_;                     // why not
    PlayTime last_turn_ = 0;                     // of their rates
    std::vector<DeviceRow> devices_;
    int device_cursor_ = 0;
    int first_device_ = 0;
    std::unique_ptr<Streams> frozen_;  // what a paused display shows of a live source
    PlayTime frozen_at_ = 0;
    StreamFilter filter_;
    StreamOrder order_ = StreamOrder::appearance;
    View view_ = View::streams;
    bool typing_ = false;  // the text of the filter
    std::vector<const Stream*> rows_;
    std::uint64_t selected_ = 0;  // `order` of the stream under the cursor
    int cursor_ = 0;              // its row
    int first_row_ = 0;
    int page_rows_ = 1;
    int scroll_ = 0;  // of the message
};

}  // namespace vistel
