// The connection to one receiver: gets its bytes, finds out what it speaks, and owns the decoders.
//
// All decoders are fed the same bytes at once and the first that makes sense of them wins; the others are
// dropped. On a serial port a detection thread walks the usual line settings meanwhile. A receiver that falls
// silent ends nothing, and a lost port is not noticed here.
//
// Start, Stop and PortSet come from one thread, the interface thread. Bytes come from one data thread. Events
// run on the data thread or the detection thread, mostly with Lock held, so they never wait for the interface
// thread.
#pragma once

#include "foundations/thread/thrSpin.h"
#include "gnss/gnssNMEA.h"
#include "gnss/gnssTSIP.h"
#include "gnss/gnssUBX.h"
#include "link/linkThread.h"
#include "link/serialPort.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class gnssComm : public serialPort
{
public:
    // The form of the connection.
    class UI;

    static constexpr uint8_t ProtocolNone = 0;
    static constexpr uint8_t ProtocolNMEA = 1;
    static constexpr uint8_t ProtocolTSIP = 2;
    static constexpr uint8_t ProtocolUBX = 3;

    gnssComm();

    // Stops first.
    ~gnssComm();

    // Begins a run: opens the port unless `Network`, and looks for the protocol. With the port open already
    // there is nothing to do. False when the port cannot be opened.
    bool Start();

    // Ends the run within some 100 ms: no thread of it is left, and the decoders are gone.
    void Stop();

    // Chooses the port; a run that is on goes on with it.
    void PortSet(const std::string& name);

    // Takes received bytes. One data thread at a time; without any bytes it only lets a pending reset go out
    // at a boundary between messages, from any thread.
    void Feed(const uint8_t* bytes, size_t count);

    // The decoder of the protocol that was decided, null before. With Lock held.
    gnss* Decoder() const;

    // Alive only under Lock.
    std::unique_ptr<gnssNMEA> NMEA;
    std::unique_ptr<gnssTSIP> TSIP;
    std::unique_ptr<gnssUBX> UBX;

    mutable thrSpin Lock;  // guards the decoders and all decoding; before SatsLock

    std::atomic<uint8_t> Protocol{ProtocolNone};
    std::atomic<uint8_t> Detected{0};      // OnDetectedGNSS was raised in this run
    std::atomic<uint8_t> ResetPending{0};  // the receiver is to be reset at the next message boundary

    // Set these while no run is on. Each may be empty.
    std::function<void()> OnDetectedGNSS;  // the protocol is decided; once in a run
    std::function<void()> OnNewData;       // a decoder changed its fields
    std::function<void(const std::vector<uint8_t>&)>
        OnRawData;                                           // a block from the serial port, before decoding
    std::function<void(const std::string& text)> OnProbing;  // a line setting is being tried
    std::function<void(const uint8_t*, size_t)> NetSend;     // takes bytes to the receiver when `Network`

    bool Network = false;  // no serial port is used; set it while no run is on
    bool UBXOnly = false;  // from the next Start on only the UBX decoder is made

private:
    void Port_OnData(std::vector<uint8_t>& block);
    void EndDetection();
    void MakeDecoders();
    void Connect(gnss& decoder, uint8_t protocol);
    void Transmit(const uint8_t* bytes, size_t count);
    void Decoder_OnNewData(uint8_t protocol);
    void Decide(uint8_t protocol);
    bool IsDecided() const;

    void Detect();
    void WalkLineSettings();
    bool Probe();
    void RestartDecoders();
    void WaitForProof();
    bool IsProven();
    void TrustModelOfTSIP();
    void DropLosers();
    bool TakeReset(bool atBoundary);

    linkThread Thread;  // detection
    std::atomic<bool> StopRequested{false};
};
