#include "network/network.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "network/message_fields.h"
#include "pgn_vistel/core/ids.h"

namespace vistel {

namespace {

namespace pgn = pgn_vistel::core::pgn;

constexpr unsigned bytes_of_name = 8;

/// Of a payload that begins with one: the bytes of 60928, which no single field has as a number.
std::optional<std::uint64_t> name_in(const N2KMsg& msg) {
    if (msg.length < bytes_of_name) return {};
    std::uint64_t name = 0;
    for (unsigned i = bytes_of_name; i-- > 0;) name = name << 8 | msg.data[i];
    return name;
}

std::optional<int> integer_in(const MessageFields& field) {
    const std::optional<double> number = field.number();
    return number ? std::optional(static_cast<int>(*number)) : std::nullopt;
}

Code code_in(const MessageFields& field) {
    return {integer_in(field), field.text()};
}

/// Where a field of a message goes.
template <class Part>
struct Place {
    std::string_view key;
    void (*take)(Part& part, const MessageFields& field);
};

constexpr Place<NameParts> name_places[] = {
    {"unique_number_iso_identity_number", [](auto& p, const auto& f) { p.unique_number = integer_in(f); }},
    {"manufacturer_code", [](auto& p, const auto& f) { p.manufacturer = code_in(f); }},
    {"device_instance_lower_iso_ecu_instance",
     [](auto& p, const auto& f) { p.device_instance = integer_in(f); }},
    {"device_instance_upper_iso_function_instance",
     [](auto& p, const auto& f) {
         const std::optional<int> upper = integer_in(f);
         if (upper && p.device_instance) *p.device_instance += *upper << 3;
     }},
    {"device_function_iso_function", [](auto& p, const auto& f) { p.function = code_in(f); }},
    {"device_class", [](auto& p, const auto& f) { p.device_class = code_in(f); }},
    {"system_instance_iso_device_class_instance",
     [](auto& p, const auto& f) { p.system_instance = integer_in(f); }},
    {"industry_group", [](auto& p, const auto& f) { p.industry_group = code_in(f); }},
};

constexpr Place<ProductInformation> product_places[] = {
    {"nmea_network_message_database_version",
     [](auto& p, const auto& f) { p.database_version = f.number(); }},
    {"nmea_manufacturers_product_code", [](auto& p, const auto& f) { p.product_code = integer_in(f); }},
    {"manufacturers_model_id", [](auto& p, const auto& f) { p.model = f.text(); }},
    {"manufacturers_software_version_code", [](auto& p, const auto& f) { p.software_version = f.text(); }},
    {"manufacturers_model_version", [](auto& p, const auto& f) { p.model_version = f.text(); }},
    {"manufacturers_model_serial_code", [](auto& p, const auto& f) { p.serial_number = f.text(); }},
    {"nmea_2000_certification_level", [](auto& p, const auto& f) { p.certification_level = code_in(f); }},
    {"load_equivalency", [](auto& p, const auto& f) { p.load_equivalency = integer_in(f); }},
};

constexpr Place<Configuration> configuration_places[] = {
    {"installation_description_field_1", [](auto& p, const auto& f) { p.installation_1 = f.text(); }},
    {"installation_description_field_2", [](auto& p, const auto& f) { p.installation_2 = f.text(); }},
    {"manufacturer_information_field_3",
     [](auto& p, const auto& f) { p.manufacturer_information = f.text(); }},
};

constexpr Place<Heartbeat> heartbeat_places[] = {
    {"update_rate", [](auto& p, const auto& f) { p.interval = f.number(); }},
    {"class_1_can_controller_state", [](auto& p, const auto& f) { p.controller_1 = code_in(f); }},
    {"class_2_second_can_controller_state", [](auto& p, const auto& f) { p.controller_2 = code_in(f); }},
    {"equipment_status", [](auto& p, const auto& f) { p.equipment = code_in(f); }},
};

template <class Part, std::size_t count>
Part part_of(const N2KMsg& msg, const Place<Part> (&places)[count]) {
    Part part;
    for (MessageFields fields(msg); fields.next();) {
        const auto* const place = std::ranges::find(places, fields.key(), &Place<Part>::key);
        if (place != std::end(places)) place->take(part, fields);
    }
    return part;
}

/// Takes a list of the PGNs that the sender transmits or receives.
void learn_list(Device& device, const N2KMsg& msg) {
    std::optional<int> function;
    PgnList list;
    for (MessageFields fields(msg); fields.next();) {
        const std::optional<int> number = integer_in(fields);
        if (fields.names_pgn()) {
            if (number) list.push_back(static_cast<std::uint32_t>(*number));
        } else if (fields.key() == "group_function_code") {
            function = number;
        }
    }
    std::ranges::sort(list);
    list.erase(std::unique(list.begin(), list.end()), list.end());
    const int which = function.value_or(-1);
    if (which != 0 && which != 1) return;
    (which == 0 ? device.transmits : device.receives) = std::move(list);
    device.known[list_subject] = true;
}

/// What was counted in so many seconds.
double per_second(std::uint64_t total, std::uint64_t before, double seconds) {
    return static_cast<double>(total - before) / seconds;
}

}  // namespace

// ---- who has which address ----

Device& Network::add() {
    if (devices_.size() >= most_devices) {
        // More than there are addresses: the one goes that has none and was silent for the longest time.
        const auto has_address = [](const Device& device) { return device.address.has_value(); };
        const auto silent = std::ranges::min_element(devices_, {}, [&](const Device& device) {
            return std::tuple(has_address(device), device.last_seen ? device.last_seen->nanoseconds : 0);
        });
        devices_.erase(silent);
    }
    return devices_.emplace_back();
}

Device& Network::holder(std::uint8_t address) {
    Device*& holder = holders_[address];
    if (holder == nullptr) {
        holder = &add();
        holder->address = address;
    }
    return *holder;
}

Device* Network::find(std::uint64_t name) {
    const auto found = std::ranges::find(devices_, std::optional(name), &Device::name);
    return found != devices_.end() ? &*found : nullptr;
}

void Network::leave_address(Device& device) {
    if (!device.address) return;
    holders_[*device.address] = nullptr;
    device.last_address = device.address;
    device.address.reset();
}

/// Gives the address to the sender of a claim; null for a claim that cannot be read.
Device* Network::claim(const N2KMsg& msg) {
    const std::optional<std::uint64_t> name = name_in(msg);
    if (!name) return nullptr;
    Device* device = find(*name);
    Device* const holder = holders_[msg.source];
    if (device != nullptr && device == holder) return device;

    const bool claims_address = msg.source < null_address;
    const bool is_whose = claims_address && holder != nullptr && !holder->name;
    if (device == nullptr) {
        device = is_whose ? holder : &add();
        device->name = name;
        device->parts = part_of(msg, name_places);
        device->known[name_subject] = true;
    } else if (is_whose) {
        device->absorb(std::move(*holder));
        devices_.remove_if([holder](const Device& other) { return &other == holder; });
        holders_[msg.source] = nullptr;
    }
    if (!claims_address) {
        leave_address(*device);
        device->state = Device::State::cannot_claim;
        return device;
    }
    if (holder != nullptr && !is_whose) {
        leave_address(*holder);
        holder->state = Device::State::displaced;
        ++holder->conflicts;
        ++device->conflicts;
    }
    leave_address(*device);
    if (device->last_address && *device->last_address != msg.source) ++device->address_changes;
    device->address = device->last_address = msg.source;
    device->state = Device::State::active;
    holders_[msg.source] = device;
    return device;
}

/// A device is told to take another address: it will claim that if it obeys.
void Network::note_command(const N2KMsg& msg) {
    const std::optional<std::uint64_t> name = name_in(msg);
    Device* const device = name ? find(*name) : nullptr;
    if (device == nullptr) return;
    for (MessageFields fields(msg); fields.next();) {
        const std::optional<int> number = integer_in(fields);
        if (fields.key() == "new_source_address" && number)
            device->commanded = static_cast<std::uint8_t>(*number);
    }
}

// ---- what they say and send ----

void Network::learn(Device& device, const N2KMsg& msg) {
    switch (msg.pgn) {
        case pgn::product_information:
            device.product = part_of(msg, product_places);
            device.known[product_subject] = true;
            break;
        case pgn::configuration_information:
            device.configuration = part_of(msg, configuration_places);
            device.known[configuration_subject] = true;
            break;
        case pgn::heartbeat: device.heartbeat = part_of(msg, heartbeat_places); break;
        case pgn::pgn_list: learn_list(device, msg); break;
        case pgn::commanded_address: note_command(msg); break;
        default: break;
    }
}

void Network::note_time(const RecordTime& time) {
    constexpr std::int64_t most_disorder = 1'000'000'000, longest_pause = 60 * most_disorder;
    if (time.origin == RecordTime::Origin::none) return;
    if (!first_) first_ = latest_ = time;
    const std::int64_t step = time.nanoseconds - latest_.nanoseconds;
    if (step >= 0 && step <= longest_pause) observed_ += step;
    if (step >= 0 || step < -most_disorder) latest_ = time;
}

void Network::put(const N2KMsg& msg, const RecordTime& time) {
    // Those of a transport session are pieces of the message that comes behind them.
    if (msg.pgn == pgn::transport_control || msg.pgn == pgn::transport_data) return;
    note_time(time);
    Device* device = msg.pgn == pgn::address_claim ? claim(msg) : nullptr;
    if (device == nullptr) device = &holder(msg.source);
    if (!device->first_seen) device->first_seen = time;
    device->last_seen = time;
    device->count(msg);
    messages_.total += {1, msg.length};
    learn(*device, msg);
}

void Network::count_wire(const Record& record, pgn_vistel::core::Definitions definitions) {
    const WireCount count = wire_count(record, definitions);
    wire_.total += count;
    holder(record.msg.source).wire.total += count;
}

std::uint64_t Network::lost() const {
    std::uint64_t sum = 0;
    for (const Device& device : devices_) sum += device.lost;
    return sum;
}

Device* Network::first_to_ask(const std::function<bool(const Device&)>& is_wanted) {
    for (std::size_t address = 0; address < null_address; ++address) {
        Device* const device = holders_[address];
        if (device != nullptr && is_wanted(*device)) return device;
    }
    return nullptr;
}

// ---- rates ----

void Network::turn() {
    observed_before_ = observed_at_turn_;
    observed_at_turn_ = observed_;
    messages_.turn();
    wire_.turn();
    for (Device& device : devices_) device.turn();
}

std::optional<double> Network::seconds() const {
    const std::int64_t nanoseconds = observed_ - observed_before_;
    if (nanoseconds <= 0) return {};
    return static_cast<double>(nanoseconds) * 1e-9;
}

std::optional<Network::Rates> Network::rates(const Tally<MessageCount>& count) const {
    const std::optional<double> time = seconds();
    if (!time) return {};
    return Rates{per_second(count.total.messages, count.before_last.messages, *time),
                 per_second(count.total.bytes, count.before_last.bytes, *time)};
}

std::optional<double> Network::share(const Tally<WireCount>& count) const {
    const std::optional<double> time = seconds();
    if (!time) return {};
    return per_second(count.total.bits, count.before_last.bits, *time) / bus_bits_per_second;
}

std::vector<const Device*> Network::devices() const {
    std::vector<const Device*> sorted;
    for (const Device& device : devices_) sorted.push_back(&device);
    std::ranges::stable_sort(sorted, {}, [](const Device* device) {
        return std::tuple(!device->address, device->address ? device->address : device->last_address);
    });
    return sorted;
}

}  // namespace vistel
