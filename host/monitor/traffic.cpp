#include "monitor/traffic.h"

#include <algorithm>

namespace vistel {

namespace {

constexpr PlayTime rate_period = 5 * one_second;  // rates are those of one to two of them

}  // namespace

void Traffic::on_message(const N2KMsg& msg, const RecordTime& time, std::uint8_t bus, PlayTime now) {
    streams_.put(msg, bus, now);
    networks_[bus].put(msg, time);
}

void Traffic::on_record(const Record& record) {
    networks_[record.bus].count_wire(record, player_.options().definitions);
}

void Traffic::advance() {
    player_.advance(*this);
    const PlayTime present = player_.now();
    if (present < next_turn_) return;
    if (next_turn_ > 0)
        for (auto& [bus, network] : networks_) network.turn();
    next_turn_ = present + rate_period;
}

void Traffic::pause(bool paused) {
    player_.pause(paused);
    frozen_.reset();
    if (paused && !player_.is_paced()) {
        frozen_ = std::make_unique<Streams>(streams_);
        frozen_at_ = player_.now();
    }
}

void Traffic::clear() {
    streams_.clear();
    if (frozen_) frozen_->clear();
}

std::vector<DeviceRow> Traffic::devices() const {
    std::vector<DeviceRow> rows;
    for (const auto& [bus, network] : networks_)
        for (const Device* const device : network.devices()) {
            const auto rates = network.rates(device->messages);
            rows.push_back({bus, device->name, device->address, title_of(*device), device->product.model,
                            device->parts.function.text, rates ? rates->messages : 0,
                            network.share(device->wire), notes_on(*device)});
        }
    return rows;
}

std::optional<double> Traffic::share_of_bus() const {
    std::optional<double> most;
    for (const auto& [bus, network] : networks_)
        if (const auto share = network.share(network.wire()); share && (!most || *share > *most))
            most = share;
    return most;
}

}  // namespace vistel
