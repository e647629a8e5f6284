#include "sources/connection.h"

#include <array>
#include <asio/connect.hpp>
#include <asio/ip/multicast.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/ip/udp.hpp>
#include <asio/post.hpp>
#include <asio/serial_port.hpp>
#include <asio/write.hpp>

#include "sources/drops.h"
#include "sources/event_loop_parts.h"
#include "sources/tcp_listener.h"
#include "text/error_text.h"
#include "text/quotes.h"

namespace vistel {
namespace {

using Error = asio::error_code;
using asio::ip::tcp;
using asio::ip::udp;

std::string text_of(const Error& error) {
    return error == asio::error::eof ? "closed by the other side" : error_text(error);
}

/// What lives until the last operation on it has ended: whoever wanted to hear of these may be gone.
class Session : public std::enable_shared_from_this<Session> {
  public:
    explicit Session(Connection::Events& events) : events_(&events) {}
    virtual ~Session() = default;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    virtual Status open(const SourceName& name) = 0;
    virtual void read() = 0;
    virtual void send(std::string_view bytes) = 0;
    virtual std::uint64_t dropped() { return 0; }
    virtual void close() = 0;

    void drop() {
        events_ = nullptr;
        close();
    }

  protected:
    bool is_dropped() const { return events_ == nullptr; }

    void opened() {
        if (events_ == nullptr) return;
        events_->opened();
        if (events_ != nullptr) read();
    }
    void received(const Error& error, std::size_t size) {
        if (error) return lost(error);
        if (events_ != nullptr && events_->received({room_.data(), size}) && events_ != nullptr) read();
    }
    void lost(const Error& error) {
        if (Connection::Events* const events = std::exchange(events_, nullptr)) events->lost(text_of(error));
    }
    auto room() { return asio::buffer(room_); }

  private:
    Connection::Events* events_;
    std::array<char, std::size_t{1} << 16> room_;
};

/// Bytes both ways.
template <class Stream>
class StreamSession : public Session {
  public:
    StreamSession(EventLoop& loop, Connection::Events& events)
        : Session(events), stream_(loop.parts().context) {}

    void read() override {
        stream_.async_read_some(room(), [this, self = shared_from_this()](
                                            const Error& error, std::size_t size) { received(error, size); });
    }

    void send(std::string_view bytes) override {
        queued_ += bytes;
        if (sent_.empty()) send_queued();
    }

    void close() override {
        Error ignored;
        stream_.close(ignored);
    }

  protected:
    Stream stream_;

  private:
    void send_queued() {
        sent_.swap(queued_);
        if (sent_.empty()) return;
        asio::async_write(stream_, asio::buffer(sent_),
                          [this, self = shared_from_this()](const Error& error, std::size_t) {
                              sent_.clear();
                              if (error) {
                                  lost(error);
                              } else {
                                  send_queued();
                              }
                          });
    }

    std::string sent_;  // on its way
    std::string queued_;
};

class TcpSession final : public StreamSession<tcp::socket> {
  public:
    TcpSession(EventLoop& loop, Connection::Events& events)
        : StreamSession(loop, events), resolver_(loop.parts().context) {}

    Status open(const SourceName& name) override {
        resolver_.async_resolve(name.target, std::to_string(name.port),
                                [this, self = shared_from_this()](const Error& error, const Found& found) {
                                    if (is_dropped()) return;
                                    if (error) return lost(error);
                                    connect(found);
                                });
        return done;
    }

    void close() override {
        resolver_.cancel();
        StreamSession::close();
    }

  private:
    using Found = tcp::resolver::results_type;

    void connect(const Found& found) {
        asio::async_connect(stream_, found,
                            [this, self = shared_from_this()](const Error& error, const tcp::endpoint&) {
                                if (is_dropped()) return;
                                if (error) return lost(error);
                                Error ignored;
                                stream_.set_option(asio::socket_base::keep_alive(true), ignored);
                                opened();
                            });
    }

    tcp::resolver resolver_;
};

/// Takes one connection, and no other as long as that lasts.
class ListenSession final : public StreamSession<tcp::socket> {
  public:
    ListenSession(EventLoop& loop, Connection::Events& events)
        : StreamSession(loop, events), acceptor_(loop.parts().context) {}

    Status open(const SourceName& name) override {
        if (const Error error = listen_at(acceptor_, name, 1)) return Failure{text_of(error)};
        acceptor_.async_accept(stream_, [this, self = shared_from_this()](const Error& refused) {
            if (is_dropped()) return;
            if (refused) return lost(refused);
            Error ignored;
            acceptor_.close(ignored);
            opened();
        });
        return done;
    }

    void close() override {
        Error ignored;
        acceptor_.close(ignored);
        StreamSession::close();
    }

  private:
    tcp::acceptor acceptor_;
};

class SerialSession final : public StreamSession<asio::serial_port> {
  public:
    using StreamSession::StreamSession;

    Status open(const SourceName& name) override {
        using Port = asio::serial_port_base;
        Error error;
        stream_.open(name.target, error);
        if (error) return Failure{text_of(error)};
        stream_.set_option(Port::baud_rate(name.speed), error);
        if (error) return failure("no port with a speed of ", name.speed, ": ", text_of(error));
        stream_.set_option(Port::character_size(8), error);
        stream_.set_option(Port::parity(Port::parity::none), error);
        stream_.set_option(Port::stop_bits(Port::stop_bits::one), error);
        stream_.set_option(Port::flow_control(Port::flow_control::none), error);
        asio::post(stream_.get_executor(), [this, self = shared_from_this()] { opened(); });
        return done;
    }
};

class UdpSession final : public Session {
  public:
    UdpSession(EventLoop& loop, Connection::Events& events)
        : Session(events), socket_(loop.parts().context) {}

    Status open(const SourceName& name) override {
        Error error;
        asio::ip::address any = asio::ip::address_v4::any();
        if (!name.target.empty()) {
            host_ = asio::ip::make_address(name.target, error);
            if (error) return failure(in_quotes(name.target), " is not an address");
            if (host_.is_v6()) any = asio::ip::address_v6::any();
        }
        const udp::endpoint endpoint(any, name.port);
        socket_.open(endpoint.protocol(), error);
        // What gateways broadcast is for every program that listens.
        if (!error) socket_.set_option(asio::socket_base::reuse_address(true), error);
        if (!error) socket_.bind(endpoint, error);
        if (!error && host_.is_multicast()) socket_.set_option(asio::ip::multicast::join_group(host_), error);
        if (error) return Failure{text_of(error)};
        constexpr int much = 1 << 20;  // the system may grant less
        socket_.set_option(asio::socket_base::receive_buffer_size(much), error);
        asio::post(socket_.get_executor(), [this, self = shared_from_this()] { opened(); });
        return done;
    }

    void read() override {
        socket_.async_receive_from(room(), sender_,
                                   [this, self = shared_from_this()](const Error& error, std::size_t size) {
                                       if (!error && !is_wanted(sender_.address()))
                                           return is_dropped() ? void() : read();
                                       if (!error) gateway_ = sender_;
                                       received(error, size);
                                   });
    }

    void send(std::string_view bytes) override {
        Error ignored;  // a datagram may be lost on any way
        if (gateway_.port() != 0) socket_.send_to(asio::buffer(bytes), gateway_, 0, ignored);
    }

    std::uint64_t dropped() override {
        return socket_.is_open() ? dropped_by_system(static_cast<std::intptr_t>(socket_.native_handle())) : 0;
    }

    void close() override {
        Error ignored;
        socket_.close(ignored);
    }

  private:
    bool is_wanted(const asio::ip::address& sender) const {
        return host_.is_unspecified() || host_.is_multicast() || sender == host_;
    }

    udp::socket socket_;
    udp::endpoint sender_;
    udp::endpoint gateway_;   // whose datagram came last; what is sent goes there
    asio::ip::address host_;  // whose datagrams are wanted, or the group that they go to
};

/// Drops its session in the end.
class SessionConnection final : public Connection {
  public:
    explicit SessionConnection(std::shared_ptr<Session> session) : session_(std::move(session)) {}
    ~SessionConnection() override { session_->drop(); }
    SessionConnection(const SessionConnection&) = delete;
    SessionConnection& operator=(const SessionConnection&) = delete;

    void resume() override { session_->read(); }
    std::uint64_t dropped() const override { return session_->dropped(); }
    void send(std::string_view bytes) override { session_->send(bytes); }

  private:
    std::shared_ptr<Session> session_;
};

std::shared_ptr<Session> make_session(EventLoop& loop, SourceName::Kind kind, Connection::Events& events) {
    switch (kind) {
        case SourceName::Kind::tcp: return std::make_shared<TcpSession>(loop, events);
        case SourceName::Kind::tcp_listen: return std::make_shared<ListenSession>(loop, events);
        case SourceName::Kind::udp: return std::make_shared<UdpSession>(loop, events);
        default: return std::make_shared<SerialSession>(loop, events);
    }
}

}  // namespace

Result<std::unique_ptr<Connection>> open_connection(EventLoop& loop, const SourceName& name,
                                                    Connection::Events& events) {
    auto session = make_session(loop, name.kind, events);
    auto connection = std::make_unique<SessionConnection>(session);
    if (const Status opened = session->open(name); !opened) return opened.error();
    return std::unique_ptr<Connection>(std::move(connection));
}

}  // namespace vistel
