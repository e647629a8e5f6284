#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "monitor/traffic.h"
#include "pgn_vistel/core/units.h"
#include "terminal/keys.h"
#include "terminal/page.h"

namespace vistel {

/// What `vistel top` shows, and what its keys do. Knows no terminal: pages go in and out as text.
class Top {
  public:
    struct NamedUnits {
        std::string name;
        pgn_vistel::core::UnitSelection units;
    };

    /// The units' key goes through the selections, of which there is one at least.
    Top(Player& player, std::vector<NamedUnits> units, StreamFilter filter);

    /// Takes what is due.
    void advance();

    /// Does what a key stands for. False when the user wants to leave.
    [[nodiscard]] bool press(std::uint32_t key);

    /// All lines of a terminal of this size.
    Page page(int width, int height);

  private:
    enum class View : std::uint8_t { streams, devices, message, losses, help };

    [[nodiscard]] bool press_in_filter(std::uint32_t key);
    void move(int lines);
    void pause(bool paused);
    PageLine status(int width) const;
    void add_streams(Page& page, int width, int height);
    void add_devices(Page& page, int width, int height);
    void add_message(Page& page, int width, int height);
    std::vector<PageLine> loss_lines() const;
    bool has_several_buses() const { return player_.bus_count() > 1; }
    std::string bus_of(std::uint8_t bus) const;
    int bus_width() const;
    void next_bus();
    void add_rows(Page& page, const std::vector<PageLine>& rows, int height);
    void choose_device();
    std::string device_at(std::uint8_t bus, std::uint8_t address) const;
    PageLine row_of(const Stream& stream, int width) const;
    PageLine footer(int width) const;
    const Streams& shown() const { return traffic_.streams(); }
    PlayTime now() const { return traffic_.now(); }
    const pgn_vistel::core::UnitSelection& units() const { return units_[unit_set_].units; }

    Player& player_;
    Traffic traffic_;
    std::vector<NamedUnits> units_;
    std::size_t unit_set_ = 0;
    StreamFilter filter_;
    StreamOrder order_ = StreamOrder::appearance;
    View view_ = View::streams;
    bool typing_ = false;  // the text of the filter
    std::vector<DeviceRow> devices_;
    int device_cursor_ = 0;
    int first_device_ = 0;
    std::vector<const Stream*> rows_;
    std::uint64_t selected_ = 0;  // `order` of the stream under the cursor
    int cursor_ = 0;              // its row
    int first_row_ = 0;
    int page_rows_ = 1;
    int scroll_ = 0;  // of the message
};

}  // namespace vistel
