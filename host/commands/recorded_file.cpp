#include "commands/recorded_file.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <limits>

#include "output/output_file.h"
#include "output/write.h"
#include "text/path_of.h"
#include "text/quotes.h"

namespace vistel {
namespace {

/// `2026-09-10T080000Z`, which may be part of a file's name everywhere.
std::string stamp_of(std::int64_t seconds) {
    const std::chrono::sys_seconds time{std::chrono::seconds{seconds}};
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date{day};
    const std::chrono::hh_mm_ss clock{time - day};
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d%02d%02dZ", int(date.year()), unsigned(date.month()),
                  unsigned(date.day()), int(clock.hours().count()), int(clock.minutes().count()),
                  int(clock.seconds().count()));
    return text;
}

/// `voyage.pcap` with a stamp is `voyage-2026-09-10T080000Z.pcap`.
std::string stamped(const std::string& name, const std::string& stamp) {
    const std::size_t folder = name.find_last_of("/\\");
    const std::size_t base = folder == std::string::npos ? 0 : folder + 1;
    std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || dot <= base) dot = name.size();
    return concat(name.substr(0, dot), "-", stamp, name.substr(dot));
}

}  // namespace

Result<Rotation> parse_rotation(std::string_view text) {
    struct Unit {
        char letter;
        std::uint64_t bytes, seconds;
    };
    constexpr Unit units[] = {{'k', 1'000, 0}, {'M', 1'000'000, 0}, {'G', 1'000'000'000, 0}, {'s', 0, 1},
                              {'m', 0, 60},    {'h', 0, 3'600},     {'d', 0, 86'400}};
    std::uint64_t number = 0;
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number);
    const auto* const unit =
        std::ranges::find(units, end != last && end + 1 == last ? *end : '\0', &Unit::letter);
    constexpr std::uint64_t most = 1'000'000;
    if (error != std::errc() || unit == std::end(units) || number == 0 || number > most)
        return failure(in_quotes(text),
                       " is neither a size nor a time, as in 100M (k, M, G) or 1h (s, m, h, d)");
    return Rotation{number * unit->bytes, std::chrono::seconds{number * unit->seconds}};
}

Status RecordedFile::open() {
    current_ = name_;
    if (rotation_.is_wanted()) {
        const auto now = std::chrono::system_clock::now().time_since_epoch();
        last_name_ = std::max<std::int64_t>(std::chrono::duration_cast<std::chrono::seconds>(now).count(),
                                            last_name_ + 1);
        std::error_code unknown;
        while (std::filesystem::exists(path_of(current_ = stamped(name_, stamp_of(last_name_))), unknown))
            ++last_name_;
    } else if (holds_something(current_)) {
        return Failure{"is there already, and would be written over"};
    }
    auto opened = open_output(current_, {});
    if (!opened) return opened.error();
    close();
    descriptor_ = *opened;
    out_ = std::make_unique<Sink>(descriptor_);
    since_ = Clock::now();
    written_ = 0;
    late_ = 0;
    return put(head_, true);
}

void RecordedFile::close() {
    if (out_) out_->flush();
    constexpr int standard_error = 2;
    if (descriptor_ > standard_error) close_written(descriptor_);
}

bool RecordedFile::is_due() const {
    return (rotation_.bytes > 0 && written_ >= rotation_.bytes) ||
           (rotation_.time.count() > 0 && Clock::now() - since_ >= rotation_.time);
}

Status RecordedFile::put(std::string_view piece, bool ends_record) {
    constexpr unsigned most_late = 1'000;
    if (written_ > head_.size() && is_due() && (is_whole_ || ++late_ == most_late))
        if (Status opened = open(); !opened) return opened;
    out_->put(piece);
    written_ += piece.size();
    is_whole_ = ends_record;
    return done;
}

}  // namespace vistel
