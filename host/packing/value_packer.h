#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "encode/message_builder.h"
#include "pgn_vistel/core/listing.h"
#include "text/result.h"

namespace vistel {

/// Builds messages of the values that canboat's analyzer prints, by name.
class ValuePacker {
  public:
    /// What its values are in: `display` has degrees, Celsius, bar and Ah where `si` has radians, kelvin, Pa
    /// and C.
    enum class Units { display, si };

    void set_units(Units units) { units_ = units; }

    /// The message that has these values, an object; a failure where one has no place in it.
    Result<N2KMsg> pack(std::uint32_t pgn, const nlohmann::json& values);

  private:
    using Message = pgn_vistel::core::ListedMessage;
    using Row = pgn_vistel::core::FieldDef;
    using Typed = std::vector<TypedField>;

    /// @{ What would be typed for these values, in the order of the definition. `group` is null for the
    /// fields that do not repeat.
    Status type(const Message& message, const nlohmann::json& values, Typed& typed) const;
    Status type_group(const Message& message, const nlohmann::json& values,
                      const pgn_vistel::core::FieldGroup* group, int round, Typed& typed) const;
    /// @}
    Result<std::string> text_of(const Row& row, const nlohmann::json& value) const;
    std::string number_text(const Row& row, const nlohmann::json& number) const;

    ReadingContext context_{.units = pgn_vistel::core::UnitSelection::si(), .scratch = {}};
    Units units_ = Units::display;
};

}  // namespace vistel
