#include <memory>

#include "core/clock_text.h"
#include "core/numbers.h"
#include "pgn_vistel/core/render.h"

namespace pgn_vistel::core {

void Renderer::start(const N2KMsg& msg, const PgnDef* pgn) {
    msg_ = &msg;
    pgn_ = pgn;
    std::construct_at(&walk_, pgn, msg);  // a copy would wait for what has just been written
    stage_ = Stage::head;
}

UnitSelection Renderer::for_programs(UnitSelection units) {
    units.select(quantity::date, unit::days);
    units.select(quantity::time_of_day, unit::raw_bits);
    return units;
}

/// "2026-09-10T08:00:00.250000Z"
char* Renderer::write_utc(char* at, std::int64_t nanoseconds) {
    constexpr std::int64_t second = 1'000'000'000, day_length = 86'400 * second;
    std::int64_t day = nanoseconds / day_length;
    std::int64_t within = nanoseconds % day_length;
    if (within < 0) {
        within += day_length;
        --day;
    }
    if (day != day_) {
        day_ = day;
        *write_iso_date(date_.data(), day) = 'T';
    }
    std::memcpy(at, date_.data(), date_.size());
    at += date_.size();
    at = write_clock(at, static_cast<std::uint32_t>(within / second));
    *at = '.';
    // Six decimals of eight digits, whose last two are overwritten.
    write_eight(at + 1, static_cast<std::uint32_t>(within % second / 1000 * 100));
    at[7] = 'Z';
    return at + 8;
}

}  // namespace pgn_vistel::core
