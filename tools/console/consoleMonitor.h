// A receiver watched without a screen: what the main form does with a link, on one thread that the caller
// gives.
//
// The threads of the link only leave notes here; Turn, on the caller's thread, acts on them.
#pragma once

#include "link/gnssComm.h"
#include "link/gnssCommClient.h"
#include "link/gnssCommServer.h"
#include "tools/console/consoleOptions.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>

class consoleMonitor
{
public:
    explicit consoleMonitor(const consoleOptions& options);

    // Ends all threads.
    ~consoleMonitor();
    consoleMonitor(const consoleMonitor&) = delete;
    consoleMonitor& operator=(const consoleMonitor&) = delete;

    // Opens the port or begins to connect, and starts to serve. False with a line that says why not.
    bool Start(std::string& fault);

    // Waits for news for at most so long and acts on it. False when there is no sense in going on; `fault`
    // says why.
    bool Turn(uint32_t milliseconds, std::string& fault);

    // Ends everything; within 300 ms.
    void Stop();

    // A group of new data has come: the receiver has told something and paused.
    std::function<void()> OnGroup;

    // Another word on where things stand than before.
    std::function<void(const std::string& status)> OnStatus;

    std::string Status() const { return Said; }

    // The link; its decoders may be looked at under its Lock.
    gnssComm& Link() { return Comm; }

    // Clients served at this moment, and the port, 0 when there is none.
    unsigned Clients() const { return Server.Clients(); }
    uint16_t ServingPort() const { return Server.ListeningPort(); }

private:
    // News of the link's threads.
    enum note : uint32_t {
        NoteData = 1,
        NoteDetected = 2,
        NoteConnected = 4,
        NoteDisconnected = 8,
        NoteWrongServer = 16,
        NoteServerFailed = 32,
        NoteProbing = 64,
        NoteServerBroken = 128,
    };

    void ListenToLink();
    void ListenToNetwork();
    void Leave(note news);
    uint32_t TakeNotes(uint32_t milliseconds);
    std::string TakeProbed();
    bool Act(uint32_t news, std::string& fault);
    void ActOnConnection(uint32_t news);
    void ActOnDetection();
    void ActOnData();
    void CatchUBX();
    void WatchSilence();
    void EndGroup();
    void Restart();
    void Say(const std::string& status);
    std::string ModelStatus();

    const consoleOptions Options;
    gnssComm Comm;
    gnssCommServer Server;
    gnssCommClient Client;

    std::mutex Mutex;  // guards Notes and Probed; behind the link's Lock, so nothing is called with it held
    std::condition_variable Changed;
    uint32_t Notes = 0;
    std::string Probed;

    std::string Said;
    std::atomic<int64_t> LastBytes{0};  // clockSteadyNs
    int64_t LastData = 0;               // clockSteadyNs
    int64_t GroupBegan = 0;             // clockSteadyNs; 0 when none is under way
    bool Running = false;
};
