#include "commands/user_settings.h"

#include <filesystem>
#include <fstream>

#include "commands/settings_file.h"
#include "text/path_of.h"
#include "text/printable.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {

namespace {

Status take_line(UserSettings& settings, std::string_view line) {
    const std::size_t sign = line.find('=');
    if (sign == line.npos) return failure(in_quotes(line), " is not of the form NAME = VALUE");
    std::string_view name = trimmed(line.substr(0, sign));
    const std::string value(trimmed(line.substr(sign + 1)));
    const std::string_view kind = take_word(name);
    pgn_vistel::core::UnitSelection tried;
    if (kind == "units" && name.empty()) {
        settings.unit_set = value;
        return select_units(tried, value);
    }
    if (kind == "unit" && !name.empty()) {
        settings.units.push_back(concat(name, "=", value));
        return select_unit(tried, settings.units.back());
    }
    if (kind == "source" && !name.empty() && !value.empty()) {
        settings.sources[std::string(name)] = value;
        return done;
    }
    return failure(in_quotes(trimmed(line.substr(0, sign))),
                   " is no setting; there are: units, unit QUANTITY, source NAME");
}

Result<UserSettings> read(const std::filesystem::path& path) {
    const auto u8 = path.u8string();
    const std::string name = harmless(std::string(u8.begin(), u8.end()));
    std::ifstream file(path, std::ios::binary);
    UserSettings settings;
    constexpr std::size_t longest = 4096;
    std::string line(longest, '\0');
    for (std::uint64_t number = 1; file.getline(line.data(), longest); ++number) {
        std::string_view text = trimmed(line.c_str());
        while (text.ends_with('\r')) text.remove_suffix(1);
        text = trimmed(text);
        if (text.empty() || text.starts_with('#')) continue;
        if (const Status taken = take_line(settings, text); !taken)
            return failure(name, ":", number, ": ", harmless(taken.error().text));
    }
    if (!file.eof()) return failure(name, ": cannot be read, or has a line that is too long");
    return settings;
}

}  // namespace

void UserSettings::apply(UnitOptions& options) const {
    options.usual_set = unit_set;
    options.usual_units = units;
}

void UserSettings::apply(std::string& source) const {
    const auto found = sources.find(source);
    std::error_code unknown;
    if (found != sources.end() && !std::filesystem::exists(path_of(source), unknown)) source = found->second;
}

Result<UserSettings> usual_settings() {
    const std::filesystem::path file = settings_file();
    std::error_code unknown;
    if (file.empty() || !std::filesystem::exists(file, unknown)) return UserSettings();
    return read(file);
}

}  // namespace vistel
