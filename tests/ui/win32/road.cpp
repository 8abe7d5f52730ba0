#include "tests/ui/road.h"

#include "tests/platform/contractLinks.h"

#include <cstdlib>
#include <string_view>

struct road::parts {
    size_t Heard = 0;
    bool Plugged = false;
};

unsigned road::Most()
{
    return std::getenv("SKY_COM") != nullptr ? 1 : 0;
}

bool road::BearsHaste()
{
    return false;
}

road::road(unsigned) : Parts(std::make_unique<parts>())
{
    Plug();
}

road::~road()
{
    Unplug();
}

std::string road::Name() const
{
    return contractPort();
}

void road::Plug()
{
    if (Parts->Plugged)
        return;
    Parts->Heard = 0;
    Parts->Plugged = contractPlug();
    EXPECT_TRUE(Parts->Plugged);
}

void road::Unplug()
{
    if (Parts->Plugged)
        contractUnplug();
    Parts->Plugged = false;
}

size_t road::Send(std::span<const uint8_t> bytes)
{
    if (!Parts->Plugged)
        return bytes.size();
    return contractLineSend({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

simBytes road::Receive()
{
    if (!Parts->Plugged)
        return {};
    const std::string all = contractLineReceived();
    simBytes fresh(all.begin() + static_cast<ptrdiff_t>(std::min(Parts->Heard, all.size())), all.end());
    Parts->Heard = all.size();
    return fresh;
}

std::optional<simLine> road::HostLine() const
{
    return std::nullopt;
}
