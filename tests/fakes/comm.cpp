#include "platform/comm.h"

#include "tests/fakes/core.h"
#include "tests/fakes/fakeLinks.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <cstring>
#include <map>
#include <memory>

namespace {

constexpr char FirstPrefix[] = "COM";

struct portState {
    bool There = false;
    bool Taken = false;
    unsigned Plugged = 0;  // how often; a handle is good for one time
    std::string Arrived;
    std::string Sent;
    commControl Start;
    commControl Settings;
    commQueue Limits;
    uint32_t Modem = 0;
    uint32_t Unsent = 0;
    bool Blocked = false;
};

struct portHandle {
    std::string Name;
    unsigned Plugged;
};

struct commState {
    std::map<std::string, portState> Ports;
    std::map<commHandle, portHandle> Handles;
    commHandle Last = 0;
    std::array<std::vector<commDevice>, commClasses> Devices;
    std::string Prefix = FirstPrefix;
    std::condition_variable Changed;
};

commState& state()
{
    static commState& only = *new commState;
    return only;
}

// Null for a handle that is closed or whose port has gone. Under the mutex.
portState* portOf(commHandle handle)
{
    const auto found = state().Handles.find(handle);
    if (found == state().Handles.end())
        return nullptr;
    portState& port = state().Ports[found->second.Name];
    return port.There && port.Plugged == found->second.Plugged ? &port : nullptr;
}

// How the record calls what was opened.
std::string nameOf(commHandle handle)
{
    const std::lock_guard lock(fakes::stateMutex());
    const auto found = state().Handles.find(handle);
    return found == state().Handles.end() ? "closed" : found->second.Name;
}

std::string withNumbers(const std::string& name, std::initializer_list<uint64_t> numbers)
{
    std::string text = name;
    for (const uint64_t number : numbers)
        text += ' ' + std::to_string(number);
    return text;
}

std::string hexadecimal(uint32_t value)
{
    std::string digits;
    do {
        digits.insert(digits.begin(), "0123456789abcdef"[value % 16]);
        value /= 16;
    } while (value != 0);
    return "0x" + digits;
}

bool canBe(const commControl& control)
{
    return control.BaudRate > 0 && control.DataBits >= 5 && control.DataBits <= 8 && control.Parity <= 4 &&
           control.StopBits <= 2;
}

bool isName(std::string_view name)
{
    return !name.empty() && name.find_first_of("/\\") == std::string_view::npos;
}

// Waits while the line is dead, then takes the bytes.
bool take(commHandle handle, const void* data, uint32_t count, uint32_t& done)
{
    std::unique_lock lock(fakes::stateMutex());
    portState* port = portOf(handle);
    while (port != nullptr && port->Blocked) {
        state().Changed.wait(lock);
        port = portOf(handle);
    }
    if (port == nullptr)
        return false;
    port->Sent.append(static_cast<const char*>(data), count);
    done = count;
    return true;
}

}  // namespace

void fakes::resetComm()
{
    state().Ports.clear();
    state().Handles.clear();
    state().Devices = {};
    state().Prefix = FirstPrefix;
    state().Changed.notify_all();
}

commHandle commOpen(std::string_view name)
{
    const bool scripted = fakes::enter("commOpen", std::string(name)).Scripted;
    const std::lock_guard lock(fakes::stateMutex());
    const auto found = state().Ports.find(std::string(name));
    if (scripted || !isName(name) || found == state().Ports.end())
        return commNone;
    portState& port = found->second;
    if (!port.There || port.Taken)
        return commNone;
    port.Taken = true;
    state().Handles[++state().Last] = {found->first, port.Plugged};
    return state().Last;
}

void commClose(commHandle handle)
{
    fakes::enter("commClose", nameOf(handle));
    const std::lock_guard lock(fakes::stateMutex());
    if (portState* const port = portOf(handle)) {
        port->Arrived.clear();
        port->Taken = false;
    }
    state().Handles.erase(handle);
    state().Changed.notify_all();
}

bool commDefault(commHandle handle, commControl& control)
{
    const bool scripted = fakes::enter("commDefault", nameOf(handle)).Scripted;
    const std::lock_guard lock(fakes::stateMutex());
    const portState* const port = portOf(handle);
    if (scripted || port == nullptr)
        return false;
    control = port->Start;
    return true;
}

bool commGetControl(commHandle handle, commControl& control)
{
    const bool scripted = fakes::enter("commGetControl", nameOf(handle)).Scripted;
    const std::lock_guard lock(fakes::stateMutex());
    const portState* const port = portOf(handle);
    if (scripted || port == nullptr)
        return false;
    control = port->Settings;
    return true;
}

bool commSetControl(commHandle handle, const commControl& control)
{
    const std::string settings =
        withNumbers(nameOf(handle), {control.BaudRate, control.DataBits, control.Parity, control.StopBits});
    const bool scripted =
        fakes::enter("commSetControl", settings + ' ' + hexadecimal(control.Flags)).Scripted;
    const std::lock_guard lock(fakes::stateMutex());
    portState* const port = portOf(handle);
    if (scripted || port == nullptr || !canBe(control))
        return false;
    port->Settings = control;
    return true;
}

bool commQueueLimits(commHandle handle, commQueue& limits)
{
    const bool scripted = fakes::enter("commQueueLimits", nameOf(handle)).Scripted;
    const std::lock_guard lock(fakes::stateMutex());
    const portState* const port = portOf(handle);
    if (scripted || port == nullptr)
        return false;
    limits = port->Limits;
    return true;
}

void commSetQueues(commHandle handle, const commQueue& sizes)
{
    fakes::enter("commSetQueues", withNumbers(nameOf(handle), {sizes.Receive, sizes.Transmit}));
}

void commSetEvents(commHandle handle, uint32_t mask)
{
    fakes::enter("commSetEvents", withNumbers(nameOf(handle), {mask}));
}

bool commPending(commHandle handle, commLevel& level)
{
    const bool scripted = fakes::ask("commPending").Scripted;
    const std::lock_guard lock(fakes::stateMutex());
    const portState* const port = portOf(handle);
    if (scripted || port == nullptr)
        return false;
    level = {static_cast<uint32_t>(port->Arrived.size()), port->Unsent};
    return true;
}

bool commRead(commHandle handle, void* buffer, uint32_t count, uint32_t& done)
{
    done = 0;
    const bool scripted = fakes::enter("commRead", withNumbers(nameOf(handle), {count})).Scripted;
    const std::lock_guard lock(fakes::stateMutex());
    portState* const port = portOf(handle);
    if (scripted || port == nullptr)
        return false;
    done = static_cast<uint32_t>(std::min<size_t>(count, port->Arrived.size()));
    std::memcpy(buffer, port->Arrived.data(), done);
    port->Arrived.erase(0, done);
    return true;
}

bool commWrite(commHandle handle, const void* data, uint32_t count, uint32_t& done)
{
    done = 0;
    const bool scripted = fakes::enter("commWrite", withNumbers(nameOf(handle), {count})).Scripted;
    return !scripted && take(handle, data, count, done);
}

bool commModemStatus(commHandle handle, uint32_t& status)
{
    const bool scripted = fakes::ask("commModemStatus").Scripted;
    const std::lock_guard lock(fakes::stateMutex());
    const portState* const port = portOf(handle);
    if (scripted || port == nullptr)
        return false;
    status = port->Modem;
    return true;
}

std::vector<commDevice> commDevices(unsigned deviceClass)
{
    const bool scripted = fakes::enter("commDevices", std::to_string(deviceClass)).Scripted;
    const std::lock_guard lock(fakes::stateMutex());
    if (scripted || deviceClass >= commClasses)
        return {};
    return state().Devices[deviceClass];
}

std::string_view commNamePrefix()
{
    // The text outlives the reset that changes the prefix.
    static std::map<std::string, bool>& known = *new std::map<std::string, bool>;
    const std::lock_guard lock(fakes::stateMutex());
    return known.try_emplace(state().Prefix).first->first;
}

void fakePort(const std::string& name)
{
    const std::lock_guard lock(fakes::stateMutex());
    portState& port = state().Ports[name];
    if (port.There)
        return;
    port.There = true;
    ++port.Plugged;
}

void fakePortGone(const std::string& name)
{
    const std::lock_guard lock(fakes::stateMutex());
    portState& port = state().Ports[name];
    port.There = false;
    port.Taken = false;
    port.Arrived.clear();
    state().Changed.notify_all();
}

unsigned fakePortHandles()
{
    const std::lock_guard lock(fakes::stateMutex());
    return static_cast<unsigned>(state().Handles.size());
}

void fakePortReceive(const std::string& name, const std::string& bytes)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().Ports[name].Arrived += bytes;
}

std::string fakePortSent(const std::string& name)
{
    const std::lock_guard lock(fakes::stateMutex());
    return state().Ports[name].Sent;
}

commControl fakePortSettings(const std::string& name)
{
    const std::lock_guard lock(fakes::stateMutex());
    return state().Ports[name].Settings;
}

void fakePortControl(const std::string& name, const commControl& control)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().Ports[name].Start = control;
    state().Ports[name].Settings = control;
}

void fakePortQueues(const std::string& name, const commQueue& limits)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().Ports[name].Limits = limits;
}

void fakePortModem(const std::string& name, uint32_t status)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().Ports[name].Modem = status;
}

void fakePortBlockWrites(const std::string& name, bool blocked)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().Ports[name].Blocked = blocked;
    state().Changed.notify_all();
}

void fakePortUnsent(const std::string& name, uint32_t bytes)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().Ports[name].Unsent = bytes;
}

void fakeDevices(unsigned deviceClass, const std::vector<commDevice>& devices)
{
    if (deviceClass >= commClasses)
        fakes::misuse("there is no such class of devices");
    const std::lock_guard lock(fakes::stateMutex());
    state().Devices[deviceClass] = devices;
}

void fakeNamePrefix(const std::string& prefix)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().Prefix = prefix;
}
