// The name service of the fake platform.
#include "platform/socket.h"
#include "tests/fakes/socketCall.h"

#include <charconv>
#include <optional>

namespace {

// A number that fills the text.
std::optional<unsigned> numberIn(std::string_view text, unsigned highest)
{
    unsigned value = 0;
    const char* const last = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), last, value);
    if (text.empty() || error != std::errc() || stop != last || value > highest)
        return std::nullopt;
    return value;
}

// Four numbers with points between them.
std::optional<socketAddress> numericHost(std::string_view host)
{
    socketAddress address;
    for (size_t part = 0; part < 4; ++part) {
        const size_t point = part < 3 ? host.find('.') : host.size();
        if (point == std::string_view::npos)
            return std::nullopt;
        const std::optional<unsigned> number = numberIn(host.substr(0, point), 255);
        if (!number)
            return std::nullopt;
        address.Host[part] = static_cast<uint8_t>(*number);
        host.remove_prefix(part < 3 ? point + 1 : point);
    }
    return address;
}

std::optional<socketAddress> hostNamed(const std::string& host)
{
    const auto found = fakes::network().Hosts.find(host);
    if (found != fakes::network().Hosts.end())
        return found->second;
    return host == "localhost" ? fakes::networkLoopback(0) : numericHost(host);
}

std::optional<unsigned> portNamed(const std::string& service)
{
    return service == "http" ? 80 : numberIn(service, 65535);
}

}  // namespace

bool socketResolve(const std::string& host, const std::string& service, socketFamily family,
                   socketAddress& address)
{
    const fakes::socketCall call("socketResolve", service.empty() ? host : host + ' ' + service);
    if (!call)
        return false;
    if (fakes::network().Starts == 0)
        return call.Fail(fakes::CodeNotStarted);
    const std::optional<socketAddress> found = hostNamed(host);
    if (!found || found->Family != family)
        return call.Fail(fakes::CodeNoHost);
    const std::optional<unsigned> port = service.empty() ? 0u : portNamed(service);
    if (!port)
        return call.Fail(fakes::CodeNoHost);
    address = *found;
    address.Port = static_cast<uint16_t>(*port);
    return true;
}
