#include "tools/simulator/simCore.h"

#include "tools/simulator/simSky.h"
#include "tools/simulator/simTime.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr unsigned HighestRate = 25;
constexpr size_t MostSats = 40;
constexpr int64_t BootTime = 300 * simMillisecond;
constexpr int FixAfterPlug = 2;       // seconds
constexpr double UsedElevation = 10;  // degrees
constexpr double MetresPerDegree = 111'195;

unsigned WithinRates(unsigned rate)
{
    return std::clamp(rate, 1u, HighestRate);
}

int64_t FloorSecond(int64_t utcNs)
{
    return utcNs >= 0 ? utcNs / simSecond : -((simSecond - 1 - utcNs) / simSecond);
}

}  // namespace

simCore::simCore(const simOptions& options)
    : Options(options), Rate(WithinRates(options.Rate)), Noise(options.Seed)
{
    // What is asked before the first solution is answered with a time that makes sense.
    Epoch.UtcNs = options.StartUtcNs;
    Epoch.Place = options.Place;
}

void simCore::Take(std::span<const uint8_t> fromHost)
{
    if (Faults.Unplugged || WasUnplugged || Booting || fromHost.empty())
        return;
    ReceivedBytes += static_cast<uint32_t>(fromHost.size());
    OnBytes(fromHost);
}

std::vector<uint8_t> simCore::Advance(int64_t nowNs)
{
    if (!Started) {
        Started = true;
        Origin = nowNs;
        ScheduleFrom(Options.StartUtcNs);
    }
    Elapsed = std::max(Elapsed, nowNs - Origin);
    if (Faults.Unplugged) {
        WasUnplugged = true;
        Out.clear();
        return {};
    }
    if (WasUnplugged) {
        WasUnplugged = false;
        Restart(FixAfterPlug);
    }
    if (Booting && Elapsed >= ReadyAt) {
        Booting = false;
        ScheduleFrom(Options.StartUtcNs + ReadyAt);
        OnReady();
    }
    if (!Booting)
        RunEpochsUpTo(UtcNs());
    simBytes due;
    due.swap(Out);
    return due;
}

simTruth simCore::Truth() const
{
    simTruth truth;
    truth.UtcNs = Epoch.UtcNs;
    truth.Fixed = Epoch.Fixed;
    truth.Place = Epoch.Place;
    truth.GDOP = Epoch.Dop.G;
    truth.PDOP = Epoch.Dop.P;
    truth.HDOP = Epoch.Dop.H;
    truth.VDOP = Epoch.Dop.V;
    truth.TDOP = Epoch.Dop.T;
    truth.NDOP = Epoch.Dop.N;
    truth.EDOP = Epoch.Dop.E;
    truth.Sats = Epoch.Sats;
    return truth;
}

void simCore::Send(const simBytes& message, kind why)
{
    if (why == kind::Answer && Faults.LoseAnswers > 0) {
        --Faults.LoseAnswers;
        return;
    }
    const bool full = Backlog + Out.size() > BacklogLimit;
    if (Faults.Silent || Booting || (why == kind::Periodic && full))
        return;
    simBytes leaving = message;
    if (leaving.size() > 1 && Faults.Cut > 0 && Noise.Unit() < Faults.Cut)
        leaving.resize(1 + Noise.Next() % (leaving.size() - 1));
    BreakBytes(leaving);
    SentBytes += static_cast<uint32_t>(leaving.size());
    Out.insert(Out.end(), leaving.begin(), leaving.end());
}

void simCore::Restart(int fixSeconds)
{
    Booting = true;
    ReadyAt = Elapsed + BootTime;
    FixAt = Elapsed + fixSeconds * simSecond;
    SentBytes = 0;
    ReceivedBytes = 0;
    Rate = WithinRates(Options.Rate);
    Epoch.Fixed = false;
    Epoch.Dop = {};
    Epoch.Sats.clear();
    PowerUp();
}

int64_t simCore::EpochTime(int64_t second, unsigned part) const
{
    return second * simSecond + simSecond * part / ScheduledRate;
}

// The next solution is the first of the whole second's parts that is not over.
void simCore::ScheduleFrom(int64_t utcNs)
{
    ScheduledRate = Rate;
    NextSecond = FloorSecond(utcNs);
    NextPart = 0;
    while (EpochTime(NextSecond, NextPart) < utcNs) {
        if (++NextPart == ScheduledRate) {
            NextPart = 0;
            ++NextSecond;
        }
    }
}

void simCore::RunEpochsUpTo(int64_t utcNs)
{
    if (ScheduledRate != Rate)
        ScheduleFrom(std::max(Epoch.UtcNs + 1, utcNs));
    while (EpochTime(NextSecond, NextPart) <= utcNs) {
        const int64_t moment = EpochTime(NextSecond, NextPart);
        Epoch.Part = NextPart;
        if (++NextPart == ScheduledRate) {
            NextPart = 0;
            ++NextSecond;
        }
        Solve(moment);
        OnEpoch(Epoch);
    }
}

void simCore::Solve(int64_t utcNs)
{
    Epoch.UtcNs = utcNs;
    SeeSats();
    const std::optional<simDop> dop = simDopOf(Epoch.Sats);
    Epoch.Fixed = utcNs - Options.StartUtcNs >= FixAt && dop.has_value();
    Epoch.Dop = dop.value_or(simDop());
    if (!Epoch.Fixed) {
        Epoch.Dop = {};
        for (simSat& sat : Epoch.Sats)
            sat.Used = false;
    }
    Locate();
}

void simCore::SeeSats()
{
    Epoch.Sats.clear();
    for (simSat& sat : simSatsOver(Options.Place, Epoch.UtcNs)) {
        const auto deaf = [&](const simSignal& signal) { return !Hears(sat.System, signal); };
        std::erase_if(sat.Signals, deaf);
        if (sat.Signals.empty() || !Knows(sat.System, sat.Svid))
            continue;
        constexpr double Faintest = 28;
        if (sat.SNR < Faintest)
            sat.SNR = 0;
        // The satellites of an augmentation system tell of the others; they are not ranged to.
        sat.Used = sat.Elevation >= UsedElevation && sat.SNR > 0 && sat.System != simSystem::SBAS;
        Epoch.Sats.push_back(std::move(sat));
    }
    while (Epoch.Sats.size() > MostSats)
        Epoch.Sats.erase(std::ranges::min_element(Epoch.Sats, {}, &simSat::Elevation));
}

// The solution wanders a metre or two about the true place, more upwards than sideways.
void simCore::Locate()
{
    constexpr double Remembered = 0.995;
    constexpr double Sizes[3] = {0.05, 0.05, 0.1};
    for (int axis = 0; axis < 3; ++axis)
        Drift[axis] = Remembered * Drift[axis] + Sizes[axis] * Noise.Normal();
    Epoch.Place = Options.Place;
    Epoch.Place.Latitude += Drift[0] / MetresPerDegree;
    const double narrowing = std::cos(Options.Place.Latitude * std::numbers::pi / 180);
    Epoch.Place.Longitude += Drift[1] / (MetresPerDegree * std::max(narrowing, 0.01));
    Epoch.Place.Altitude += Drift[2];
    Epoch.NorthSpeed = 0.01 * Noise.Normal();
    Epoch.EastSpeed = 0.01 * Noise.Normal();
    Epoch.HorizontalAccuracy = 0.8 + 0.5 * Epoch.Dop.H;
    Epoch.VerticalAccuracy = 1.1 + 0.7 * Epoch.Dop.V;
}

void simCore::BreakBytes(simBytes& message)
{
    if (Faults.ByteErrors <= 0)
        return;
    for (uint8_t& byte : message) {
        if (Noise.Unit() < Faults.ByteErrors)
            byte = static_cast<uint8_t>(byte ^ 1u << Noise.Next() % 8);
    }
}
