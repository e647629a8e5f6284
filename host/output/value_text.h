#pragma once

#include "output/field_view.h"
#include "output/sink.h"

namespace vistel {

/// The number of a value that is one, as JSON and CSV write it. Nothing for texts and for values that are not
/// available; false then.
bool put_number_of(Sink& out, const FieldView& field);

}  // namespace vistel
