// The far end of the fake's serial ports.
#include "platform/pty.h"

#include "tests/fakes/core.h"
#include "tests/fakes/fakeLinks.h"

#include <algorithm>
#include <memory>
#include <set>

struct ptyPort {
    std::string Name;
    size_t Taken = 0;  // of what the host has sent
};

namespace {

constexpr uint8_t OddParity = 1;

// The names of all that are open.
std::set<std::string>& names()
{
    static std::set<std::string>& only = *new std::set<std::string>;
    return only;
}

bool take(const std::string& name)
{
    const std::lock_guard lock(fakes::stateMutex());
    return names().insert(name).second;
}

void giveBack(const std::string& name)
{
    const std::lock_guard lock(fakes::stateMutex());
    names().erase(name);
}

}  // namespace

bool ptyAvailable()
{
    return true;
}

ptyPort* ptyOpen(std::string_view name, ptyFault& fault)
{
    const std::string known(name);
    const bool scripted = fakes::enter("ptyOpen", known).Scripted;
    if (!name.starts_with("tty") || name.find_first_of("/\\") != std::string_view::npos)
        fault = ptyFault::Name;
    else if (scripted)
        fault = ptyFault::System;
    else
        fault = take(known) ? ptyFault::None : ptyFault::Taken;
    if (fault != ptyFault::None)
        return nullptr;
    auto port = std::make_unique<ptyPort>();
    port->Name = known;
    fakePort(known);
    port->Taken = fakePortSent(known).size();
    return port.release();
}

void ptyClose(ptyPort* port)
{
    const std::unique_ptr<ptyPort> owned(port);
    if (!owned)
        return;
    fakes::enter("ptyClose", owned->Name);
    fakePortGone(owned->Name);
    giveBack(owned->Name);
}

size_t ptyRead(ptyPort* port, void* buffer, size_t count)
{
    fakes::ask("ptyRead");
    const std::string sent = fakePortSent(port->Name);
    const size_t there = std::min(count, sent.size() - std::min(sent.size(), port->Taken));
    std::copy_n(sent.begin() + static_cast<ptrdiff_t>(port->Taken), there, static_cast<char*>(buffer));
    port->Taken += there;
    return there;
}

size_t ptyWrite(ptyPort* port, const void* data, size_t count)
{
    if (fakes::ask("ptyWrite").Scripted)
        return 0;
    fakePortReceive(port->Name, std::string(static_cast<const char*>(data), count));
    return count;
}

ptySetting ptyHostSetting(ptyPort* port)
{
    const commControl control = fakePortSettings(port->Name);
    return {control.BaudRate, control.Parity == OddParity,
            static_cast<uint8_t>(control.StopBits == 0 ? 1 : 2)};
}
