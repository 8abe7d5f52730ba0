// Where a connection leads, as people write it.
#include "link/netTCPCli.h"

namespace {

bool isInternet(socketFamily family)
{
    return family == socketFamily::IPv4 || family == socketFamily::IPv6;
}

}  // namespace

bool netTCPCli::SetAddress(const std::string& text)
{
    if (text.empty()) {
        SetAddress(socketAddress());
        return true;
    }
    const size_t colon = text.find(':');
    const bool hasService = colon != std::string::npos;
    const std::string service = hasService ? text.substr(colon + 1) : std::string();
    socketAddress found;
    if (!socketResolve(text.substr(0, colon), service, socketFamily::IPv4, found))
        return false;
    const socketAddress former = GetAddress();
    if (!hasService && isInternet(former.Family) && isInternet(found.Family))
        found.Port = former.Port;
    SetAddress(found);
    return true;
}

void netTCPCli::SetAddress(const socketAddress& address)
{
    const thrSpinHold hold(AddressLock);
    Address = address;
}

socketAddress netTCPCli::GetAddress() const
{
    const thrSpinHold hold(AddressLock);
    return Address;
}
