#include "monitor/traffic.h"

#include <algorithm>

#include "monitor/recorder.h"

namespace vistel {

namespace {

constexpr PlayTime rate_period = 5 * one_second;  // rates are those of one to two of them

}  // namespace

void Traffic::on_message(const N2KMsg& msg, const RecordTime& time, std::uint8_t bus, PlayTime now) {
    streams_.put(msg, bus, now);
    networks_[bus].put(msg, time);
}

void Traffic::on_record(const Record& record) {
    kind_ = record.kind;
    if (recorder_ != nullptr) recorder_->put(record);
    networks_[record.bus].count_wire(record, player_.options().definitions);
}

void Traffic::on_lost(std::uint8_t bus, std::uint8_t source) {
    networks_[bus].count_lost(source, 1);
}

bool Traffic::ask(std::uint8_t bus, const N2KMsg& frame) {
    auto sent = player_.send({.kind = kind_, .bus = bus, .msg = frame, .time = {}});
    if (sent) return *sent;
    asking_failure_ = sent.error().text;
    return false;
}

void Traffic::advance() {
    player_.advance(*this);
    if (player_.options().input.sends) questions_.advance(networks_, player_.now());
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
                            network.share(device->wire), notes_on(*device, network.now())});
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
