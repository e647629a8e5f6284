#pragma once

#include <cstdint>
#include <map>

#include "reassembly/losses.h"
#include "sources/link_watch.h"

namespace vistel {

/// Messages of PGNs that the catalogue does not have, by PGN and source.
class UnknownPgns {
  public:
    void count(std::uint32_t pgn, std::uint8_t source) {
        ++total_;
        const auto found = counts_.find({pgn, source});
        if (found != counts_.end())
            ++found->second;
        else if (counts_.size() < most_entries)
            counts_.emplace(Key{pgn, source}, 1);
        else
            ++others_;
    }

    std::uint64_t total() const { return total_; }
    void print() const;

  private:
    struct Key {
        std::uint32_t pgn;
        std::uint8_t source;
        auto operator<=>(const Key&) const = default;
    };
    static constexpr std::size_t most_entries = 4096;  // a broken stream may hold any number

    std::map<Key, std::uint64_t> counts_;
    std::uint64_t total_ = 0;
    std::uint64_t others_ = 0;
};

/// What became of a live source.
void print(const LinkCounters& link);

/// Missing and repeated frames by PGN and source, the most first.
void print(const Losses& losses);

}  // namespace vistel
