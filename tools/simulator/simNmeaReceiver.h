// Receivers that speak NMEA 0183 alone.
#pragma once

#include "tools/simulator/simCore.h"
#include "tools/simulator/simNmeaEpoch.h"
#include "tools/simulator/simNmeaText.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

// Hears the first band of all systems. Obeys one command: to start anew.
class simNmeaReceiver : public simCore
{
public:
    explicit simNmeaReceiver(const simOptions& options) : simCore(options) {}

protected:
    void PowerUp() override { Parser = {}; }
    void OnBytes(std::span<const uint8_t> fromHost) override;
    void OnEpoch(const simEpoch& epoch) override;
    bool Hears(simSystem system, const simSignal& signal) const override;

    virtual void OnCommand(const std::vector<std::string_view>& fields);

    void SendText(std::string_view text, kind why) { Send(simBytesOf(text), why); }
    void SendSentences(std::string_view text);

private:
    simNmeaParser Parser;
};

// A receiver by NVS: tells its accuracy in a sentence of its own, and can be asked and told.
class simNvsReceiver final : public simNmeaReceiver
{
public:
    explicit simNvsReceiver(const simOptions& options) : simNmeaReceiver(options)
    {
        simNvsReceiver::PowerUp();
    }

protected:
    void PowerUp() override;
    void OnEpoch(const simEpoch& epoch) override;
    void OnCommand(const std::vector<std::string_view>& fields) override;
    bool Knows(simSystem system, uint8_t svid) const override;

private:
    void SetRates(const std::vector<std::string_view>& fields);

    // Every how many solutions a sentence is sent; 0 is never.
    std::map<std::string, unsigned> Rates;
    unsigned Solutions = 0;
};
