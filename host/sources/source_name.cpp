#include "sources/source_name.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <system_error>

#include "text/characters.h"
#include "text/path_of.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {
namespace {

template <class Number>
bool read_number(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

/// `can0`, `vcan1`, `slcan0`: what interfaces are called unless somebody gives them other names.
bool is_usual_interface(std::string_view name) {
    const std::size_t start = name.find("can");
    return start != std::string_view::npos && name.size() > start + 3 && start <= 2 &&
           std::ranges::all_of(name.substr(start + 3), is_digit);
}

/// `host:port`, `:port` or `[1::2]:port`.
Status read_address(std::string_view address, std::string_view whole, SourceName& name) {
    const std::size_t colon = address.rfind(':');
    if (colon == std::string_view::npos || !read_number(address.substr(colon + 1), name.port) ||
        name.port == 0)
        return failure(in_quotes(whole), " has no port from 1 to 65535 at its end, as in tcp://host:1457");
    std::string_view host = address.substr(0, colon);
    if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
    name.target = host;
    if (host.empty() && name.kind == SourceName::Kind::tcp)
        return failure(in_quotes(whole), " has no host, as in tcp://host:1457");
    return done;
}

/// `speed=115200&gateway=ngt1`.
Status read_settings(std::string_view settings, std::string_view whole, SourceName& name) {
    while (!settings.empty()) {
        const std::size_t end = std::min(settings.find('&'), settings.size());
        const std::string_view setting = settings.substr(0, end);
        settings.remove_prefix(std::min(end + 1, settings.size()));
        const std::size_t equals = std::min(setting.find('='), setting.size());
        const std::string_view key = setting.substr(0, equals);
        const std::string_view value = setting.substr(std::min(equals + 1, setting.size()));
        if (key == "gateway") {
            if (!find_gateway(value, name.gateway))
                return failure("no gateway ", in_quotes(value), " in ", in_quotes(whole),
                               "; there are: ", gateway_names());
        } else if (key == "speed" && name.kind == SourceName::Kind::serial) {
            if (!read_number(value, name.speed) || name.speed == 0)
                return failure("no speed ", in_quotes(value), " in ", in_quotes(whole),
                               ", as in speed=115200");
        } else {
            return failure("no setting ", in_quotes(setting), " in ", in_quotes(whole),
                           "; there are: gateway", name.kind == SourceName::Kind::serial ? ", speed" : "");
        }
    }
    return done;
}

struct Scheme {
    std::string_view prefix;
    SourceName::Kind kind;
};

constexpr Scheme schemes[] = {
    {"tcp://", SourceName::Kind::tcp}, {"tcp-listen://", SourceName::Kind::tcp_listen},
    {"udp://", SourceName::Kind::udp}, {"serial:", SourceName::Kind::serial},
    {"can:", SourceName::Kind::can},
};

}  // namespace

Result<SourceName> parse_source(const std::string& text) {
    std::error_code unknown;
    if (text == "-" || std::filesystem::exists(path_of(text), unknown)) return SourceName{.target = text};
    if (is_usual_interface(text)) return SourceName{.kind = SourceName::Kind::can, .target = text};
    const auto* const scheme =
        std::ranges::find_if(schemes, [&](const Scheme& each) { return text.starts_with(each.prefix); });
    if (scheme == std::end(schemes)) return SourceName{.target = text};

    SourceName name{.kind = scheme->kind};
    std::string_view rest = std::string_view(text).substr(scheme->prefix.size());
    const std::size_t question = std::min(rest.find('?'), rest.size());
    const std::string_view settings = rest.substr(std::min(question + 1, rest.size()));
    rest = rest.substr(0, question);
    if (name.kind == SourceName::Kind::serial) name.gateway = GatewayKind::recognised;
    if (const Status read = read_settings(settings, text, name); !read) return read.error();
    switch (name.kind) {
        case SourceName::Kind::serial:
            if (name.speed == 0) name.speed = usual_speed(name.gateway);
            [[fallthrough]];
        case SourceName::Kind::can:
            name.target = rest;
            if (rest.empty()) return failure(in_quotes(text), " names no device");
            break;
        default:
            if (const Status read = read_address(rest, text, name); !read) return read.error();
    }
    return name;
}

}  // namespace vistel
