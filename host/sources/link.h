#pragma once

#include <memory>
#include <string>

#include "readers/byte_input.h"
#include "sources/connection.h"
#include "sources/datagram_lines.h"
#include "sources/gateway.h"
#include "sources/link_watch.h"

namespace vistel {

/// The bytes of a gateway. A link that is lost is made again and so never ends; a line that was cut by the
/// loss gets an end that makes it a bad one, and the next begins by itself.
class Link final : public ByteInput, Connection::Events, Gateway::Side {
  public:
    Link(std::shared_ptr<EventLoop> loop, SourceName name, LinkOptions options);
    ~Link() override;
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    /// Makes the connection for the first time, which is not tried again. Listening is enough where others
    /// connect.
    Status open();

    Fill read(std::span<char> room, int patience, std::size_t& size) override;
    const std::string& error() const override { return error_; }
    bool is_file() const override { return false; }
    std::uint64_t total() const override { return 0; }
    std::int64_t arrival() const override { return arrival_; }

    /// Sends to the gateway; false while there is no connection.
    bool transmit(std::string_view bytes) {
        if (is_open_) send(bytes);
        return is_open_;
    }

    std::shared_ptr<const LinkCounters> counters() const { return watch_.shared_counters(); }

  private:
    using Clock = LinkWatch::Clock;

    void opened() override;
    bool received(std::string_view bytes) override;
    void lost(const std::string& reason) override;
    void send(std::string_view bytes) override;
    void tell(const std::string& text) override { watch_.tell(text); }
    bool wants_to_send() const override { return watch_.options().sends; }

    void connect();
    void keep_up(Clock::time_point now);
    void drop_read();

    std::shared_ptr<EventLoop> loop_;
    SourceName name_;
    LinkWatch watch_;
    std::unique_ptr<Gateway> gateway_;
    std::unique_ptr<Connection> connection_;
    bool is_open_ = false;
    Clock::time_point connecting_since_;
    std::string first_failure_;
    bool opened_once_ = false;
    Clock::time_point kept_up_at_;
    DatagramLines datagrams_;
    std::string pending_;   // received, not read
    std::size_t read_ = 0;  // of these
    bool cut_ = false;      // the last connection ended within a line
    bool is_stopped_ = false;
    char last_ = '\n';
    std::int64_t arrival_ = 0;
    std::string error_;
};

}  // namespace vistel
