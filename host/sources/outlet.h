#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "sources/can_socket.h"
#include "sources/source_name.h"
#include "text/result.h"

namespace vistel {

struct OutletOptions {
    std::size_t most_queued = std::size_t{1}
                              << 20;            ///< bytes for one client; who lets more pile up is dropped
    std::chrono::milliseconds patience{1'000};  ///< with a client that takes nothing, in has_room()
    std::function<void(const std::string&)> tell = {};  ///< who comes and goes, and what fails first
};

struct OutletCounters {
    std::uint64_t bytes = 0;    ///< that the system took, for all clients
    std::uint64_t clients = 0;  ///< that there were
    std::uint64_t dropped = 0;  ///< of these, because they did not take what was sent
    std::uint64_t lost = 0;     ///< frames or datagrams that the system did not take
};

/// Where traffic goes that other programs take as they would a gateway's or an interface's. Nothing is waited
/// for but in run() and, with a full CAN interface, for a moment in put().
class Outlet {
  public:
    virtual ~Outlet() = default;

    /// What everybody gets before the first record.
    virtual void begin(std::string_view head) = 0;
    /// A whole record, which is sent at the latest by flush().
    virtual void put(std::string_view record) = 0;
    virtual void flush() {}

    /// Whether there is somebody to take more, and nobody who has yet to take much.
    virtual bool has_room() { return true; }
    /// Whether nothing waits to be sent.
    virtual bool is_empty() const { return true; }
    /// Deals with what clients do, for about so long at most.
    virtual void run(std::chrono::milliseconds patience) = 0;

    const OutletCounters& counters() const { return counters_; }

  protected:
    OutletCounters counters_;
};

/// Opens where a name (source_name.h) leads to. As targets they are
///
///     tcp://host:port            one client, to whom a connection is made again when it was lost
///     tcp-listen://[host]:port   any number of clients that connect; none is there to begin with
///     udp://host:port            datagrams with whole records, also to a broadcast or a group's address
///     can:interface              frames; records are those of PcapWriter
///
/// Failure for others and where it cannot be opened.
Result<std::unique_ptr<Outlet>> open_outlet(const SourceName& name, const OutletOptions& options);

/// The one of a CAN interface, for a socket that is open.
std::unique_ptr<Outlet> make_can_outlet(std::unique_ptr<CanSocket> socket, const OutletOptions& options);

}  // namespace vistel
