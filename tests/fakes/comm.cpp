#include "platform/comm.h"

#include "tests/fakes/core.h"
#include "tests/fakes/ports.h"

#include <algorithm>
#include <cstring>

namespace {

using fakes::ports;
using fakes::portState;

// Null for a handle that is closed or whose port has gone. Under the mutex.
portState* portOf(commHandle handle)
{
    const auto found = ports().Handles.find(handle);
    if (found == ports().Handles.end())
        return nullptr;
    portState& port = ports().Ports[found->second.Name];
    return port.There && port.Plugged == found->second.Plugged ? &port : nullptr;
}

// How the record calls what was opened.
std::string nameOf(commHandle handle)
{
    const std::lock_guard lock(fakes::stateMutex());
    const auto found = ports().Handles.find(handle);
    return found == ports().Handles.end() ? "closed" : found->second.Name;
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
        ports().Changed.wait(lock);
        port = portOf(handle);
    }
    if (port == nullptr)
        return false;
    port->Sent.append(static_cast<const char*>(data), count);
    done = count;
    return true;
}

}  // namespace

fakes::portsState& fakes::ports()
{
    static portsState& only = *new portsState;
    return only;
}

void fakes::resetComm()
{
    ports().Ports.clear();
    ports().Handles.clear();
    ports().Devices = {};
    ports().Prefix = FirstPrefix;
    ports().Changed.notify_all();
}

commHandle commOpen(std::string_view name)
{
    const bool scripted = fakes::enter("commOpen", std::string(name)).Scripted;
    const std::lock_guard lock(fakes::stateMutex());
    const auto found = ports().Ports.find(std::string(name));
    if (scripted || !isName(name) || found == ports().Ports.end())
        return commNone;
    portState& port = found->second;
    if (!port.There || port.Taken)
        return commNone;
    port.Taken = true;
    port.Arrived.clear();
    ports().Handles[++ports().Last] = {found->first, port.Plugged};
    return ports().Last;
}

void commClose(commHandle handle)
{
    fakes::enter("commClose", nameOf(handle));
    const std::lock_guard lock(fakes::stateMutex());
    if (portState* const port = portOf(handle)) {
        port->Arrived.clear();
        port->Taken = false;
    }
    ports().Handles.erase(handle);
    ports().Changed.notify_all();
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
    return ports().Devices[deviceClass];
}

std::string_view commNamePrefix()
{
    // The text outlives the reset that changes the prefix.
    static std::map<std::string, bool>& known = *new std::map<std::string, bool>;
    const std::lock_guard lock(fakes::stateMutex());
    return known.try_emplace(ports().Prefix).first->first;
}
