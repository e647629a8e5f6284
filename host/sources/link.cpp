#include "sources/link.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "text/characters.h"
#include "text/words.h"

namespace vistel {
namespace {

using namespace std::chrono_literals;
using namespace std::string_view_literals;

/// A gateway on the boat's network answers in milliseconds.
constexpr auto most_connecting = 10s;
/// Received and not read. What comes faster than it is read waits with the sender.
constexpr std::size_t most_pending = std::size_t{1} << 24;
/// Ends a line that was cut.
constexpr char cut_end[] = {cut_mark, '\n'};
/// Between two looks at what is due.
constexpr auto slice = 100ms;

std::string_view word_of(SourceName::Kind kind) {
    return kind == SourceName::Kind::udp ? "listening" : "connected";
}

std::string doubt_of(const SourceName& name) {
    return name.kind == SourceName::Kind::serial ? concat("; is ", name.speed, " the right speed?") : "";
}

/// Whether bytes are more than the signs by which adapters say yes and no, which are no format.
bool is_content(std::string_view bytes) {
    return bytes.find_first_not_of("\r\n\a"sv) != std::string_view::npos;
}

std::int64_t wall_clock() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

}  // namespace

Link::Link(std::shared_ptr<EventLoop> loop, SourceName name, LinkOptions options)
    : loop_(std::move(loop)),
      name_(std::move(name)),
      watch_(std::move(options), word_of(name_.kind), doubt_of(name_)),
      gateway_(make_gateway(name_.gateway, *this)) {}

Link::~Link() {
    if (!gateway_ || gateway_->farewell().empty()) return;
    constexpr int most_events = 4;  // the end of what was sent before is among them
    for (int i = 0; i < most_events; ++i) loop_->run_one(0ms);
    if (is_open_) send(gateway_->farewell());
}

Status Link::open() {
    watch_.attempt();
    connecting_since_ = Clock::now();
    auto made = open_connection(*loop_, name_, *this);
    if (!made) return made.error();
    connection_ = std::move(*made);
    if (name_.kind == SourceName::Kind::tcp_listen) {
        opened_once_ = true;
        return done;
    }
    while (!opened_once_ && connection_ && Clock::now() - connecting_since_ < most_connecting)
        loop_->run_one(slice);
    if (opened_once_) return done;
    return Failure{connection_ ? "no answer" : first_failure_};
}

void Link::connect() {
    watch_.attempt();
    connecting_since_ = Clock::now();
    auto made = open_connection(*loop_, name_, *this);
    if (made) {
        connection_ = std::move(*made);
    } else {
        lost(made.error().text);
    }
}

void Link::opened() {
    is_open_ = opened_once_ = true;
    watch_.opened(Clock::now());
    if (gateway_) gateway_->connected(Clock::now());
}

bool Link::received(std::string_view bytes) {
    arrival_ = wall_clock();
    watch_.counters().bytes += bytes.size();
    const auto now = Clock::now();
    if (!gateway_ || gateway_->received(bytes, now)) watch_.traffic(now);
    if (is_content(bytes)) watch_.came(now);
    if (std::exchange(cut_, false)) pending_.append(std::begin(cut_end), std::end(cut_end));
    if (name_.kind == SourceName::Kind::udp) {
        datagrams_.put(bytes, now, pending_);
    } else {
        pending_ += bytes;
    }
    if (!bytes.empty()) last_ = bytes.back();
    is_stopped_ = pending_.size() - read_ >= most_pending;
    return !is_stopped_;
}

void Link::lost(const std::string& reason) {
    connection_.reset();
    is_open_ = false;
    cut_ = last_ != '\n' && last_ != '\r';
    if (opened_once_) {
        watch_.lost(Clock::now(), reason);
    } else {
        first_failure_ = reason;
    }
}

void Link::send(std::string_view bytes) {
    if (connection_) connection_->send(bytes);
}

/// Does what is due.
void Link::keep_up(Clock::time_point now) {
    kept_up_at_ = now;
    datagrams_.elapsed(now, pending_);
    if (!connection_) {
        if (now >= watch_.retry_at()) connect();
    } else if (is_open_) {
        if (gateway_) gateway_->elapsed(now);
    } else if (name_.kind == SourceName::Kind::tcp && now - connecting_since_ >= most_connecting) {
        lost("no answer");
    }
    if (is_open_)
        if (const std::uint64_t dropped = connection_->dropped(); dropped > 0)
            watch_.dropped(now, dropped, "datagrams");
    watch_.elapsed(now, gateway_ ? gateway_->state() : std::string_view{});
    // The other end may have lost its power, which looks just as if the bus had nothing to say.
    const auto most_silence = 2 * watch_.options().silence;
    if (name_.kind == SourceName::Kind::tcp && is_open_ && most_silence.count() > 0 &&
        watch_.silent(now) >= most_silence) {
        connection_.reset();
        is_open_ = false;
        connect();
    }
}

void Link::drop_read() {
    const bool is_empty = read_ == pending_.size();
    if (!is_empty && read_ < most_pending) return;
    pending_.erase(0, read_);
    read_ = 0;
    if (is_empty && std::exchange(is_stopped_, false) && connection_) connection_->resume();
}

ByteInput::Fill Link::read(std::span<char> room, int patience, std::size_t& size) {
    const auto start = Clock::now();
    const auto most = std::chrono::milliseconds(patience);
    loop_->run_one(0ms);
    if (start - kept_up_at_ >= slice) keep_up(start);
    for (;;) {
        if (read_ < pending_.size()) {
            size = pending_.copy(room.data(), room.size(), read_);
            read_ += size;
            drop_read();
            return Fill::data;
        }
        const auto now = Clock::now();
        keep_up(now);
        const auto waited = now - start;
        if (patience >= 0 && waited >= most) return Fill::idle;
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(most - waited) + 1ms;
        loop_->run_one(patience < 0 ? slice : std::min<std::chrono::milliseconds>(slice, left));
    }
}

}  // namespace vistel
