#include "commands/problem_log.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

#include "text/characters.h"

namespace vistel {

/// The one of a problem, or null where there is no room for another.
ProblemLog::Kind* ProblemLog::kind_of(std::string_view of, std::string_view text) {
    key_.assign(of) += '\n';
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (is_digit(c)) {
            if (key_.back() != '0') key_ += '0';
            continue;
        }
        key_ += c;
        // What is quoted may have any quote in it.
        if (c == '`' || c == '\'') i = text.rfind(c);
    }
    if (const auto found = std::ranges::find(kinds_, key_, &Kind::key); found != kinds_.end()) return &*found;
    if (kinds_.size() == most_kinds) return nullptr;
    return &kinds_.emplace_back(Kind{key_, {}, 0});
}

void ProblemLog::say(const std::string& line) {
    std::fprintf(stderr, "%s\n", line.c_str());
}

void ProblemLog::finish() {
    const auto more = [](std::uint64_t count, const std::string& alike) {
        std::fprintf(stderr, "vistel: %" PRIu64 " more %s\n", count, alike.c_str());
    };
    for (const Kind& kind : kinds_)
        if (kind.count > most_said) more(kind.count - most_said, kind.alike);
    if (others_ > 0) more(others_, "of other kinds");
    kinds_.clear();
    others_ = 0;
}

}  // namespace vistel
