#include "sources/outlet.h"

#include <algorithm>
#include <array>
#include <asio/connect.hpp>
#include <asio/ip/udp.hpp>
#include <vector>

#include "sources/event_loop.h"
#include "sources/event_loop_parts.h"
#include "sources/tcp_listener.h"
#include "text/error_text.h"
#include "text/words.h"

namespace vistel {
namespace {

using namespace std::chrono_literals;
using asio::ip::tcp;
using asio::ip::udp;
using Clock = std::chrono::steady_clock;
using Error = asio::error_code;

/// One program that takes what is sent. What it sends itself is passed over.
class Client : public std::enable_shared_from_this<Client> {
  public:
    Client(EventLoop& loop, OutletCounters& counters) : socket(loop.parts().context), counters_(counters) {}

    void begin(std::string_view head) {
        Error unknown;
        const tcp::endpoint other = socket.remote_endpoint(unknown);
        name_ = concat(other.address().to_string(), ":", other.port());
        Error ignored;
        socket.set_option(tcp::no_delay(true), ignored);
        took_ = Clock::now();
        listen();
        put(head);
    }
    void put(std::string_view bytes) {
        queued_ += bytes;
        if (at_ == sent_.size()) send_queued();
    }
    void close() {
        is_open_ = false;
        Error ignored;
        socket.close(ignored);
    }

    std::size_t waiting() const { return queued_.size() + sent_.size() - at_; }
    Clock::time_point took() const { return took_; }
    bool is_open() const { return is_open_; }
    const std::string& name() const { return name_; }

    tcp::socket socket;

  private:
    void send_queued() {
        sent_.clear();
        at_ = 0;
        sent_.swap(queued_);
        if (!sent_.empty()) send_rest();
    }
    void send_rest() {
        socket.async_write_some(asio::buffer(sent_.data() + at_, sent_.size() - at_),
                                [this, self = shared_from_this()](const Error& error, std::size_t size) {
                                    if (error) return close();
                                    at_ += size;
                                    counters_.bytes += size;
                                    took_ = Clock::now();
                                    if (at_ == sent_.size())
                                        send_queued();
                                    else
                                        send_rest();
                                });
    }
    void listen() {
        socket.async_read_some(asio::buffer(ignored_),
                               [this, self = shared_from_this()](const Error& error, std::size_t) {
                                   if (error) return close();
                                   listen();
                               });
    }

    OutletCounters& counters_;
    std::string name_;
    std::string sent_;  // on its way
    std::size_t at_ = 0;
    std::string queued_;
    Clock::time_point took_;
    bool is_open_ = true;
    std::array<char, 256> ignored_;
};

class TcpOutlet final : public Outlet {
  public:
    explicit TcpOutlet(OutletOptions options) : options_(std::move(options)) {}

    Status open(const SourceName& name);

    void begin(std::string_view head) override {
        head_ += head;
        for (const auto& client : clients_) client->put(head);
    }
    void put(std::string_view record) override;
    bool has_room() override;
    bool is_empty() const override {
        return std::ranges::all_of(clients_, [](const auto& client) { return client->waiting() == 0; });
    }
    void run(std::chrono::milliseconds patience) override;

  private:
    void tell(const std::string& text) const {
        if (options_.tell) options_.tell(text);
    }
    void drop(Client& client) {
        ++counters_.dropped;
        tell(concat(client.name(), " does not take what is sent, and is dropped"));
        client.close();
        std::erase_if(clients_, [&](const auto& each) { return each.get() == &client; });
    }
    void look_for_client();
    void found(const Error& error, const std::shared_ptr<Client>& client);

    OutletOptions options_;
    SourceName name_;
    EventLoop loop_;  // goes behind what uses it
    tcp::acceptor acceptor_{loop_.parts().context};
    tcp::resolver resolver_{loop_.parts().context};
    std::string head_;
    std::vector<std::shared_ptr<Client>> clients_;
    bool is_looking_ = false;
    std::string failure_;  // of the last try
    Clock::time_point retry_at_;
};

Status TcpOutlet::open(const SourceName& name) {
    name_ = name;
    if (name.kind == SourceName::Kind::tcp_listen) {
        constexpr int backlog = 16;
        if (const Error error = listen_at(acceptor_, name, backlog)) return Failure{error_text(error)};
        look_for_client();
        return done;
    }
    look_for_client();
    for (const auto until = Clock::now() + 10s; is_looking_ && Clock::now() < until;) loop_.run_one(100ms);
    if (clients_.empty()) return Failure{failure_.empty() ? "no answer" : failure_};
    return done;
}

void TcpOutlet::look_for_client() {
    is_looking_ = true;
    auto client = std::make_shared<Client>(loop_, counters_);
    if (acceptor_.is_open()) {
        acceptor_.async_accept(client->socket, [this, client](const Error& error) { found(error, client); });
        return;
    }
    resolver_.async_resolve(name_.target, std::to_string(name_.port),
                            [this, client](const Error& unknown, const tcp::resolver::results_type& places) {
                                if (unknown) return found(unknown, client);
                                asio::async_connect(client->socket, places,
                                                    [this, client](const Error& error, const tcp::endpoint&) {
                                                        found(error, client);
                                                    });
                            });
}

void TcpOutlet::found(const Error& error, const std::shared_ptr<Client>& client) {
    is_looking_ = false;
    if (error) {
        retry_at_ = Clock::now() + 1s;
        failure_ = error_text(error);
        return;
    }
    client->begin(head_);
    clients_.push_back(client);
    ++counters_.clients;
    tell(concat(client->name(), " is connected"));
}

void TcpOutlet::put(std::string_view record) {
    for (std::size_t i = clients_.size(); i-- > 0;) {
        Client& client = *clients_[i];
        if (client.waiting() + record.size() > options_.most_queued)
            drop(client);
        else
            client.put(record);
    }
}

bool TcpOutlet::has_room() {
    bool has_room = !clients_.empty();
    for (std::size_t i = clients_.size(); i-- > 0;) {
        Client& client = *clients_[i];
        if (client.waiting() <= options_.most_queued / 2) continue;
        has_room = false;
        if (Clock::now() - client.took() >= options_.patience) drop(client);
    }
    return has_room;
}

void TcpOutlet::run(std::chrono::milliseconds patience) {
    loop_.run_one(patience);
    std::erase_if(clients_, [this](const auto& client) {
        if (!client->is_open()) tell(concat(client->name(), " has closed the connection"));
        return !client->is_open();
    });
    const bool is_wanted = acceptor_.is_open() || clients_.empty();
    if (is_wanted && !is_looking_ && Clock::now() >= retry_at_) look_for_client();
}

class UdpOutlet final : public Outlet {
  public:
    explicit UdpOutlet(OutletOptions options) : options_(std::move(options)) {}

    Status open(const SourceName& name) {
        Error error;
        const auto places =
            udp::resolver(loop_.parts().context).resolve(name.target, std::to_string(name.port), error);
        if (error) return Failure{error_text(error)};
        to_ = *places.begin();
        socket_.open(to_.protocol(), error);
        if (!error) socket_.set_option(asio::socket_base::broadcast(true), error);
        if (error) return Failure{error_text(error)};
        return done;
    }

    void begin(std::string_view head) override { put(head); }
    void put(std::string_view record) override {
        constexpr std::size_t most = 1400;  // what goes through any network in one piece
        if (datagram_.size() + record.size() > most) flush();
        datagram_ += record;
    }
    void flush() override {
        if (datagram_.empty()) return;
        Error error;
        counters_.bytes += socket_.send_to(asio::buffer(datagram_), to_, 0, error);
        if (error && counters_.lost++ == 0 && options_.tell) options_.tell(error_text(error));
        datagram_.clear();
    }
    bool is_empty() const override { return datagram_.empty(); }
    void run(std::chrono::milliseconds patience) override { loop_.run_one(patience); }

  private:
    OutletOptions options_;
    EventLoop loop_;  // goes behind what uses it
    udp::socket socket_{loop_.parts().context};
    udp::endpoint to_;
    std::string datagram_;
};

template <class Network>
Result<std::unique_ptr<Outlet>> open_network(const SourceName& name, const OutletOptions& options) {
    auto outlet = std::make_unique<Network>(options);
    if (const Status opened = outlet->open(name); !opened) return opened.error();
    return std::unique_ptr<Outlet>(std::move(outlet));
}

}  // namespace

Result<std::unique_ptr<Outlet>> open_outlet(const SourceName& name, const OutletOptions& options) {
    using Kind = SourceName::Kind;
    switch (name.kind) {
        case Kind::udp:
            if (name.target.empty()) return Failure{"names no host, as in udp://192.168.4.255:2000"};
            return open_network<UdpOutlet>(name, options);
        case Kind::tcp:
        case Kind::tcp_listen: return open_network<TcpOutlet>(name, options);
        case Kind::can: {
            auto socket = open_can(name.target);
            if (!socket) return socket.error();
            return make_can_outlet(std::move(*socket), options);
        }
        default:
            return Failure{
                "nobody takes traffic there; there are: can0, udp://HOST:PORT, tcp-listen://:PORT, "
                "tcp://HOST:PORT"};
    }
}

}  // namespace vistel
