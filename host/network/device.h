#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "can/record.h"
#include "network/wire_bits.h"

namespace vistel {

/// The address of who could claim none. It and 255, which is everyone's, are nobody's own.
constexpr std::uint8_t null_address = 254;

/// Messages, and their bytes without what carries them.
struct MessageCount {
    std::uint64_t messages = 0;
    std::uint64_t bytes = 0;

    MessageCount& operator+=(const MessageCount& other) {
        messages += other.messages;
        bytes += other.bytes;
        return *this;
    }
};

/// A count of which the latest part can be told from the rest: see `Network::turn`.
template <class Count>
struct Tally {
    Count total;
    /// @{ what it was when the last period began, and the one before
    Count at_last, before_last;
    /// @}

    void turn() {
        before_last = at_last;
        at_last = total;
    }
    Tally& operator+=(const Tally& other) {
        total += other.total;
        at_last += other.at_last;
        before_last += other.before_last;
        return *this;
    }
};

/// What was counted of a PGN.
struct PgnTally {
    Tally<MessageCount> messages;
    const pgn_vistel::core::PgnDef* definition = nullptr;  ///< of the first message
    bool is_mixed = false;                                 ///< messages of other definitions came, too
};

/// A code and what it means; the text is empty where that is not known.
struct Code {
    std::optional<int> number;
    std::string text;
};

/// @{ What a device says of itself. Nothing and empty texts stand for what it does not say.

/// Its NAME (60928).
struct NameParts {
    std::optional<int> unique_number;
    Code manufacturer, device_class, function, industry_group;
    std::optional<int> device_instance, system_instance;
};

/// 126996
struct ProductInformation {
    std::optional<double> database_version;
    std::optional<int> product_code;
    std::string model, software_version, model_version, serial_number;
    Code certification_level;
    std::optional<int> load_equivalency;
};

/// 126998
struct Configuration {
    std::string installation_1, installation_2, manufacturer_information;
};

/// 126993
struct Heartbeat {
    std::optional<double> interval;  ///< seconds
    Code controller_1, controller_2, equipment;
};

/// 126464: in ascending order, each once.
using PgnList = std::vector<std::uint32_t>;
/// @}

/// What a device can be asked for.
enum Subject : std::uint8_t { name_subject, product_subject, configuration_subject, list_subject };
constexpr std::size_t subject_count = 4;

/// Somebody on the bus. Known by a NAME, or else by nothing but the address that messages come from.
struct Device {
    enum class State : std::uint8_t {
        unknown,       ///< its NAME was not heard; `address` is all that is known
        active,        ///< has its address
        displaced,     ///< another device has claimed its address since
        cannot_claim,  ///< says that it found no address
    };

    State state = State::unknown;
    std::optional<std::uint64_t> name;         ///< as a number: the lower one wins an address
    std::optional<std::uint8_t> address;       ///< that it has
    std::optional<std::uint8_t> last_address;  ///< that it had last
    std::optional<std::uint8_t> commanded;     ///< address that it was last told to take (65240)
    unsigned address_changes = 0;              ///< how often it went to another address
    unsigned conflicts = 0;                    ///< claims of its address by others, and its own of theirs

    NameParts parts;
    ProductInformation product;
    Configuration configuration;
    Heartbeat heartbeat;
    std::optional<PgnList> transmits, receives;
    /// @{ what it has said, and what it was asked for already
    std::array<bool, subject_count> known{}, asked{};
    /// @}

    std::optional<RecordTime> first_seen, last_seen;  ///< of its messages
    Tally<MessageCount> messages;
    Tally<WireCount> wire;
    std::map<std::uint32_t, PgnTally> pgns;  ///< that it sends; at most `most_pgns`
    std::uint64_t lost = 0;                  ///< messages of which frames were missing

    static constexpr std::size_t most_pgns = 256;
    static constexpr std::uint32_t other_pgns = UINT32_MAX;  ///< stands for all beyond them

    /// Counts a message.
    void count(const N2KMsg& msg);
    /// Begins a new period of all counts.
    void turn();
    /// Takes over what came from an address before it was known whose it is.
    void absorb(Device&& earlier);

  private:
    PgnTally& tally_of(std::uint32_t pgn);
};

/// What a device is called: manufacturer and model, or the function where it tells no model. Empty where
/// nothing is known of it.
std::string title_of(const Device& device);

/// What is not as it should be with a device, "displaced from 3, lost: 2". Empty where all is well.
std::string notes_on(const Device& device);

/// The text of a code, or its number where that has none. Empty for neither.
std::string text_or_number(const Code& code);

}  // namespace vistel
