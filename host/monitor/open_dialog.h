#pragma once

#include <string>
#include <vector>

class wxWindow;

namespace vistel {

/// Asks for a recording or a live source; empty where the user wants none.
std::string ask_for_source(wxWindow* parent, const std::vector<std::string>& recent);

}  // namespace vistel
