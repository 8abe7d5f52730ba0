#include "tests/platform/contractLinks.h"

#include "tests/fakes/fakeLinks.h"
#include "tests/fakes/fakes.h"

namespace {

constexpr char Port[] = "COM5";

}  // namespace

bool contractPlug()
{
    fakePort(Port);
    return true;
}

void contractUnplug()
{
    fakePortGone(Port);
}

std::string contractPort()
{
    return Port;
}

size_t contractLineSend(std::string_view bytes)
{
    fakePortReceive(Port, std::string(bytes));
    return bytes.size();
}

std::string contractLineReceived()
{
    return fakePortSent(Port);
}

void contractLineDies()
{
    fakePortBlockWrites(Port, true);
}

bool contractPortIsExclusive()
{
    return true;
}

bool contractPortTakesAnyRate()
{
    return true;
}

bool contractResetIsAnEnd()
{
    return false;
}

void contractHoldTime()
{
    fakeSleepMovesClock(false);
}

struct contractSilentHost::parts {
};

contractSilentHost::contractSilentHost() : Address{socketFamily::IPv4, 4711, {10, 0, 0, 1}, 0}
{
    fakeBlockConnects(true);
}

contractSilentHost::~contractSilentHost()
{
    fakeBlockConnects(false);
}
