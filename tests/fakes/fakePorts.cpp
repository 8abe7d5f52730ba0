// What a test does to the serial ports.
#include "tests/fakes/fakeLinks.h"

#include "tests/fakes/core.h"
#include "tests/fakes/ports.h"

using fakes::ports;

void fakePort(const std::string& name)
{
    const std::lock_guard lock(fakes::stateMutex());
    fakes::portState& port = ports().Ports[name];
    if (port.There)
        return;
    port.There = true;
    ++port.Plugged;
}

void fakePortGone(const std::string& name)
{
    const std::lock_guard lock(fakes::stateMutex());
    fakes::portState& port = ports().Ports[name];
    port.There = false;
    port.Taken = false;
    port.Arrived.clear();
    ports().Changed.notify_all();
}

unsigned fakePortHandles()
{
    const std::lock_guard lock(fakes::stateMutex());
    return static_cast<unsigned>(ports().Handles.size());
}

void fakePortReceive(const std::string& name, const std::string& bytes)
{
    const std::lock_guard lock(fakes::stateMutex());
    ports().Ports[name].Arrived += bytes;
}

std::string fakePortSent(const std::string& name)
{
    const std::lock_guard lock(fakes::stateMutex());
    return ports().Ports[name].Sent;
}

commControl fakePortSettings(const std::string& name)
{
    const std::lock_guard lock(fakes::stateMutex());
    return ports().Ports[name].Settings;
}

void fakePortControl(const std::string& name, const commControl& control)
{
    const std::lock_guard lock(fakes::stateMutex());
    ports().Ports[name].Start = control;
    ports().Ports[name].Settings = control;
}

void fakePortQueues(const std::string& name, const commQueue& limits)
{
    const std::lock_guard lock(fakes::stateMutex());
    ports().Ports[name].Limits = limits;
}

void fakePortModem(const std::string& name, uint32_t status)
{
    const std::lock_guard lock(fakes::stateMutex());
    ports().Ports[name].Modem = status;
}

void fakePortBlockWrites(const std::string& name, bool blocked)
{
    const std::lock_guard lock(fakes::stateMutex());
    ports().Ports[name].Blocked = blocked;
    ports().Changed.notify_all();
}

void fakePortUnsent(const std::string& name, uint32_t bytes)
{
    const std::lock_guard lock(fakes::stateMutex());
    ports().Ports[name].Unsent = bytes;
}

void fakeDevices(unsigned deviceClass, const std::vector<commDevice>& devices)
{
    if (deviceClass >= commClasses)
        fakes::misuse("there is no such class of devices");
    const std::lock_guard lock(fakes::stateMutex());
    ports().Devices[deviceClass] = devices;
}

void fakeNamePrefix(const std::string& prefix)
{
    const std::lock_guard lock(fakes::stateMutex());
    ports().Prefix = prefix;
}
