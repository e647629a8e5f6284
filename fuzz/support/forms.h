#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz.h"
#include "pgn_vistel/n2k_msg.h"

/// What programs make of the forms of a message: JSON by a parser of others, CSV by the rules of RFC 4180.
namespace fuzz {

using Row = std::vector<std::string>;

/// The rows of a text; none where it breaks the rules.
inline std::vector<Row> csv_rows(std::string_view text) {
    std::vector<Row> rows(1, Row(1));
    bool quoted = false, closed = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        std::string& cell = rows.back().back();
        if (quoted) {
            if (c != '"') {
                cell += c;
            } else if (i + 1 < text.size() && text[i + 1] == '"') {
                cell += text[++i];
            } else {
                quoted = false;
                closed = true;
            }
        } else if (c == ',') {
            rows.back().emplace_back();
            closed = false;
        } else if (c == '\n') {
            rows.emplace_back(1);
            closed = false;
        } else if (c == '"' && cell.empty() && !closed) {
            quoted = true;
        } else if (c == '"' || c == '\r' || closed) {
            return {};
        } else {
            cell += c;
        }
    }
    if (quoted || rows.back() != Row(1)) return {};
    rows.pop_back();
    return rows;
}

/// Whether a cell shows what a member of the object has; a text that CSV has to write otherwise (control
/// characters, what an apostrophe is put before) is left to the tests of the two forms.
inline bool shows(const std::string& cell, const nlohmann::json& value) {
    if (value.is_null()) return cell.empty();
    if (value.is_string()) {
        const auto& text = value.get_ref<const std::string&>();
        const auto odd = [](unsigned char c) { return c < 0x20 || c >= 0x7F; };
        if (std::ranges::any_of(text, odd) || text.find_first_of("=+-@'") == 0) return true;
        return cell == text;
    }
    return nlohmann::json::parse(cell, nullptr, false) == value;
}

/// Both forms can be read, and say the same.
inline void check_forms(const N2KMsg& msg, const std::string& json, const std::string& csv) {
    const auto object = nlohmann::json::parse(json, nullptr, false);
    require(object.is_object(), "JSON can be read");
    require(object.at("pgn") == msg.pgn && object.at("source") == msg.source &&
                object.at("destination") == msg.destination && object.at("priority") == msg.priority,
            "JSON has the header");
    const auto rows = csv_rows(csv);
    require(!rows.empty(), "CSV can be read");
    const auto& fields = object.at("fields");
    std::size_t at = 0;
    for (const auto& field : fields) {
        require(at < rows.size(), "CSV has a row for each field");
        const Row& row = rows[at++];
        require(row.size() == 15, "CSV has fifteen columns");
        const auto same = [&](std::size_t column, const char* key) {
            return field.contains(key) ? shows(row[column], field.at(key)) : row[column].empty();
        };
        require(shows(row[2], object.at("pgn")) && shows(row[5], object.at("source")), "CSV has the header");
        require(same(7, "number") && same(8, "key") && same(9, "label"), "the field is the same");
        require(same(10, "value") && same(11, "unit") && same(12, "text"), "the value is the same");
        require(same(13, "raw") && same(14, "round"), "raw bits and round are the same");
    }
}

}  // namespace fuzz
