#include "tests/ui/road.h"

#include "platform/pty.h"

#include <gtest/gtest.h>

struct road::parts {
    std::string Name;
    ptyPort* Port = nullptr;
};

unsigned road::Most()
{
    return ptyAvailable() ? 2 : 0;
}

bool road::BearsHaste()
{
    return true;
}

road::road(unsigned number) : Parts(std::make_unique<parts>())
{
    Parts->Name = "ttyUI" + std::to_string(number);
    Plug();
}

road::~road()
{
    Unplug();
}

std::string road::Name() const
{
    return Parts->Name;
}

void road::Plug()
{
    if (Parts->Port)
        return;
    ptyFault fault = ptyFault::None;
    Parts->Port = ptyOpen(Parts->Name, fault);
    EXPECT_NE(Parts->Port, nullptr) << "fault " << static_cast<int>(fault);
}

void road::Unplug()
{
    if (Parts->Port)
        ptyClose(std::exchange(Parts->Port, nullptr));
}

size_t road::Send(std::span<const uint8_t> bytes)
{
    return Parts->Port ? ptyWrite(Parts->Port, bytes.data(), bytes.size()) : bytes.size();
}

simBytes road::Receive()
{
    uint8_t bytes[4096];
    const size_t count = Parts->Port ? ptyRead(Parts->Port, bytes, sizeof bytes) : 0;
    return {bytes, bytes + count};
}

std::optional<simLine> road::HostLine() const
{
    if (!Parts->Port)
        return std::nullopt;
    const ptySetting setting = ptyHostSetting(Parts->Port);
    return simLine{setting.BaudRate, setting.Odd ? 'O' : 'N', setting.StopBits};
}
