#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace vistel {

/// Devices that want to be asked before they give everything.
enum class GatewayKind : std::uint8_t {
    none,        ///< nothing is sent
    recognised,  ///< by what it sends: an NGT-1 or iKonvert is asked, others send by themselves
    ngt1,        ///< Actisense NGT-1 and NGX-1
    ikonvert,
    slcan,
    ydnu,  ///< Yacht Devices YDNU-02
};

/// "none, ngt1, ..."
std::string gateway_names();
[[nodiscard]] bool find_gateway(std::string_view name, GatewayKind& kind);

/// Of its serial port, in bits a second.
unsigned usual_speed(GatewayKind kind);

/// Speaks with a gateway: asks for what it would hold back, and looks at what comes for the answers. The same
/// for every connection to it, which `connected` begins.
class Gateway {
  public:
    using Time = std::chrono::steady_clock::time_point;

    /// The way to the device and to the user.
    class Side {
      public:
        virtual void send(std::string_view bytes) = 0;
        virtual void tell(const std::string& text) = 0;
        /// Whether frames are going to be sent, so that the device must not only listen.
        virtual bool wants_to_send() const = 0;

      protected:
        ~Side() = default;
    };

    virtual ~Gateway() = default;

    virtual void connected(Time now) = 0;
    /// Whether these bytes bring traffic of the bus, not only answers of the gateway.
    virtual bool received(std::string_view bytes, Time now) = 0;
    /// To be called several times a second.
    virtual void elapsed(Time now) = 0;
    /// What is known of a gateway that brings no traffic; empty if nothing is.
    virtual std::string_view state() const = 0;
    /// Sent before it is left.
    virtual std::string_view farewell() const { return {}; }
};

std::unique_ptr<Gateway> make_gateway(GatewayKind kind, Gateway::Side& side);

}  // namespace vistel
