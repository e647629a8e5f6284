#pragma once

namespace vistel {

/// What the records of a recording are, where its format alone does not tell.
enum class ContentKind {
    as_it_seems,  ///< told by the records themselves
    messages,     ///< whole messages
    frames,       ///< CAN frames, of which longer messages are pieced together
};

}  // namespace vistel
