#include "sources/gateway.h"

#include <algorithm>
#include <array>

#include "sources/dialogue.h"
#include "text/characters.h"
#include "text/words.h"

namespace vistel {
namespace {

using namespace std::chrono_literals;
using namespace std::string_view_literals;

/// The first bytes of what comes piece by piece. What is longer is cut, which nothing here has to see whole.
class Beginning {
  public:
    void clear() { size_ = 0; }
    void put(char c) {
        if (size_ < bytes_.size()) bytes_[size_++] = c;
    }
    std::string_view text() const { return {bytes_.data(), size_}; }

  private:
    std::array<char, 64> bytes_{};
    std::size_t size_ = 0;
};

/// Cuts text into what stands between the ends of lines and bells.
class ItemScan {
  public:
    /// `take(item, end)` gets each item with the character that ends it.
    template <class Take>
    void put(std::string_view bytes, Take take) {
        for (const char c : bytes) {
            if (c != '\r' && c != '\n' && c != '\a') {
                item_.put(c);
            } else {
                take(item_.text(), c);
                item_.clear();
            }
        }
    }

  private:
    Beginning item_;
};

/// Finds the records in bytes of the Actisense protocol.
class RecordScan {
  public:
    /// `take(record)` gets the beginning of each record, from its kind on.
    template <class Take>
    void put(std::string_view bytes, Take take) {
        for (const char c : bytes) {
            if (!escaped_) {
                if (c == escape) {
                    escaped_ = true;
                } else if (inside_) {
                    record_.put(c);
                }
                continue;
            }
            escaped_ = false;
            if (c == escape && inside_) {
                record_.put(c);
            } else if (c == begin) {
                record_.clear();
                inside_ = true;
            } else {
                if (c == end && inside_) take(record_.text());
                inside_ = false;
            }
        }
    }

  private:
    static constexpr char escape = 0x10, begin = 0x02, end = 0x03;

    Beginning record_;
    bool escaped_ = false;
    bool inside_ = false;
};

/// Actisense NGT-1 and NGX-1. In the mode that they start in they pass what is on their list alone, and look
/// healthy. The NGX-1 takes the mode that passes everything out of the other one only, so both are asked for.
/// The last one is asked for again and again, as a gateway that lost its power has lost it, too.
class Ngt1 final : public Gateway {
  public:
    explicit Ngt1(Side& side) : side_(side), dialogue_(side, commands, 20s) {}

    void connected(Time now) override {
        answers_ = 0;
        dialogue_.begin(now);
    }

    bool received(std::string_view bytes, Time now) override {
        bool traffic = false;
        records_.put(bytes, [&](std::string_view record) {
            const auto kind = static_cast<unsigned char>(record.empty() ? 0 : record[0]);
            traffic = traffic || kind == 0x93 || kind == 0x95 || kind == 0xD0;
            if (kind != 0xA0) return;
            ++answers_;
            constexpr std::size_t id = 2, error = 10, mode = 14;
            if (record.size() < mode + 2 || record[id] != 0x11) return;
            const bool taken = record.substr(error, 4) == "\0\0\0\0"sv && record[mode + 1] == 0;
            if (dialogue_.is_at(0) && taken && record[mode] == 1) {
                dialogue_.next(now);
            } else if (taken && record[mode] == 2) {
                if (told_) side_.tell("the gateway confirms that it passes everything");
                told_ = false;
                dialogue_.finish(now);
            }
        });
        return traffic;
    }

    void elapsed(Time now) override {
        dialogue_.elapsed(now);
        if (told_ || dialogue_.is_finished() || dialogue_.rounds() < 2) return;
        told_ = true;
        side_.tell("the gateway does not confirm that it passes everything; it may hold messages back");
    }

    std::string_view state() const override {
        if (answers_ == 0) return "the gateway does not answer";
        return dialogue_.is_finished()
                   ? "the gateway answers, but has no traffic"
                   : "the gateway answers, but has no traffic and does not confirm its mode";
    }

  private:
    static constexpr Command commands[] = {{"\x10\x02\xA1\x03\x11\x01\x00\x4A\x10\x03"sv, 2500ms},
                                           {"\x10\x02\xA1\x03\x11\x02\x00\x49\x10\x03"sv, 2500ms}};
    Side& side_;
    Dialogue dialogue_;
    RecordScan records_;
    std::uint64_t answers_ = 0;
    bool told_ = false;
};

/// Digital Yacht iKonvert. The lists that are stored in it are left as they are; with "ALL" they do not
/// count.
class IKonvert final : public Gateway {
  public:
    explicit IKonvert(Side& side) : side_(side), dialogue_(side, commands) {}

    void connected(Time now) override {
        answers_ = empty_ = 0;
        dialogue_.begin(now);
    }

    bool received(std::string_view bytes, Time now) override {
        bool traffic = false;
        lines_.put(bytes, [&](std::string_view line, char) {
            if (line.starts_with("!PDGY,")) {
                traffic = true;
                empty_ = 0;
            }
            if (!line.starts_with("$PDGY,")) return;
            ++answers_;
            line.remove_prefix(6);
            if (line.starts_with("000000,")) {
                take_status(line.substr(7), now);
            } else if (dialogue_.is_at(0) &&
                       (line.starts_with("TEXT,") || line.starts_with("ACK,N2NET_OFFLINE"))) {
                dialogue_.next(now);
            } else if (dialogue_.is_at(1) && line.starts_with("ACK,N2NET_INIT")) {
                dialogue_.finish(now);
            }
        });
        return traffic;
    }

    void elapsed(Time now) override { dialogue_.elapsed(now); }

    std::string_view state() const override {
        if (answers_ == 0) return "the gateway does not answer";
        return empty_ > 0 ? "the gateway answers, but is not on the bus"
                          : "the gateway answers, but has no traffic";
    }

  private:
    /// Once a second; all empty as long as the gateway is off the bus.
    void take_status(std::string_view values, Time now) {
        constexpr unsigned most_empty = 10;
        empty_ = values.find_first_not_of(',') == std::string_view::npos ? empty_ + 1 : 0;
        if (empty_ == 0 || empty_ % most_empty != 0 || !dialogue_.is_finished()) return;
        if (empty_ == most_empty) side_.tell("the gateway is not on the bus; it is started again");
        dialogue_.begin(now);
    }

    static constexpr Command commands[] = {{"$PDGY,N2NET_OFFLINE\r\n", 5s}, {"$PDGY,N2NET_INIT,ALL\r\n", 5s}};
    Side& side_;
    Dialogue dialogue_;
    ItemScan lines_;
    std::uint64_t answers_ = 0;
    unsigned empty_ = 0;  // status lines without a value, one after the other
};

/// Adapters of serial line CAN: closed, set to the speed of the bus, opened for listening only, or where they
/// cannot do that or frames are to be sent, for all. Many answer nothing: then traffic is the answer.
class Slcan final : public Gateway {
  public:
    explicit Slcan(Side& side)
        : side_(side),
          dialogue_(side, side.wants_to_send() ? std::span<const Command>(sending) : listening) {}

    void connected(Time now) override {
        answers_ = 0;
        dialogue_.begin(now);
    }

    bool received(std::string_view bytes, Time now) override {
        bool traffic = false;
        items_.put(bytes, [&](std::string_view item, char end) {
            if (item.size() > 4 && std::string_view("TtRrx").find(item[0]) != std::string_view::npos) {
                traffic = true;
                if (is_opening()) dialogue_.finish(now);
            } else if (end == '\a' || (end == '\r' && item.empty())) {
                ++answers_;
                take_answer(end == '\r', now);
            }
        });
        return traffic;
    }

    void elapsed(Time now) override { dialogue_.elapsed(now); }

    std::string_view state() const override {
        return answers_ == 0 ? "the adapter does not answer" : "the adapter answers, but has no traffic";
    }
    std::string_view farewell() const override { return "C\r"; }

  private:
    void take_answer(bool good, Time now) {
        if (is_opening() && good) return dialogue_.finish(now);
        if (dialogue_.is_at_last() && !told_) {
            told_ = true;
            side_.tell("the adapter refuses to open the bus");
        }
        if (!dialogue_.is_finished() && !dialogue_.is_at_last()) dialogue_.next(now);
    }
    bool is_opening() const { return dialogue_.is_at(2) || dialogue_.is_at_last(); }

    static constexpr Command close{"\rC\r", 500ms}, speed{"S5\r", 500ms}, open{"O\r", 10s};
    static constexpr Command listening[] = {close, speed, {"L\r", 500ms}, open};
    static constexpr Command sending[] = {close, speed, open};
    Side& side_;
    Dialogue dialogue_;
    ItemScan items_;
    std::uint64_t answers_ = 0;
    bool told_ = false;
};

/// Yacht Devices YDNU-02, which takes its mode from what it is sent first: frames as text.
class Ydnu final : public Gateway {
  public:
    explicit Ydnu(Side& side) : dialogue_(side, commands) {}

    void connected(Time now) override {
        others_ = 0;
        dialogue_.begin(now);
    }

    bool received(std::string_view bytes, Time now) override {
        bool traffic = false;
        lines_.put(bytes, [&](std::string_view line, char) {
            // 19:07:21.014 R 09F8017F ...
            if (line.size() > 24 && line[2] == ':' && line[5] == ':' && line[12] == ' ' && line[14] == ' ') {
                traffic = true;
            } else if (!line.empty()) {
                ++others_;
            }
        });
        if (traffic) dialogue_.finish(now);
        return traffic;
    }

    void elapsed(Time now) override { dialogue_.elapsed(now); }

    std::string_view state() const override {
        return others_ > 0 ? "the gateway sends other things than frames as text" : "";
    }

  private:
    static constexpr Command commands[] = {{"0\n", 5s}};
    Dialogue dialogue_;
    ItemScan lines_;
    std::uint64_t others_ = 0;
};

/// Nothing is sent until the gateway has shown what it is.
class Recognised final : public Gateway {
  public:
    explicit Recognised(Side& side) : side_(side) {}

    void connected(Time now) override {
        if (gateway_) gateway_->connected(now);
    }

    bool received(std::string_view bytes, Time now) override {
        if (gateway_) return gateway_->received(bytes, now);
        GatewayKind kind = GatewayKind::none;
        records_.put(bytes, [&](std::string_view) { kind = GatewayKind::ngt1; });
        lines_.put(bytes, [&](std::string_view line, char) {
            if (line.starts_with("$PDGY,") || line.starts_with("!PDGY,")) kind = GatewayKind::ikonvert;
        });
        if (kind == GatewayKind::none) return true;
        gateway_ = make_gateway(kind, side_);
        gateway_->connected(now);
        return gateway_->received(bytes, now);
    }

    void elapsed(Time now) override {
        if (gateway_) gateway_->elapsed(now);
    }

    std::string_view state() const override {
        return gateway_ ? gateway_->state()
                        : "some gateways wait until they are asked: name yours with ?gateway=";
    }

  private:
    Side& side_;
    std::unique_ptr<Gateway> gateway_;
    RecordScan records_;
    ItemScan lines_;
};

template <class Any>
std::unique_ptr<Gateway> make(Gateway::Side& side) {
    return std::make_unique<Any>(side);
}

struct Row {
    std::string_view name;
    GatewayKind kind;
    unsigned speed;
    std::unique_ptr<Gateway> (*make)(Gateway::Side& side);
};

constexpr Row rows[] = {
    {"none", GatewayKind::none, 115200, nullptr},
    {"recognised", GatewayKind::recognised, 115200, make<Recognised>},
    {"ngt1", GatewayKind::ngt1, 115200, make<Ngt1>},
    {"ikonvert", GatewayKind::ikonvert, 230400, make<IKonvert>},
    {"slcan", GatewayKind::slcan, 115200, make<Slcan>},
    {"ydnu", GatewayKind::ydnu, 38400, make<Ydnu>},
};

const Row& row_of(GatewayKind kind) {
    return *std::ranges::find(rows, kind, &Row::kind);
}

}  // namespace

std::string gateway_names() {
    std::vector<std::string> names;
    for (const Row& row : rows) names.emplace_back(row.name);
    return joined(names);
}

bool find_gateway(std::string_view name, GatewayKind& kind) {
    const Row* const row = std::ranges::find(rows, name, &Row::name);
    if (row == std::end(rows)) return false;
    kind = row->kind;
    return true;
}

unsigned usual_speed(GatewayKind kind) {
    return row_of(kind).speed;
}

std::unique_ptr<Gateway> make_gateway(GatewayKind kind, Gateway::Side& side) {
    const Row& row = row_of(kind);
    return row.make != nullptr ? row.make(side) : nullptr;
}

}  // namespace vistel
