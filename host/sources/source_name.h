#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "sources/gateway.h"
#include "text/result.h"

namespace vistel {

/// Where traffic comes from or goes to, as it is named on the command line.
struct SourceName {
    enum class Kind : std::uint8_t { file, can, tcp, tcp_listen, udp, serial };

    Kind kind = Kind::file;
    std::string target = {};  ///< file, interface, device, or host; "-" is standard input
    std::uint16_t port = 0;   ///< of tcp, tcp_listen and udp
    unsigned speed = 0;       ///< of a serial port, in bits a second
    GatewayKind gateway = GatewayKind::none;

    bool is_live() const { return kind != Kind::file; }
};

/// What a name stands for:
///
///     tcp://host:port            a connection to a gateway
///     tcp-listen://[host]:port   connections that gateways make, one at a time
///     udp://[host]:port          datagrams that come to this port, from the host if there is one; a group's
///                                address is joined
///     serial:device              a serial port, `serial:/dev/ttyUSB0?speed=230400&gateway=ikonvert`
///     can:interface              a CAN interface; `can0`, `vcan1`, `slcan0` without "can:"
///
/// Each may end in `?gateway=NAME`. Everything else is a file, as is what exists as one.
Result<SourceName> parse_source(const std::string& text);

}  // namespace vistel
