#pragma once

#include <asio/ip/tcp.hpp>

#include "sources/source_name.h"

namespace vistel {

/// Begins to listen where the name says, at any address where it has none.
inline asio::error_code listen_at(asio::ip::tcp::acceptor& acceptor, const SourceName& name, int backlog) {
    asio::error_code error;
    const auto address = name.target.empty() ? asio::ip::address(asio::ip::address_v4::any())
                                             : asio::ip::make_address(name.target, error);
    const asio::ip::tcp::endpoint endpoint(address, name.port);
    if (!error) acceptor.open(endpoint.protocol(), error);
    if (!error) acceptor.set_option(asio::socket_base::reuse_address(true), error);
    if (!error) acceptor.bind(endpoint, error);
    if (!error) acceptor.listen(backlog, error);
    return error;
}

}  // namespace vistel
