// The page of a receiver that speaks TSIP, with a decoder behind it that knows its model.
#pragma once

#include "forms/gnssTSIP_UI.h"
#include "tests/forms/pageTest.h"
#include "tests/gnss/tsipPacket.h"

#include <string>
#include <vector>

class openTSIPPage : public openPage<gnssTSIP::UI>
{
public:
    using openPage::openPage;
    using UI::BiasRateEdit;
    using UI::ClockBiasEdit;
    using UI::DecodeStatusEdit;
    using UI::PPSErrorEdit;
    using UI::RXModeEdit;
    using UI::TDOPEdit;
    using UI::TemperatureEdit;
    using UI::UTCOffsetEdit;
    using UI::WeekEdit;
    using UI::WeekTimeEdit;
};

// 8F-AC.
struct supplemental {
    unsigned Mode = 7;
    unsigned Survey = 42;
    unsigned Status = 0;
    unsigned Decoding = 0;
    float Bias = 0;
    float Rate = 0;
    float Temperature = 0;
    float PPS = 0;

    operator std::string() const  // NOLINT(google-explicit-constructor): it is a packet.
    {
        return tsip(0x8F, 0xAC)
            .u1(Mode)
            .zeros(1)
            .u1(Survey)
            .zeros(6)
            .u2(Status)
            .u1(Decoding)
            .zeros(3)
            .r4(Bias)
            .r4(Rate)
            .zeros(8)
            .r4(Temperature)
            .r8(0.5)
            .r8(-0.25)
            .r8(545.25)
            .r4(PPS)
            .zeros(5);
    }
};

class tsipPageTest : public pageTest
{
protected:
    void SetUp() override
    {
        pageTest::SetUp();
        Receiver.Model = 5;
        Receiver.Ident = gnssTSIP::Identification::Known;
    }

    openTSIPPage* ShownPage(double scale = 1.0)
    {
        Page = Shown<openTSIPPage>(scale);
        Page->Source(&Receiver);
        Toolkit().PumpPending();
        return Page;
    }
    void Feed(const std::string& stream)
    {
        Listener.Feed(stream);
        Page->Refresh();
    }

    decoderListener<gnssTSIP> Listener;
    gnssTSIP& Receiver = Listener.Receiver;
    openTSIPPage* Page = nullptr;
};
