#include "encode/suggestions.h"

#include <algorithm>
#include <iterator>
#include <numeric>

#include "output/unit_names.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {

namespace {

constexpr std::size_t longest = 64;  // bytes that are compared

/// Insertions, deletions and replacements that lead from one text to the other.
std::size_t edit_distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t k = 0; k < b.size(); ++k) {
            const std::size_t above = row[k + 1];
            row[k + 1] = std::min({above + 1, row[k] + 1, diagonal + (a[i] != b[k])});
            diagonal = above;
        }
    }
    return row.back();
}

/// Whether a text begins as the other one does, of which at most a point is left: "Engine temperature" of
/// "Engine temp.".
bool is_longer_form(std::string_view text, std::string_view abbreviated) {
    constexpr std::size_t shortest = 4;
    if (abbreviated.ends_with('.')) abbreviated.remove_suffix(1);
    return abbreviated.size() >= shortest && text.starts_with(abbreviated);
}

}  // namespace

std::string comparable_name(std::string_view name) {
    std::string text = simplified(trimmed(name));
    text.erase(std::unique(text.begin(), text.end(), [](char a, char b) { return a == ' ' && b == ' '; }),
               text.end());
    return text;
}

std::string suggestion(std::string_view typed, const std::vector<std::string>& choices,
                       std::string_view otherwise) {
    constexpr std::size_t few = 6, named = 3;
    struct Candidate {
        std::size_t distance;
        const std::string* text;
    };
    const std::string wanted = simplified(typed.substr(0, longest));
    const std::size_t most = std::max<std::size_t>(2, wanted.size() / 3);
    std::vector<Candidate> near;
    for (const std::string& choice : choices) {
        const std::string text = simplified(std::string_view(choice).substr(0, longest));
        // No less than this; which is all that counts of far ones.
        std::size_t distance = std::max(wanted.size(), text.size()) - std::min(wanted.size(), text.size());
        if (distance <= most) distance = edit_distance(wanted, text);
        const bool part = (wanted.size() >= 3 && text.find(wanted) != text.npos) ||
                          is_longer_form(wanted, text) || is_longer_form(text, wanted);
        const bool alike = distance <= most && distance < text.size();
        if (part || alike) near.push_back({part ? std::min<std::size_t>(distance, 2) : distance, &choice});
    }
    if (choices.size() <= few && !choices.empty()) {
        const auto has_comma = [](const std::string& choice) { return choice.find(',') != choice.npos; };
        if (std::ranges::none_of(choices, has_comma)) return "there are: " + joined(choices);
        std::vector<std::string> quoted;
        std::ranges::transform(choices, std::back_inserter(quoted), in_quotes);
        return "there are: " + joined(quoted);
    }
    if (near.empty()) return std::string(otherwise);
    std::ranges::stable_sort(near, {}, &Candidate::distance);
    std::string result = "did you mean ";
    for (std::size_t i = 0; i < std::min(near.size(), named); ++i)
        result.append(i > 0 ? " or " : "").append(in_quotes(*near[i].text));
    return result + "?";
}

}  // namespace vistel
