#pragma once

#include <string_view>

#include "readers/bst_stream.h"

namespace vistel {

/// The bytes of an Actisense gateway as they come: BST records, framed. A recording may begin within one.
class ActisenseFormat {
  public:
    static bool begins(std::string_view head);

    Found take(std::string_view bytes, bool last, std::size_t& size, Record& record, Problem& problem);

  private:
    Found pass_others(std::string_view bytes, bool last, std::size_t& size, Problem& problem) const;

    BstReader records_;
    BstFrame frame_;
    bool begun_ = false;  // a frame has been met
};

}  // namespace vistel
