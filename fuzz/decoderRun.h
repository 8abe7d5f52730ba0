// Runs a decoder over a stream, whole or cut, and keeps what came out of it.
#pragma once

#include "fuzz/require.h"
#include "gnss/gnss.h"
#include "tests/fakes/fakes.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

using fuzzSpan = std::span<const uint8_t>;

// The bytes of each value, so that what is no number compares, too.
template <class... Values>
void appendBytes(std::vector<uint8_t>& all, const Values&... values)
{
    const auto append = [&all](const auto& value) {
        uint8_t bytes[sizeof value];
        std::memcpy(bytes, &value, sizeof value);
        all.insert(all.end(), bytes, bytes + sizeof bytes);
    };
    (append(values), ...);
}

inline void appendSats(std::vector<uint8_t>& all, const std::vector<SatInfo>& sats)
{
    for (const SatInfo& each : sats)
        appendBytes(all, each.Elevation, each.Azimuth, each.SNR, each.SvId, each.Source, each.Signals,
                    each.Used);
}

inline void appendModel(std::vector<uint8_t>& all, const gnss& model)
{
    appendBytes(all, model.Altitude, model.Latitude, model.Longitude, model.TimeOfDay, model.Year,
                model.Month, model.Day, model.HDOP, model.PDOP, model.SeaLevel, model.Speed, model.Track,
                model.VDOP, model.Model, model.Valid);
    appendSats(all, model.Sats);
}

template <class Decoder>
class decoderRun
{
public:
    decoderRun()
    {
        Receiver.OnNewData = [this] { Log.push_back('!'); };
        Receiver.OnSend = [this](const uint8_t* bytes, size_t count) {
            Log.push_back('>');
            Log.insert(Log.end(), bytes, bytes + count);
        };
    }

    // Pieces as long as the bytes of `cuts` say, in turn; without any, the whole at once.
    void Feed(fuzzSpan stream, fuzzSpan cuts)
    {
        for (size_t turn = 0; !stream.empty(); ++turn) {
            const size_t wanted = cuts.empty() ? stream.size() : cuts[turn % cuts.size()] % 32 + 1U;
            const size_t count = std::min(wanted, stream.size());
            // A copy of exactly this size, so that a read beyond it is noticed.
            const std::vector<uint8_t> piece(stream.begin(), stream.begin() + static_cast<ptrdiff_t>(count));
            Receiver.Feed(piece.data(), piece.size());
            stream = stream.subspan(count);
        }
    }

    Decoder Receiver;
    std::vector<uint8_t> Log;  // events and what was sent, in order
};

inline bool isSorted(const std::vector<SatInfo>& sats)
{
    return std::is_sorted(sats.begin(), sats.end(), [](const SatInfo& a, const SatInfo& b) {
        return a.Source != b.Source ? a.Source < b.Source : a.SvId < b.SvId;
    });
}

// The first byte tells how many of those behind it are the lengths of pieces.
struct cutStream {
    cutStream(const uint8_t* data, size_t size)
    {
        const fuzzSpan all(data, size);
        if (all.empty())
            return;
        const size_t count = std::min<size_t>(all[0] % 16, all.size() - 1);
        Cuts = all.subspan(1, count);
        Stream = all.subspan(1 + count);
    }

    fuzzSpan Cuts;
    fuzzSpan Stream;
};
