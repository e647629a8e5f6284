#include "network/streams.h"

#include <algorithm>
#include <cstring>
#include <tuple>

#include "network/message_view.h"
#include "text/words.h"

namespace vistel {

namespace core = pgn_vistel::core;

void Stream::take(const N2KMsg& msg, PlayTime now) {
    const std::int64_t second = now / one_second;
    if (count_ == 0) {
        first_ = changed_ = now;
        second_ = second;
    } else if (msg.length != msg_.length ||
               std::memcmp(msg.data, msg_.data, std::min<std::size_t>(msg.length, sizeof msg.data)) != 0) {
        changed_ = now;
    }
    // The seconds in between had none; a clock that was put back begins anew.
    if (second < second_ || second - second_ >= rate_seconds) {
        in_second_.fill(0);
    } else {
        for (std::int64_t s = second_ + 1; s <= second; ++s) in_second_[slot_of(s)] = 0;
    }
    if (now < seen_ && count_ > 0) first_ = std::min(first_, now);
    second_ = second;
    ++in_second_[slot_of(second)];
    msg_ = msg;
    seen_ = now;
    ++count_;
}

double Stream::mean_interval() const {
    return count_ > 1 ? static_cast<double>(seen_ - first_) / one_second / static_cast<double>(count_ - 1)
                      : 0;
}

double Stream::rate(PlayTime now) const {
    // The second that is not over yet is left out.
    const std::int64_t second = now / one_second;
    const std::int64_t from = std::max(second - (rate_seconds - 1), first_ / one_second + 1);
    std::uint64_t messages = 0;
    for (std::int64_t s = from; s <= std::min(second - 1, second_); ++s)
        messages += s > second_ - rate_seconds ? in_second_[slot_of(s)] : 0;
    if (messages > 0) return static_cast<double>(messages) / static_cast<double>(second - from);
    return count_ > 1 && now > first_
               ? static_cast<double>(count_ - 1) * one_second / static_cast<double>(now - first_)
               : 0;
}

bool Stream::is_silent(PlayTime now) const {
    constexpr double shortest = 5, intervals = 4;
    return static_cast<double>(now - seen_) / one_second > std::max(shortest, intervals * mean_interval());
}

bool StreamFilter::admits(const Stream& stream, const core::UnitSelection& units,
                          core::Definitions definitions) const {
    const auto has = [](const auto& list, auto value) {
        return list.empty() || std::ranges::find(list, value) != list.end();
    };
    const N2KMsg& msg = stream.msg();
    if (!has(pgns, msg.pgn) || !has(sources, msg.source) || (bus && *bus != stream.bus())) return false;
    if (text.empty()) return true;
    const std::string wanted = lower_case(text);
    MessageView view(msg, units, definitions);
    if (std::to_string(msg.pgn).starts_with(wanted) ||
        lower_case(view.name()).find(wanted) != std::string::npos)
        return true;
    while (view.next())
        if (lower_case(concat(view.label(), ": ", view.value())).find(wanted) != std::string::npos)
            return true;
    return false;
}

bool Streams::put(const N2KMsg& msg, std::uint8_t bus, PlayTime now) {
    const Key key{msg.pgn, bus, msg.source, core::stream_keys(msg)};
    ++messages_;
    auto found = streams_.find(key);
    if (found == streams_.end()) {
        if (streams_.size() >= most) {
            ++refused_;
            return false;
        }
        found = streams_.try_emplace(key).first;
        found->second.bus_ = bus;
        found->second.order_ = streams_.size() - 1;
    }
    found->second.take(msg, now);
    return true;
}

void Streams::clear() {
    streams_.clear();
    messages_ = refused_ = 0;
}

std::vector<const Stream*> Streams::select(const StreamFilter& filter, StreamOrder order, PlayTime now,
                                           const core::UnitSelection& units,
                                           core::Definitions definitions) const {
    std::vector<const Stream*> chosen;
    chosen.reserve(streams_.size());
    for (const auto& [key, stream] : streams_)
        if (filter.is_empty() || filter.admits(stream, units, definitions)) chosen.push_back(&stream);
    const auto by = [&](auto&& rank) {
        std::ranges::stable_sort(chosen,
                                 [&rank](const Stream* a, const Stream* b) { return rank(*a) < rank(*b); });
    };
    by([](const Stream& s) { return s.order(); });
    switch (order) {
        case StreamOrder::appearance: break;
        case StreamOrder::pgn:
            by([](const Stream& s) { return std::tuple(s.msg().pgn, s.bus(), s.msg().source); });
            break;
        case StreamOrder::source:
            by([](const Stream& s) { return std::tuple(s.bus(), s.msg().source, s.msg().pgn); });
            break;
        case StreamOrder::rate: by([now](const Stream& s) { return -s.rate(now); }); break;
        case StreamOrder::latest: by([](const Stream& s) { return -s.seen(); }); break;
    }
    return chosen;
}

}  // namespace vistel
