// Attacks the UBX decoder. The first byte says whether the decoder can talk, whether what follows is a stream
// as it stands or messages to be framed, and which model is there from the start. Whatever comes, a stream
// cut into single bytes must end like the whole one.
#include "fuzz/require.h"
#include "fuzz/ubxFrames.h"
#include "gnss/gnssUBX.h"

namespace {

struct listener {
    explicit listener(bool talks)
    {
        Receiver.OnNewData = [this] { Events++; };
        Receiver.OnPPS = [this] { Events += 1000; };
        Receiver.OnRFSpectrum = [this](const gnssUBX::Spectrum& told) {
            for (size_t at = 0; at < told.Count; at++)
                Levels += told.Levels[at] > told.LowLevel ? 1 : 0;
        };
        if (talks)
            Receiver.OnSend = [this](const uint8_t* bytes, size_t count) {
                Sent.insert(Sent.end(), bytes, bytes + count);
            };
    }

    gnssUBX Receiver;
    fuzzBytes Sent;
    uint64_t Events = 0;
    uint64_t Levels = 0;
};

void CheckWhole(const gnssUBX& receiver)
{
    require(receiver.Model == 0 ||
            (receiver.Model >= ubxModel::Generic && receiver.Model <= gnss::ModelLast));
    require(receiver.ConfigState <= gnssUBX::State::SelectVerify);
    require(receiver.PortId <= 3 || receiver.PortId == gnssUBX::PortUnknown);
    require(receiver.Sats.size() <= 255);
    for (const SatInfo& sat : receiver.Sats) {
        require(sat.Source <= gnss::Source::SBAS);
        require(sat.Signals[0] < 44 && sat.Signals[1] < 44 && sat.Signals[2] < 44);
    }
}

void CheckSame(const listener& one, const listener& other)
{
    require(one.Events == other.Events && one.Levels == other.Levels && one.Sent == other.Sent);
    require(one.Receiver.ConfigState == other.Receiver.ConfigState);
    require(one.Receiver.ParseState == other.Receiver.ParseState);
    require(one.Receiver.Sats.size() == other.Receiver.Sats.size());
    require(one.Receiver.Select.Load() == other.Receiver.Select.Load());
}

fuzzBytes StreamOf(fuzzInput& input, bool framed)
{
    if (!framed)
        return input.Take(SIZE_MAX);
    fuzzBytes stream;
    while (!input.Empty()) {
        const fuzzBytes frame = ubxTakeFrame(input);
        stream.insert(stream.end(), frame.begin(), frame.end());
    }
    return stream;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    fuzzInput input(bytes, size);
    const uint8_t options = input.Byte();
    const bool talks = (options & 1) != 0;
    listener whole(talks);
    listener bytewise(talks);
    for (listener* const each : {&whole, &bytewise}) {
        each->Receiver.Model = options >> 4 >= ubxModel::Generic ? options >> 4 & 15 : 0;
        if (each->Receiver.Model > gnss::ModelLast)
            each->Receiver.Model = 0;
        each->Receiver.ProtVer = (options & 4) != 0 ? 0x2200 : 0x1200;
        if ((options & 8) != 0)
            each->Receiver.Restart();
    }
    const fuzzBytes stream = StreamOf(input, (options & 2) != 0);
    whole.Receiver.Feed(stream.data(), stream.size());
    for (const uint8_t& byte : stream)
        bytewise.Receiver.Feed(&byte, 1);
    CheckWhole(whole.Receiver);
    CheckSame(whole, bytewise);
    return 0;
}
