#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vistel {

/// What is wrong, said on standard error: the first few of each kind one by one, the others counted. Memory
/// is bounded.
class ProblemLog {
  public:
    /// A quiet one says nothing.
    explicit ProblemLog(bool is_quiet) : is_quiet_(is_quiet) {}

    /// Problems are of one kind if they are `of` the same and their texts differ in numbers and in what is
    /// quoted alone. True where this one is to be said: as `line()`, which the caller says in one breath. The
    /// others are told as "N more `alike()`".
    template <class Line, class Alike>
    void tell(std::string_view of, std::string_view text, const Line& line, const Alike& alike) {
        if (is_quiet_) return;
        Kind* const kind = kind_of(of, text);
        if (kind == nullptr) {
            ++others_;
            return;
        }
        if (kind->alike.empty()) kind->alike = alike();
        if (++kind->count <= most_said) say(line());
    }

    /// Says how many more there were of each kind.
    void finish();

  private:
    static constexpr std::uint64_t most_said = 5;
    static constexpr std::size_t most_kinds = 64;

    struct Kind {
        std::string key, alike;
        std::uint64_t count;
    };

    Kind* kind_of(std::string_view of, std::string_view text);
    static void say(const std::string& line);

    const bool is_quiet_;
    std::string key_;  // of the one at hand
    std::vector<Kind> kinds_;
    std::uint64_t others_ = 0;  // of kinds for which there was no room
};

}  // namespace vistel
