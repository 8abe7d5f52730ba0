// Streams of text: cut anywhere they must give the same, and whatever they say must leave the lists in order.
#include "gnss/gnssNMEA.h"

#include "fuzz/decoderRun.h"

namespace {

// All that there can be: ten constellations of 256 numbers.
constexpr size_t MostSats = 2560;

std::vector<uint8_t> stateOf(const gnssNMEA& receiver)
{
    std::vector<uint8_t> all;
    appendModel(all, receiver);
    appendSats(all, receiver.SatsNew);
    appendBytes(all, receiver.DGPSAge, receiver.DGPSStation, receiver.MagVar, receiver.FixQuality);
    all.insert(all.end(), receiver.Line.begin(), receiver.Line.end());
    return all;
}

bool isUnique(const std::vector<SatInfo>& sats)
{
    return std::adjacent_find(sats.begin(), sats.end(), [](const SatInfo& a, const SatInfo& b) {
               return a.Source == b.Source && a.SvId == b.SvId;
           }) == sats.end();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const cutStream input(data, size);
    decoderRun<gnssNMEA> whole;
    decoderRun<gnssNMEA> cut;
    whole.Feed(input.Stream, {});
    cut.Feed(input.Stream,
             input.Cuts.empty() ? fuzzSpan(data, size).first(std::min<size_t>(size, 1)) : input.Cuts);
    require(stateOf(whole.Receiver) == stateOf(cut.Receiver));
    require(whole.Log == cut.Log);

    gnssNMEA& receiver = whole.Receiver;
    require(isSorted(receiver.Sats) && isUnique(receiver.Sats) && receiver.Sats.size() <= MostSats);
    require(receiver.Line.size() <= gnssNMEA::LineLimit + 1);
    require(receiver.FixQuality <= 8);

    receiver.Restart();
    require(receiver.Sats.empty() && receiver.SatsNew.empty() && receiver.IsIdle());
    require(receiver.Model == 0 && receiver.Valid == 0);
    return 0;
}
