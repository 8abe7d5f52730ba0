// Serial ports can be made here by a driver alone.
#include "platform/pty.h"

struct ptyPort {
};

bool ptyAvailable()
{
    return false;
}

ptyPort* ptyOpen(std::string_view, ptyFault& fault)
{
    fault = ptyFault::Unavailable;
    return nullptr;
}

void ptyClose(ptyPort*) {}

size_t ptyRead(ptyPort*, void*, size_t)
{
    return 0;
}

size_t ptyWrite(ptyPort*, const void*, size_t)
{
    return 0;
}

ptySetting ptyHostSetting(ptyPort*)
{
    return {};
}
