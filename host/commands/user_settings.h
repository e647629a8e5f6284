#pragma once

#include <map>
#include <string>
#include <vector>

#include "commands/unit_options.h"
#include "text/result.h"

namespace vistel {

/// What a user usually wants, as a text file with a setting in each line:
///
///     # a comment
///     units = nautical
///     unit Depth = ftm
///     source boat = tcp://192.168.4.1:1457
struct UserSettings {
    std::string unit_set;
    std::vector<std::string> units;              ///< QUANTITY=UNIT
    std::map<std::string, std::string> sources;  ///< by their names

    void apply(UnitOptions& options) const;
    /// Names of sources that are not those of files become what they stand for.
    void apply(std::string& source) const;
};

/// That of the user: `pgn-vistel/config` in the folder where a system has such files. Where there is none, it
/// is empty; what is wrong with it has its name and line.
Result<UserSettings> usual_settings();

}  // namespace vistel
