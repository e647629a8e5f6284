#include "readers/unpacker.h"

namespace vistel {

std::unique_ptr<Unpacker> make_unpacker(Packing /*packing*/) {
    return nullptr;
}

}  // namespace vistel
