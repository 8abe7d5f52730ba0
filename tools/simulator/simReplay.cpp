#include "tools/simulator/simReplay.h"

#include <algorithm>
#include <utility>

simReplay::simReplay(simBytes recorded, const simReplayOptions& options)
    : Recorded(std::move(recorded)), Options(options)
{}

std::vector<uint8_t> simReplay::Advance(int64_t nowNs)
{
    if (!Started || Faults.Unplugged || Ended()) {
        Started = true;
        LastNs = nowNs;
        return {};
    }
    Credit += static_cast<double>(nowNs - LastNs) * 1e-9 * Options.BytesPerSecond;
    LastNs = nowNs;
    simBytes due;
    while (Credit >= 1 && !Ended()) {
        const size_t count = std::min(Recorded.size() - At, static_cast<size_t>(Credit));
        const auto from = Recorded.begin() + static_cast<ptrdiff_t>(At);
        due.insert(due.end(), from, from + static_cast<ptrdiff_t>(count));
        Credit -= static_cast<double>(count);
        At += count;
        if (At == Recorded.size() && Options.Loop)
            At = 0;
    }
    if (Faults.Silent)
        due.clear();
    return due;
}

bool simReplay::Ended() const
{
    return At == Recorded.size();
}
