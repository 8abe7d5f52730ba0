// Streams of binary packets: cut anywhere they must give the same, and whatever they say must leave the list
// in order and the date inside the calendar.
#include "gnss/gnssTSIP.h"

#include "fuzz/decoderRun.h"

namespace {

constexpr int64_t Second = 1'000'000'000;

std::vector<uint8_t> stateOf(const gnssTSIP& receiver)
{
    std::vector<uint8_t> all;
    appendModel(all, receiver);
    appendBytes(all, receiver.RequestTime, receiver.Ident, receiver.ParseState, receiver.ClockBias,
                receiver.BiasRate, receiver.PPSError, receiver.TDOP, receiver.Temperature, receiver.WeekTime,
                receiver.UTCOffset, receiver.Status, receiver.Week, receiver.DecodeStatus, receiver.PPSBase,
                receiver.RXMode, receiver.SurveyProgress, receiver.TimeFlags);
    all.insert(all.end(), receiver.Packet.begin(), receiver.Packet.end());
    return all;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fakeReset();
    const cutStream input(data, size);
    decoderRun<gnssTSIP> whole;
    decoderRun<gnssTSIP> cut;
    fakeClockMove(Second);
    whole.Feed(input.Stream, {});
    cut.Feed(input.Stream,
             input.Cuts.empty() ? fuzzSpan(data, size).first(std::min<size_t>(size, 1)) : input.Cuts);
    require(stateOf(whole.Receiver) == stateOf(cut.Receiver));
    require(whole.Log == cut.Log);

    gnssTSIP& receiver = whole.Receiver;
    require(isSorted(receiver.Sats) && receiver.Sats.size() <= 255);
    require(receiver.Packet.size() <= gnssTSIP::PacketLimit);
    require(receiver.RXMode <= 8);
    require(receiver.Year == 0 || (receiver.Month >= 1 && receiver.Month <= 12));
    require(receiver.Year == 0 || (receiver.Day >= 1 && receiver.Day <= 31));

    receiver.Restart();
    require(receiver.Sats.empty() && receiver.Packet.empty() && receiver.Model == 0 && receiver.Valid == 0);
    require(receiver.ParseState == gnssTSIP::Framing::Outside && receiver.DecodeStatus == 0xFF);
    return 0;
}
