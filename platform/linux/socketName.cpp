#include "platform/linux/socketName.h"

#include "platform/linux/socketTable.h"
#include "platform/socketService.h"

#include <cerrno>
#include <cstring>

#include <netdb.h>
#include <netinet/in.h>

namespace {

int FamilyOf(socketFamily family)
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

// The name service has numbers of its own, for which the system's text of an error has no words.
int ErrorOf(int answer)
{
    switch (answer) {
    case EAI_SYSTEM:
        return errno;
    case EAI_MEMORY:
        return ENOMEM;
    case EAI_AGAIN:
        return EHOSTUNREACH;
    case EAI_FAMILY:
        return EAFNOSUPPORT;
    default:
        return ENXIO;
    }
}

bool IsText(const std::string& text)
{
    return text.find('\0') == std::string::npos;
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

socklen_t socketToSystem(const socketAddress& address, sockaddr_storage& system)
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
    addrinfo wanted = {};
    wanted.ai_family = FamilyOf(family);
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_protocol = IPPROTO_TCP;
    if (host.empty() || !IsText(host) || !IsText(service) || socketIsNoPort(service) || wanted.ai_family < 0)
        return socketFailed(EINVAL);
    addrinfo* found = nullptr;
    const int answer =
        getaddrinfo(host.c_str(), service.empty() ? nullptr : service.c_str(), &wanted, &found);
    if (answer != 0)
        return socketFailed(ErrorOf(answer));
    sockaddr_storage system = {};
    std::memcpy(&system, found->ai_addr, found->ai_addrlen);
    freeaddrinfo(found);
    return socketFromSystem(system, address) || socketFailed(EAFNOSUPPORT);
}

socketFault socketFaultOf(uint32_t code)
{
    struct faultRow {
        int Error;
        socketFault Fault;
    };
    constexpr faultRow Faults[] = {
        {0, socketFault::None},
        {EAGAIN, socketFault::WouldBlock},
        {EWOULDBLOCK, socketFault::WouldBlock},
        {EPIPE, socketFault::Shutdown},
        {EBADF, socketFault::Lost},
        {ENOTSOCK, socketFault::Lost},
        {ENETDOWN, socketFault::Lost},
        {ENETRESET, socketFault::Lost},
        {ECONNABORTED, socketFault::Lost},
        {ECONNRESET, socketFault::Lost},
        {ENOTCONN, socketFault::Lost},
        {ETIMEDOUT, socketFault::Lost},
        {EHOSTUNREACH, socketFault::Lost},
    };
    for (const faultRow& row : Faults) {
        if (code == static_cast<uint32_t>(row.Error))
            return row.Fault;
    }
    return socketFault::Other;
}
