#include "tools/console/consoleMonitor.h"

#include "platform/clock.h"
#include "platform/thread.h"

#include <utility>

namespace {

constexpr int64_t NsPerMs = 1'000'000;

// Messages of one solution come together; a pause of the line like this stands before the next one. On a line
// that never rests there is a group each second.
constexpr int64_t PauseNs = 30 * NsPerMs;
constexpr int64_t LongestGroupNs = 1000 * NsPerMs;

// A receiver that has said nothing for so long is looked for anew: it may have been plugged in again.
constexpr int64_t SilenceNs = 15'000 * NsPerMs;

constexpr uint8_t DynamicsAir = 3;
constexpr uint8_t ModelUBX = 6;

}  // namespace

consoleMonitor::consoleMonitor(const consoleOptions& options) : Options(options)
{
    ListenToLink();
    ListenToNetwork();
}

consoleMonitor::~consoleMonitor()
{
    Stop();
}

void consoleMonitor::ListenToLink()
{
    Comm.OnDetectedGNSS = [this] { Leave(NoteDetected); };
    Comm.OnNewData = [this] { Leave(NoteData); };
    Comm.OnProbing = [this](const std::string& text) {
        {
            const std::lock_guard lock(Mutex);
            Probed = text;
        }
        Leave(NoteProbing);
    };
    Server.OnCommand = [this](const uint8_t* bytes, size_t count) { Comm.Write(bytes, count); };
    Server.OnFailed = [this] { Leave(NoteServerFailed); };
    Server.OnBroken = [this] { Leave(NoteServerBroken); };
    Comm.OnRawData = [this](const std::vector<uint8_t>& block) {
        LastBytes = clockSteadyNs();
        if (Options.Serve)
            Server.Send(block);
    };
}

void consoleMonitor::ListenToNetwork()
{
    Comm.NetSend = [this](const uint8_t* bytes, size_t count) { Client.Send(bytes, count); };
    Client.OnStream = [this](const uint8_t* bytes, size_t count) {
        LastBytes = clockSteadyNs();
        Comm.Feed(bytes, count);
    };
    Client.OnWrongServer = [this] { Leave(NoteWrongServer); };
    Client.OnEvent = [this](const uint32_t& event) {
        Leave(event == netTCPCli::EventConnected ? NoteConnected : NoteDisconnected);
    };
}

void consoleMonitor::Leave(note news)
{
    {
        const std::lock_guard lock(Mutex);
        Notes |= news;
    }
    Changed.notify_one();
}

bool consoleMonitor::Start(std::string& fault)
{
    LastData = clockSteadyNs();
    if (!Options.Host.empty()) {
        Comm.Network = true;
        Say("Connecting");
        if (Client.Connect(Options.Host))
            return true;
        fault = "there is no host \"" + Options.Host + "\"";
        return false;
    }
    Comm.PortSet(Options.Port);
    if (!Comm.Start()) {
        fault = "the port \"" + Options.Port + "\" cannot be opened";
        return false;
    }
    Running = true;
    Say("Waiting for device reply...");
    if (Options.Serve)
        Server.Start(*Options.Serve);
    return true;
}

void consoleMonitor::Stop()
{
    Client.Disconnect(true);
    Comm.Stop();
    Server.Stop(true);
    Running = false;
}

bool consoleMonitor::Turn(uint32_t milliseconds, std::string& fault)
{
    const uint32_t news = TakeNotes(milliseconds);
    if (!Act(news, fault))
        return false;
    EndGroup();
    WatchSilence();
    return true;
}

uint32_t consoleMonitor::TakeNotes(uint32_t milliseconds)
{
    std::unique_lock lock(Mutex);
    if (Notes == 0)
        threadWaitUntil(Changed, lock, clockSteadyNs() + milliseconds * NsPerMs);
    return std::exchange(Notes, 0);
}

// By value: who hears the status takes the link's Lock, under which the link's threads leave their notes.
std::string consoleMonitor::TakeProbed()
{
    const std::lock_guard lock(Mutex);
    return Probed;
}

bool consoleMonitor::Act(uint32_t news, std::string& fault)
{
    if ((news & NoteServerFailed) != 0) {
        fault = "Cannot start the server for allowing remote control!";
        return false;
    }
    if ((news & NoteServerBroken) != 0) {
        fault = "The server for allowing remote control has ended!";
        return false;
    }
    if ((news & NoteWrongServer) != 0) {
        fault = "Unsupported server type!";
        return false;
    }
    ActOnConnection(news);
    if ((news & NoteProbing) != 0 && Comm.Detected == 0)
        Say("Waiting for device reply (" + TakeProbed() + ")...");
    if ((news & NoteDetected) != 0)
        ActOnDetection();
    if ((news & NoteData) != 0)
        ActOnData();
    return true;
}

// A connection that came and went between two looks is down, or will be reported again.
void consoleMonitor::ActOnConnection(uint32_t news)
{
    if ((news & NoteDisconnected) != 0) {
        Comm.Stop();
        Running = false;
        GroupBegan = 0;
        Say("Connecting");
    }
    if ((news & NoteConnected) != 0 && Client.Link.Is(netTCPBase::Connected)) {
        Comm.Stop();
        Running = Comm.Start();
        LastData = clockSteadyNs();
        Say("Waiting for device reply...");
    }
}

void consoleMonitor::ActOnDetection()
{
    Say("Waiting for device model...");
    const thrSpinHold hold(Comm.Lock);
    if (gnss* const decoder = Comm.Decoder())
        decoder->ReceiverModeSet(DynamicsAir);
}

void consoleMonitor::ActOnData()
{
    LastData = clockSteadyNs();
    if (GroupBegan == 0)
        GroupBegan = LastData;
    CatchUBX();
    if (Comm.Detected != 0)
        Say(ModelStatus());
}

std::string consoleMonitor::ModelStatus()
{
    const thrSpinHold hold(Comm.Lock);
    const gnss* const decoder = Comm.Decoder();
    return "Model: " + (decoder != nullptr ? std::string(decoder->ModelName()) : std::string());
}

// A u-blox receiver that talks NMEA has answered the other decoder, which has gone by now.
void consoleMonitor::CatchUBX()
{
    bool isUBX = false;
    {
        const thrSpinHold hold(Comm.Lock);
        isUBX = Comm.Protocol == gnssComm::ProtocolNMEA && Comm.NMEA && Comm.NMEA->Model == ModelUBX;
    }
    if (!isUBX)
        return;
    Comm.UBXOnly = true;
    Restart();
}

void consoleMonitor::Restart()
{
    Comm.Stop();
    GroupBegan = 0;
    Running = Comm.Start();
    LastData = clockSteadyNs();
    Say(Running ? "Waiting for device reply..." : "Waiting for the port");
}

void consoleMonitor::EndGroup()
{
    if (GroupBegan == 0)
        return;
    const int64_t now = clockSteadyNs();
    if (now - LastBytes < PauseNs && now - GroupBegan < LongestGroupNs)
        return;
    GroupBegan = 0;
    if (Comm.Detected == 0)
        return;
    // An answer that names the model need not bring data.
    Say(ModelStatus());
    if (OnGroup)
        OnGroup();
}

void consoleMonitor::WatchSilence()
{
    if (clockSteadyNs() - LastData < SilenceNs)
        return;
    const bool isSought = Running && Comm.Detected == 0;
    const bool hasGone = !isSought && !Comm.Network;
    // What looked like the answer of a u-blox receiver may have been noise, or it is another one's turn now.
    const bool isMistaken = isSought && Comm.UBXOnly;
    if (!hasGone && !isMistaken)
        return;
    Comm.UBXOnly = false;
    Restart();
}

void consoleMonitor::Say(const std::string& status)
{
    if (status == Said)
        return;
    Said = status;
    if (OnStatus)
        OnStatus(status);
}
