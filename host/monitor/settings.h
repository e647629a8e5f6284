#pragma once

#include <wx/gdicmn.h>

#include <map>
#include <string>
#include <vector>

#include "pgn_vistel/core/units.h"

namespace vistel {

/// What the window remembers from one start to the next.
struct Settings {
    wxRect place;  ///< empty as long as none is known
    bool is_maximised = false;
    std::vector<std::string> recent;  ///< sources, the last one first
    pgn_vistel::core::UnitSelection units;
    int order = 0;                      ///< of the streams
    std::map<std::string, int> layout;  ///< sizes in pixels of the usual scale, by what they are those of

    void remember_source(const std::string& name);

    /// What is missing in the file, or cannot be, stays as it is.
    void load(const wxString& file);
    /// A file that cannot be written is none.
    void save(const wxString& file) const;

    /// In the user's directory for configurations.
    static wxString usual_file();

    static constexpr std::size_t most_recent = 9;
};

}  // namespace vistel
