// Builds TSIP packets as a receiver would send them.
#pragma once

#include "gnss/gnssTSIP.h"
#include "tests/gnss/decoderListener.h"

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

// Fields are appended big-endian, in the order of the report. As text it is the stuffed frame.
class tsip
{
public:
    explicit tsip(uint8_t id) : Bytes(1, static_cast<char>(id)) {}
    tsip(uint8_t id, uint8_t subcode) : tsip(id) { u1(subcode); }

    tsip& u1(unsigned value) { return Add(value, 1); }
    tsip& u2(unsigned value) { return Add(value, 2); }
    tsip& u4(uint32_t value) { return Add(value, 4); }
    tsip& r4(float value) { return Add(std::bit_cast<uint32_t>(value), 4); }
    tsip& r8(double value) { return Add(std::bit_cast<uint64_t>(value), 8); }
    tsip& zeros(size_t count)
    {
        Bytes.append(count, '\0');
        return *this;
    }

    // The same packet without what follows the first `count` bytes of id and data.
    tsip& cut(size_t count)
    {
        Bytes.resize(count);
        return *this;
    }

    // Of id and data.
    size_t size() const { return Bytes.size(); }

    // NOLINTNEXTLINE(google-explicit-constructor): it is a packet.
    operator std::string() const
    {
        std::string frame = "\x10";
        for (const char each : Bytes)
            frame += each == '\x10' ? std::string(2, each) : std::string(1, each);
        return frame + "\x10\x03";
    }

private:
    tsip& Add(uint64_t value, unsigned count)
    {
        for (unsigned i = count; i-- > 0;)
            Bytes += static_cast<char>(value >> 8 * i & 0xFF);
        return *this;
    }

    std::string Bytes;
};

inline std::string operator+(const tsip& left, const tsip& right)
{
    return std::string(left) + std::string(right);
}

inline std::string operator+(const std::string& left, const tsip& right)
{
    return left + std::string(right);
}

inline std::string command(std::initializer_list<uint8_t> bytes)
{
    return {bytes.begin(), bytes.end()};
}

// Any report that does nothing.
inline tsip anyPacket()
{
    return tsip(0x01);
}

// A machine code ends identification.
inline tsip machine(uint8_t code, uint8_t status = 0)
{
    return tsip(0x4B).u1(code).u1(status).u1(0);
}
constexpr uint8_t MachineLassen = 0x5A;
constexpr uint8_t MachineAcutime = 0x61;

struct tsipLevel {
    uint8_t SvId;
    float Level;
};
inline tsip levels(std::initializer_list<tsipLevel> satellites)
{
    tsip packet(0x47);
    packet.u1(static_cast<unsigned>(satellites.size()));
    for (const tsipLevel& each : satellites)
        packet.u1(each.SvId).r4(each.Level);
    return packet;
}

inline tsip allInView(std::initializer_list<uint8_t> satellites)
{
    tsip packet(0x6D);
    packet.u1(static_cast<unsigned>(satellites.size()) << 4 | 3).r4(2).r4(1).r4(3).r4(4);
    for (const uint8_t each : satellites)
        packet.u1(each);
    return packet;
}

// 8F-AB.
struct tsipTiming {
    uint32_t TimeOfWeek = 0;
    unsigned Week = 0;
    unsigned Offset = 0;
    unsigned Flags = 1;
    unsigned Hours = 0;
    unsigned Minutes = 0;
    unsigned Seconds = 0;
    unsigned Day = 1;
    unsigned Month = 1;
    unsigned Year = 2026;
};
inline tsip primaryTiming(const tsipTiming& time)
{
    return tsip(0x8F, 0xAB)
        .u4(time.TimeOfWeek)
        .u2(time.Week)
        .u2(time.Offset)
        .u1(time.Flags)
        .u1(time.Seconds)
        .u1(time.Minutes)
        .u1(time.Hours)
        .u1(time.Day)
        .u1(time.Month)
        .u2(time.Year);
}

inline std::string describeTSIP(const gnssTSIP& receiver)
{
    return describeModel(receiver) + describeFields(receiver.RequestTime, receiver.Ident, receiver.ParseState,
                                                    receiver.ClockBias, receiver.BiasRate, receiver.PPSError,
                                                    receiver.TDOP, receiver.Temperature, receiver.WeekTime,
                                                    receiver.UTCOffset, receiver.Status, receiver.Week,
                                                    receiver.DecodeStatus, receiver.PPSBase, receiver.RXMode,
                                                    receiver.SurveyProgress, receiver.TimeFlags);
}

// A fresh decoder with an ear at each end.
class gnssTSIPTest : public testing::Test
{
protected:
    void Feed(const std::string& stream) { Listener.Feed(stream); }

    // A receiver that is known, so that identification says no more.
    void Know(uint8_t model)
    {
        Receiver.Model = model;
        Receiver.Ident = gnssTSIP::Identification::Known;
    }

    // Everything that was sent, and forgets it.
    std::vector<std::string> TakeSent()
    {
        std::vector<std::string> sent;
        sent.swap(Listener.Sent);
        return sent;
    }

private:
    struct reset {
        reset() { fakeReset(); }
    };
    // Before the decoder asks the clock.
    reset Reset;

protected:
    decoderListener<gnssTSIP> Listener;
    gnssTSIP& Receiver = Listener.Receiver;
};
