#include "tools/simulator/simUbxKeys.h"

#include "tools/simulator/simUbxMessages.h"

#include <algorithm>

using namespace simUbxKey;

namespace {

struct systemKeyRow {
    simSystem System;
    uint32_t Key;
};

constexpr systemKeyRow SystemKeys[] = {
    {simSystem::GPS, GpsOn},         {simSystem::SBAS, SbasOn},   {simSystem::Galileo, GalileoOn},
    {simSystem::BeiDou, BeiDouOn},   {simSystem::IMES, ImesOn},   {simSystem::QZSS, QzssOn},
    {simSystem::GLONASS, GlonassOn}, {simSystem::NavIC, NavicOn},
};

struct signalKeyRow {
    simSystem System;
    uint8_t Signal;
    uint32_t Key;
};

constexpr signalKeyRow SignalKeys[] = {
    {simSystem::GPS, 0, GpsL1CA},    {simSystem::GPS, 3, GpsL2C},    {simSystem::GPS, 6, GpsL5},
    {simSystem::SBAS, 0, SbasL1CA},  {simSystem::Galileo, 0, GalE1}, {simSystem::Galileo, 3, GalE5a},
    {simSystem::Galileo, 5, GalE5b}, {simSystem::BeiDou, 0, BdsB1I}, {simSystem::BeiDou, 2, BdsB2I},
    {simSystem::BeiDou, 5, BdsB1C},  {simSystem::BeiDou, 7, BdsB2a}, {simSystem::QZSS, 0, QzssL1CA},
    {simSystem::QZSS, 1, QzssL1S},   {simSystem::QZSS, 5, QzssL2C},  {simSystem::QZSS, 8, QzssL5},
    {simSystem::GLONASS, 0, GloL1},  {simSystem::GLONASS, 2, GloL2}, {simSystem::NavIC, 0, NavicL5},
};

// Signals that are off from the factory although the receiver knows them.
constexpr uint32_t OffAtFirst[] = {QzssL1S, BdsB1I};

constexpr uint32_t GroupOf(uint32_t key)
{
    return key >> 16 & 0xFF;
}

}  // namespace

unsigned simUbxKeySize(uint32_t key)
{
    constexpr unsigned Sizes[] = {0, 1, 1, 2, 4, 8, 0, 0};
    return Sizes[key >> 28 & 7];
}

uint32_t simUbxSystemKey(simSystem system)
{
    return std::ranges::find(SystemKeys, system, &systemKeyRow::System)->Key;
}

std::optional<uint32_t> simUbxSignalKey(simSystem system, uint8_t signal)
{
    for (const signalKeyRow& row : SignalKeys) {
        if (row.System == system && row.Signal == signal)
            return row.Key;
    }
    return std::nullopt;
}

simUbxKeys::simUbxKeys(const simUbxModel& model, const simOptions& options)
{
    AddPorts(options);
    AddPulse();
    AddMessages(model);
    AddSignals(model);
    const unsigned rate = std::clamp(options.Rate, 1u, 25u);
    Defaults[RateMeas] = (1000 + rate / 2) / rate;
    Defaults[RateNav] = 1;
    Defaults[RateTimeRef] = 1;
    Reload();
}

uint64_t simUbxKeys::operator[](uint32_t key) const
{
    const auto found = Ram.find(key);
    return found == Ram.end() ? 0 : found->second;
}

std::optional<uint64_t> simUbxKeys::Get(simUbxLayer layer, uint32_t key) const
{
    const std::map<uint32_t, uint64_t>* const layers[] = {&Ram, &Battery, &Flash, &Defaults};
    const std::map<uint32_t, uint64_t>& asked = *layers[static_cast<size_t>(layer)];
    const auto found = asked.find(key);
    return found == asked.end() ? std::optional<uint64_t>() : found->second;
}

void simUbxKeys::Set(uint32_t key, uint64_t value)
{
    const auto found = Ram.find(key);
    if (found != Ram.end())
        found->second = value;
}

void simUbxKeys::Save(simUbxLayer layer, uint32_t key, uint64_t value)
{
    if (Known(key))
        (layer == simUbxLayer::Flash ? Flash : Battery)[key] = value;
}

void simUbxKeys::SaveAll()
{
    Battery = Ram;
}

void simUbxKeys::Forget()
{
    Battery.clear();
    Flash.clear();
}

void simUbxKeys::Reload()
{
    Ram = Defaults;
    for (const auto& [key, value] : Flash)
        Ram[key] = value;
    for (const auto& [key, value] : Battery)
        Ram[key] = value;
}

std::vector<uint32_t> simUbxKeys::Group(uint32_t group) const
{
    constexpr uint32_t AllGroups = 0xFF;
    std::vector<uint32_t> keys;
    for (const auto& [key, value] : Defaults) {
        if (group == AllGroups || GroupOf(key) == group)
            keys.push_back(key);
    }
    // By item, as the receivers do: the size is no part of the order.
    std::ranges::sort(keys, {}, [](uint32_t key) { return key & 0x00FFFFFF; });
    return keys;
}

void simUbxKeys::AddPorts(const simOptions& options)
{
    for (unsigned port = 0; port < Ports; ++port) {
        const uint32_t step = port * PortStep;
        Defaults[InUbx + step] = 1;
        Defaults[InNmea + step] = 1;
        Defaults[OutUbx + step] = 1;
        Defaults[OutNmea + step] = options.NMEA ? 1 : 0;
    }
    Defaults[UartBaud] = options.Line.Baud;
    Defaults[UartStopBits] = options.Line.StopBits == 2 ? 3 : 1;
    Defaults[UartDataBits] = 0;
    Defaults[UartParity] = options.Line.Parity == 'O' ? 1 : options.Line.Parity == 'E' ? 2 : 0;
}

// A pulse of a tenth of a second each second, once there is a solution.
void simUbxKeys::AddPulse()
{
    constexpr std::pair<uint32_t, uint64_t> Values[] = {
        {PulseDelay, 50},
        {PulsePeriod, 1'000'000},
        {PulsePeriodLock, 1'000'000},
        {PulseLength, 0},
        {PulseLengthLock, 100'000},
        {PulseUserDelay, 0},
        {PulseOn, 1},
        {PulseSync, 1},
        {PulseUseLocked, 1},
        {PulseAlign, 1},
        {PulsePolarity, 1},
        {PulseGrid, 1},
        {PulseIsFrequency, 0},
        {PulseFrequency, 1},
        {PulseFrequencyLock, 1},
        {PulseDuty, 0},
        {PulseDutyLock, 0x4024000000000000},  // ten percent
        {PulseIsLength, 1},
    };
    Defaults.insert(std::begin(Values), std::end(Values));
}

void simUbxKeys::AddMessages(const simUbxModel& model)
{
    for (const simUbxMessageRow& row : simUbxMessages()) {
        if (!simUbxHas(model, row))
            continue;
        for (unsigned port = 0; port < MessagePorts; ++port)
            Defaults[row.Key + port] = row.OnAtFirst ? 1 : 0;
    }
}

void simUbxKeys::AddSignals(const simUbxModel& model)
{
    for (const simUbxSystem& system : model.Systems)
        Defaults[simUbxSystemKey(system.System)] = system.Enabled ? 1 : 0;
    for (const uint32_t key : model.SignalKeys) {
        // The first band of BeiDou is off only where another of its signals takes its place.
        const bool replaced =
            key != BdsB1I || std::ranges::find(model.SignalKeys, BdsB1C) != model.SignalKeys.end();
        const bool off = std::ranges::find(OffAtFirst, key) != std::end(OffAtFirst) && replaced;
        Defaults[key] = off ? 0 : 1;
    }
}
