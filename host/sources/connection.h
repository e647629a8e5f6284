#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "sources/event_loop.h"
#include "sources/source_name.h"
#include "text/result.h"

namespace vistel {

/// One connection to a gateway, from its making to its loss. A lost one is replaced, not mended.
class Connection {
  public:
    /// Whom it tells what happens, out of EventLoop::run_one(). Any of these may destroy the connection.
    class Events {
      public:
        virtual void opened() = 0;
        /// Whether more may come; if not, resume() is awaited.
        virtual bool received(std::string_view bytes) = 0;
        /// Nothing more will happen.
        virtual void lost(const std::string& reason) = 0;

      protected:
        ~Events() = default;
    };

    /// Nothing is told any more.
    virtual ~Connection() = default;

    virtual void resume() = 0;
    /// Datagrams that the system dropped because they were not taken in time.
    virtual std::uint64_t dropped() const = 0;
    /// Sends behind what is being sent.
    virtual void send(std::string_view bytes) = 0;
};

/// Begins to connect to what is no file and no CAN interface; `opened` or `lost` follow. What can be said at
/// once, such as that there is no such device, is a failure.
Result<std::unique_ptr<Connection>> open_connection(EventLoop& loop, const SourceName& name,
                                                    Connection::Events& events);

}  // namespace vistel
