// A decoder with somebody at both of its ends: what it raised and sent is kept in order, and streams can be
// fed whole or cut.
#pragma once

#include "gnss/gnss.h"
#include "tests/fakes/fakes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

// The bytes of a plain value, so that what is no number compares, too.
template <class Value>
void describeTo(std::string& text, const Value& value)
{
    static_assert(std::is_arithmetic_v<Value> || std::is_enum_v<Value>);
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    text.append(bytes, sizeof bytes);
}

inline void describeTo(std::string& text, const SatInfo& satellite)
{
    describeTo(text, satellite.Elevation);
    describeTo(text, satellite.Azimuth);
    describeTo(text, satellite.SNR);
    describeTo(text, satellite.SvId);
    describeTo(text, satellite.Source);
    for (const uint8_t signal : satellite.Signals)
        describeTo(text, signal);
    describeTo(text, satellite.Used);
}

template <class... Values>
std::string describeFields(const Values&... values)
{
    std::string text;
    (describeTo(text, values), ...);
    return text;
}

inline std::string describeModel(const gnss& model)
{
    std::string text =
        describeFields(model.Altitude, model.Latitude, model.Longitude, model.TimeOfDay, model.Year,
                       model.Month, model.Day, model.HDOP, model.PDOP, model.SeaLevel, model.Speed,
                       model.Track, model.VDOP, model.Model, model.Valid);
    for (const SatInfo& satellite : model.Sats)
        describeTo(text, satellite);
    return text;
}

template <class Decoder>
class decoderListener
{
public:
    decoderListener()
    {
        Receiver.OnNewData = [this] {
            ++NewData;
            Log.push_back("new data");
        };
        Receiver.OnSend = [this](const uint8_t* bytes, size_t count) {
            Sent.emplace_back(bytes, bytes + count);
            Log.push_back("sent " + std::string(bytes, bytes + count));
        };
    }

    void Feed(const std::string& stream) { FeedPart(stream, 0, stream.size()); }

    void FeedByteByByte(const std::string& stream)
    {
        for (size_t i = 0; i < stream.size(); ++i)
            FeedPart(stream, i, 1);
    }

    void FeedCut(const std::string& stream, unsigned seed)
    {
        std::mt19937 random(seed);
        for (size_t at = 0; at < stream.size();) {
            const size_t count = std::min<size_t>(random() % 23, stream.size() - at);
            FeedPart(stream, at, count);
            at += count;
        }
    }

    Decoder Receiver;
    unsigned NewData = 0;
    std::vector<std::string> Sent;
    std::vector<std::string> Log;  // events and what was sent, in order

private:
    void FeedPart(const std::string& stream, size_t at, size_t count)
    {
        // A buffer of exactly this size, so that a read beyond it is noticed.
        const std::vector<uint8_t> bytes(stream.begin() + static_cast<ptrdiff_t>(at),
                                         stream.begin() + static_cast<ptrdiff_t>(at + count));
        Receiver.Feed(bytes.data(), bytes.size());
    }
};

// Feeds the stream whole, byte by byte and in random cuts; `describe` tells all that the decoder holds.
template <class Decoder, class Describe>
void expectSameHoweverCut(const std::string& stream, Describe describe)
{
    fakeReset();
    decoderListener<Decoder> whole;
    whole.Feed(stream);

    fakeReset();
    decoderListener<Decoder> bytewise;
    bytewise.FeedByteByByte(stream);
    EXPECT_EQ(describe(bytewise.Receiver), describe(whole.Receiver));
    EXPECT_EQ(bytewise.Log, whole.Log);

    for (unsigned seed = 0; seed < 20; ++seed) {
        SCOPED_TRACE(seed);
        fakeReset();
        decoderListener<Decoder> cut;
        cut.FeedCut(stream, seed);
        EXPECT_EQ(describe(cut.Receiver), describe(whole.Receiver));
        EXPECT_EQ(cut.Log, whole.Log);
    }
}
