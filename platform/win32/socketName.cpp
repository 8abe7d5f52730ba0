#include "platform/win32/socketName.h"

#include "platform/socketService.h"
#include "platform/win32/socketTable.h"
#include "platform/win32/text.h"

#include <cstring>

namespace {

int familyOf(socketFamily family)
{
    switch (family) {
    case socketFamily::IPv4:
        return AF_INET;
    case socketFamily::IPv6:
        return AF_INET6;
    default:
        return -1;
    }
}

}  // namespace

bool socketFromSystem(const sockaddr_storage& system, socketAddress& address)
{
    address = {};
    if (system.ss_family == AF_INET) {
        sockaddr_in v4 = {};
        std::memcpy(&v4, &system, sizeof(v4));
        address.Port = ntohs(v4.sin_port);
        std::memcpy(address.Host, &v4.sin_addr, sizeof(v4.sin_addr));
        return true;
    }
    if (system.ss_family == AF_INET6) {
        sockaddr_in6 v6 = {};
        std::memcpy(&v6, &system, sizeof(v6));
        address.Family = socketFamily::IPv6;
        address.Port = ntohs(v6.sin6_port);
        std::memcpy(address.Host, &v6.sin6_addr, sizeof(v6.sin6_addr));
        address.Scope = v6.sin6_scope_id;
        return true;
    }
    address.Family = socketFamily::Other;
    return false;
}

int socketToSystem(const socketAddress& address, sockaddr_storage& system)
{
    system = {};
    if (address.Family == socketFamily::IPv4) {
        sockaddr_in v4 = {};
        v4.sin_family = AF_INET;
        v4.sin_port = htons(address.Port);
        std::memcpy(&v4.sin_addr, address.Host, sizeof(v4.sin_addr));
        std::memcpy(&system, &v4, sizeof(v4));
        return sizeof(v4);
    }
    if (address.Family == socketFamily::IPv6) {
        sockaddr_in6 v6 = {};
        v6.sin6_family = AF_INET6;
        v6.sin6_port = htons(address.Port);
        std::memcpy(&v6.sin6_addr, address.Host, sizeof(v6.sin6_addr));
        v6.sin6_scope_id = address.Scope;
        std::memcpy(&system, &v6, sizeof(v6));
        return sizeof(v6);
    }
    return 0;
}

bool socketResolve(const std::string& host, const std::string& service, socketFamily family,
                   socketAddress& address)
{
    ADDRINFOW wanted = {};
    wanted.ai_family = familyOf(family);
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_protocol = IPPROTO_TCP;
    const std::optional<std::u16string> wideHost = textTo16(host);
    const std::optional<std::u16string> wideService = textTo16(service);
    if (host.empty() || !wideHost || !wideService || socketIsNoPort(service) || wanted.ai_family < 0)
        return socketFailed(WSAEINVAL);
    ADDRINFOW* found = nullptr;
    const int answer = GetAddrInfoW(textUnits(*wideHost), service.empty() ? nullptr : textUnits(*wideService),
                                    &wanted, &found);
    if (answer != 0)
        return socketFailed(answer);
    sockaddr_storage system = {};
    std::memcpy(&system, found->ai_addr, found->ai_addrlen);
    FreeAddrInfoW(found);
    return socketFromSystem(system, address) || socketFailed(WSAEAFNOSUPPORT);
}

socketFault socketFaultOf(uint32_t code)
{
    struct faultRow {
        uint32_t Code;
        socketFault Fault;
    };
    constexpr faultRow Faults[] = {
        {0, socketFault::None},
        {WSAEWOULDBLOCK, socketFault::WouldBlock},
        {WSAESHUTDOWN, socketFault::Shutdown},
        {WSAENOTSOCK, socketFault::Lost},
        {WSAENETDOWN, socketFault::Lost},
        {WSAENETRESET, socketFault::Lost},
        {WSAECONNABORTED, socketFault::Lost},
        {WSAECONNRESET, socketFault::Lost},
        {WSAENOTCONN, socketFault::Lost},
        {WSAETIMEDOUT, socketFault::Lost},
        {WSAEHOSTUNREACH, socketFault::Lost},
    };
    for (const faultRow& row : Faults) {
        if (row.Code == code)
            return row.Fault;
    }
    return socketFault::Other;
}
