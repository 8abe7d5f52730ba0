// The page of a u-blox receiver, with a decoder behind it that knows its model, and what it sends.
#pragma once

#include "forms/gnssUBX_UI.h"
#include "tests/forms/pageTest.h"
#include "tests/gnss/ubxFrame.h"
#include "toolkit/ctrlButton.h"
#include "toolkit/ctrlGraphSpectrum.h"
#include "toolkit/ctrlPage.h"
#include "toolkit/ctrlSplit.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

class openUBXPage : public openPage<gnssUBX::UI>
{
public:
    using openPage::openPage;
    using UI::DutyEdit;
    using UI::DutyLabel;
    using UI::PPSErrorBox;
    using UI::PPSGraph;
    using UI::PPSHistory;
    using UI::PPSTimeBox;
    using UI::PPSWeekBox;
    using UI::RateEdit;
    using UI::RateLabel;
    using UI::ShownProtVer;
    using UI::SignalBoxes;
    using UI::SpectrumGraphs;
    using UI::SpectrumPatienceMs;
    using UI::SpectrumRest;
    using UI::SpectrumRestMs;
    using UI::Tabs;
    using UI::TDOPBox;
};

class ubxPageTest : public pageTest
{
protected:
    static constexpr std::string_view VersionKeys = "PROTVER=34.10";
    static constexpr std::string_view VersionClassic = "PROTVER=18.00";

    void SetUp() override
    {
        pageTest::SetUp();
        Receiver.OnSend = [this](const uint8_t* bytes, size_t count) {
            Sent.emplace_back(bytes, bytes + count);
        };
    }

    void Feed(const ubxBytes& bytes) { feed(Receiver, bytes); }

    // Lets the receiver be of a model, with nothing left to configure.
    void Identify(unsigned model, std::string_view version = VersionKeys)
    {
        struct row {
            unsigned Model;
            const char* Hardware;
            const char* Module;
        };
        constexpr row rows[] = {
            {7, "00070000", ""},
            {8, "00080000", ""},
            {9, "00190000", ""},
            {10, "00190000", "MOD=NEO-M9N"},
            {11, "00190000", "MOD=ZED-F9R"},
            {12, "000A0000", ""},
            {13, "000A0000", "MOD=MAX-M10S"},
            {14, "000A0000", "MOD=NEO-F10N"},
            {6, "00040001", ""},
        };
        for (const row& one : rows) {
            if (one.Model != model)
                continue;
            ubxFrame frame(0x0A, 0x04);
            Feed(frame.text("EXT CORE", 30).text(one.Hardware, 10).text(version, 30).text(one.Module, 30));
        }
        ASSERT_EQ(Receiver.Model, model);
        Receiver.ConfigState = gnssUBX::State::Idle;
        Sent.clear();
    }

    // A page that shows a receiver of this model.
    openUBXPage* ShownFor(unsigned model, double scale = 1.0, std::string_view version = VersionKeys)
    {
        Identify(model, version);
        Page = Made<openUBXPage>(scale);
        Page->StyleSet(stylePulseEdit);
        Page->Source(&Receiver);
        Show(Page);
        return Page;
    }

    // Gives the configuration a step, and what was sent in it.
    std::vector<ubxBytes> Step()
    {
        Sent.clear();
        Feed(ubxFrame(0x04, 0x02));
        return Sent;
    }

    // TIM-TP with an error in picoseconds.
    static ubxFrame Pulse(int32_t error)
    {
        return ubxFrame(0x0D, 0x01).u4(345600500).u4(0x80000000U).i4(error).u2(2345).u2(0);
    }

    // MON-SPAN of so many blocks, each of one level throughout.
    static ubxFrame SpectrumOf(unsigned blocks, unsigned amplitude = 128, unsigned gain = 10,
                               uint32_t span = 128'000'000, uint32_t centre = 1'575'000'000)
    {
        ubxFrame frame(0x0A, 0x31);
        frame.u1(0).u1(blocks).u2(0);
        for (unsigned block = 0; block < blocks; ++block) {
            for (unsigned bin = 0; bin < 256; ++bin)
                frame.u1(amplitude);
            frame.u4(span).u4(span / 256).u4(centre).u1(gain).zeros(3);
        }
        return frame;
    }

    static ctrlButton* BoxNamed(const openUBXPage* page, const std::string& name)
    {
        for (ctrlButton* box : page->SignalBoxes) {
            if (box->Name() == name)
                return box;
        }
        ADD_FAILURE() << name;
        return page->SignalBoxes[0];
    }
    ctrlButton* Box(const std::string& name) const { return BoxNamed(Page, name); }

    // Those that can be seen, in their order.
    std::vector<std::string> BoxesShown() const
    {
        std::vector<std::string> names;
        for (const ctrlButton* box : Page->SignalBoxes) {
            if (box->HasState(stateVisible))
                names.push_back(box->Name());
        }
        return names;
    }

    static std::vector<float> DataOf(const ctrlGraph::Series& trace)
    {
        return {trace.Data, trace.Data + trace.Count};
    }
    static void ExpectRange(const ctrlGraph::Axis& axis, double least, double most)
    {
        EXPECT_NEAR(axis.Minimum, least, 1e-6 * std::max(1.0, std::fabs(least)));
        EXPECT_NEAR(axis.Maximum, most, 1e-6 * std::max(1.0, std::fabs(most)));
    }

    void SelectTab(size_t index) const
    {
        const rect tab = Page->Tabs->TabBoxes.at(index);
        Click(Page->Tabs, (tab.Left + tab.Right) / 2, (tab.Top + tab.Bottom) / 2);
    }

    std::vector<ubxBytes> Sent;
    gnssUBX Receiver;
    openUBXPage* Page = nullptr;
};
