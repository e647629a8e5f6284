// What a gateway sends while it is asked for its traffic, and when. The first byte chooses the kind; then
// come steps of two bytes, time since the last one (in 50 ms) and a number of bytes, and these. A gateway is
// not flooded, and which bytes come together makes no difference.
#include "sources/gateway.h"

#include <vector>

#include "support/fuzz.h"

namespace {

using namespace vistel;
using fuzz::require;

struct Log final : Gateway::Side {
    void send(std::string_view bytes) override {
        require(!bytes.empty() && bytes.size() < 64, "a command is short");
        sent.emplace_back(bytes);
    }
    void tell(const std::string& text) override {
        require(!text.empty(), "something is told");
        told.push_back(text);
    }
    bool wants_to_send() const override { return sends; }

    bool sends = false;
    std::vector<std::string> sent, told;
};

struct Step {
    std::chrono::milliseconds time;
    std::string_view bytes;
};

struct Outcome {
    std::vector<std::string> sent, told;
    bool traffic = false;
    std::string state, farewell;
    friend bool operator==(const Outcome&, const Outcome&) = default;
};

Outcome speak(GatewayKind kind, bool sends, const std::vector<Step>& steps, std::size_t most) {
    Log log;
    log.sends = sends;
    const auto gateway = make_gateway(kind, log);
    Gateway::Time now{std::chrono::hours(1)};
    Outcome outcome;
    gateway->connected(now);
    for (const Step& step : steps) {
        now += step.time;
        if (step.time.count() >= 12'000) gateway->connected(now);  // it was lost
        const std::size_t before = log.sent.size();
        for (std::string_view rest = step.bytes; !rest.empty();) {
            const std::string_view piece = rest.substr(0, most);
            outcome.traffic = gateway->received(piece, now) || outcome.traffic;
            rest.remove_prefix(piece.size());
        }
        require(log.sent.size() - before <= 1 + step.bytes.size(), "no more is sent than is answered");
        const std::size_t answered = log.sent.size();
        gateway->elapsed(now);
        gateway->elapsed(now);
        require(log.sent.size() <= answered + 1, "a command is sent once");
        require(gateway->state().size() < 200, "a state is short");
    }
    require(log.told.size() <= 1 + 2 * steps.size(), "little is told");
    outcome.sent = log.sent;
    outcome.told = log.told;
    outcome.state = gateway->state();
    outcome.farewell = gateway->farewell();
    return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz::Input input(bytes, size);
    const auto choice = input.take<std::uint8_t>();
    constexpr GatewayKind kinds[] = {GatewayKind::recognised, GatewayKind::ngt1, GatewayKind::ikonvert,
                                     GatewayKind::slcan, GatewayKind::ydnu};
    const GatewayKind kind = kinds[(choice & 0x7Fu) % std::size(kinds)];
    std::vector<Step> steps;
    while (!input.empty()) {
        const std::chrono::milliseconds time{50 * input.take<std::uint8_t>()};
        steps.push_back({time, input.take_text(input.take<std::uint8_t>())});
    }
    const bool sends = (choice & 0x80) != 0;
    const Outcome whole = speak(kind, sends, steps, SIZE_MAX);
    // What is recognised by a part of what came together is answered behind all of it.
    if (kind != GatewayKind::recognised)
        require(speak(kind, sends, steps, 1) == whole, "which bytes come together makes no difference");
    return 0;
}
