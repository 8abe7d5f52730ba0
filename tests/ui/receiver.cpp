#include "tests/ui/receiver.h"

#include "platform/clock.h"
#include "platform/thread.h"
#include "tools/simulator/simUart.h"

namespace {

constexpr uint32_t StepMs = 10;
constexpr size_t EpochsKept = 60;
constexpr size_t LeftMost = 32768;  // a line that nobody reads loses the rest
constexpr size_t Numbers = 256;
constexpr uint8_t Sync[] = {0xB5, 0x62};
constexpr size_t HeadSize = 4;

simOptions OptionsOf(simModel model)
{
    simOptions options;
    options.Model = model;
    return options;
}

}  // namespace

receiver::receiver(const simOptions& options, unsigned port, lineSense sense)
    : Line(port), Simulated(simMake(options)), Sense(sense), Counts(Numbers * Numbers)
{
    Player = std::jthread([this](const std::stop_token& stop) { Play(stop); });
}

receiver::receiver(simModel model, unsigned port) : receiver(OptionsOf(model), port) {}

receiver::~receiver()
{
    Player.request_stop();
    Player.join();
}

simTruth receiver::Truth()
{
    const std::lock_guard lock(Mutex);
    return Simulated->Truth();
}

uint64_t receiver::Key(uint32_t key)
{
    const simTruth truth = Truth();
    const auto found = truth.Keys.find(key);
    return found == truth.Keys.end() ? 0 : found->second;
}

std::deque<simTruth> receiver::Told()
{
    const std::lock_guard lock(Mutex);
    return Epochs;
}

unsigned receiver::Asked(uint8_t messageClass, uint8_t id)
{
    const std::lock_guard lock(Mutex);
    return Counts[messageClass * Numbers + id];
}

bool receiver::SeesLine()
{
    const std::lock_guard lock(Mutex);
    return Line.HostLine().has_value();
}

void receiver::Unplug()
{
    const std::lock_guard lock(Mutex);
    Simulated->Faults.Unplugged = true;
    Simulated->Advance(Now);
    Line.Unplug();
    Left.clear();
}

void receiver::Plug()
{
    const std::lock_guard lock(Mutex);
    Line.Plug();
    Simulated->Faults.Unplugged = false;
}

void receiver::Play(const std::stop_token& stop)
{
    LastStep = clockSteadyNs();
    while (!stop.stop_requested()) {
        Step();
        threadSleep(StepMs);
    }
}

void receiver::Step()
{
    const std::lock_guard lock(Mutex);
    const int64_t clock = clockSteadyNs();
    Now += Speed * (clock - LastStep);
    LastStep = clock;
    if (!Blocked)
        Hear(AsOnLine(Line.Receive(), false));
    const simBytes due = AsOnLine(Simulated->Advance(Now), true);
    const simTruth truth = Simulated->Truth();
    if (Epochs.empty() || Epochs.back().UtcNs != truth.UtcNs)
        Epochs.push_back(truth);
    if (Epochs.size() > EpochsKept)
        Epochs.pop_front();
    Left.insert(Left.end(), due.begin(), due.end());
    Left.erase(Left.begin(), Left.begin() + static_cast<ptrdiff_t>(Line.Send(Left)));
    if (Left.size() > LeftMost)
        Left.clear();
}

void receiver::Hear(const simBytes& bytes)
{
    Simulated->Take(bytes);
    for (const uint8_t byte : bytes) {
        Heard.push_back(byte);
        if (Heard.size() > HeadSize)
            Heard.erase(Heard.begin());
        if (Heard.size() == HeadSize && Heard[0] == Sync[0] && Heard[1] == Sync[1])
            ++Counts[Heard[2] * Numbers + Heard[3]];
    }
}

simBytes receiver::AsOnLine(const simBytes& bytes, bool toHost) const
{
    const std::optional<simLine> host = Line.HostLine();
    const simLine own = Simulated->Line();
    if (Sense == lineSense::Any || !host || bytes.empty() || simUartAgrees(*host, own))
        return bytes;
    return toHost ? simUartMisread(bytes, own, *host) : simUartMisread(bytes, *host, own);
}
