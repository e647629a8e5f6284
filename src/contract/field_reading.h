#pragma once

#include "pgn_vistel/core/decode.h"
#include "pgn_vistel/formats.h"

namespace pgn_vistel {

/// A field that a host describes.
struct FieldPlace {
    const DDDef* dd;           ///< with a conversion
    int bytes, bits;           ///< its size; both 0 where only the value tells
    core::PayloadPosition at;  ///< within the message's record
    UnitId unit;               ///< above 139 or negative: the selected one
};

/// What is known of a field beside its value.
struct ReadField {
    DispDataType quantity = quantity::no_quantity;
    UnitId unit = unit::raw_count;  ///< that the value is in
    core::PayloadPosition next;     ///< behind the field
    bool cut_off = false;           ///< the message ends inside the number: the value is not available
};

/// Cuts the field out of the message and has the conversion of its format store the value, be that one of the
/// library's or the host's own. The conversion sees the field's bytes, the two in front of them, and zeros
/// behind what counts of the message.
ReadField read_field(const N2KMsg& msg, const FieldPlace& field, const core::UnitSelection& units,
                     ConvValue* value);

}  // namespace pgn_vistel
