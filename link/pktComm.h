// Messages over a TCP connection: the wire between two copies of the program, of which one has the receiver.
//
// Every message is a head, `key` and `length`, both little-endian, and a body of `length` bytes. Connections
// greet each other with a text; then raw bytes of the receiver travel both ways in stream messages.
#pragma once

#include "foundations/thread/thrSpin.h"
#include "link/netTCPCli.h"
#include "link/pktBuffer.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace pktKey {

constexpr uint32_t Handshake = 0xFFFF0001;    // the body is the sender's identity, a text
constexpr uint32_t GNSS = 0x53534E47;         // "GNSS": a subkey, then what it says
constexpr uint32_t NoOperation = 0x504F4F4E;  // "NOOP": sent back as it stands
constexpr uint32_t Stream = 0x4D525453;       // the subkey "STRM": raw bytes of the receiver follow

}  // namespace pktKey

constexpr std::string_view pktIdentityClient = "Skyreckoning Client v20240612";
constexpr std::string_view pktIdentityServer = "Skyreckoning Server v20240612";

// The default port of a server.
constexpr uint16_t pktPort = 4003;

// The receiver's bytes in a message; nothing if it is none of a stream.
std::optional<std::span<const uint8_t>> pktStreamOf(const msgHead& message);

// Whether a greeting is a server's, of this version or of one that only says more.
bool pktIsServer(const msgHead& message);

// One end of a connection. A message longer than pktBuffer::LengthLimit ends it. Sending may come from any
// thread; the events run on the connection's thread.
class pktComm
{
public:
    // `client` may be null; see Stream.
    pktComm(netTCPCli* client, std::string_view identity);
    pktComm(const pktComm&) = delete;
    pktComm& operator=(const pktComm&) = delete;

    // Uses this connection, which is not owned, and takes its OnEvent. Null only detaches: the connection
    // must have been stopped before, since its events still come here.
    void Stream(netTCPCli* client);

    // Sends a head and the body that stands behind it.
    void Send(const msgHead* message);

    // Sends a message of which the last `size` bytes stand at `data`. More than the head's length is a fatal
    // fault of the program.
    void Send(const msgHead* message, const uint8_t* data, size_t size);

    // Sends raw bytes of the receiver.
    void SendStream(const uint8_t* data, size_t size);

    // Events of the connection but the arrival of data. The handler may delete this object. May be empty.
    std::function<void(const uint32_t& event)> OnEvent;

    // A whole message; valid during the call. May be empty.
    std::function<void(const msgHead& message)> OnMessage;

private:
    void Client_OnEvent(const uint32_t& event);
    void Greet();
    void TakeData();
    void Deliver();

    pktBuffer Buffer;  // the message being received; the connection's thread alone
    thrSpin Lock;      // guards Client and orders senders
    std::string Identity;
    netTCPCli* Client = nullptr;
};
