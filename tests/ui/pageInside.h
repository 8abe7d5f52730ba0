// The controls of a page that somebody else has made, for tests to look at.
#pragma once

#include "forms/gnssNMEA_UI.h"
#include "forms/gnssTSIP_UI.h"
#include "forms/gnssUBX_UI.h"
#include "toolkit/ctrlButton.h"
#include "toolkit/ctrlEdit_Angle.h"
#include "toolkit/ctrlEdit_Date.h"
#include "toolkit/ctrlEdit_Time.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlGraphSpectrum.h"
#include "toolkit/ctrlGrid.h"
#include "toolkit/ctrlLabel.h"
#include "toolkit/ctrlPage.h"

#include <string>
#include <vector>

// Of any page.
struct pageParts : private gnss::UI {
    pageParts() = delete;

    // A member of a page, by its name in this class, which may say it.
    template <class Member>
    static Member Of(gnss::UI* page, Member gnss::UI::*member)
    {
        return page->*member;
    }
    static ctrlLabel* DateCaptionOf(gnss::UI* page) { return Of(page, &pageParts::DateLabel); }
    static ctrlLabel* TimeCaptionOf(gnss::UI* page) { return Of(page, &pageParts::TimeLabel); }
    static ctrlEdit_Date* DateOf(gnss::UI* page) { return Of(page, &pageParts::DateEdit); }
    static ctrlEdit_Time* TimeOf(gnss::UI* page) { return Of(page, &pageParts::TimeEdit); }
    static ctrlEdit_Angle* LatitudeOf(gnss::UI* page) { return Of(page, &pageParts::LatitudeEdit); }
    static ctrlEdit_Angle* LongitudeOf(gnss::UI* page) { return Of(page, &pageParts::LongitudeEdit); }
    static ctrlEdit_Val* AltitudeOf(gnss::UI* page) { return Of(page, &pageParts::AltitudeEdit); }
    static ctrlEdit_Val* SeaLevelOf(gnss::UI* page) { return Of(page, &pageParts::SeaLevelEdit); }
    static ctrlEdit_Val* SpeedOf(gnss::UI* page) { return Of(page, &pageParts::SpeedEdit); }
    static ctrlEdit_Val* HDOPOf(gnss::UI* page) { return Of(page, &pageParts::HDOPEdit); }
    static ctrlEdit_Val* VDOPOf(gnss::UI* page) { return Of(page, &pageParts::VDOPEdit); }
    static ctrlEdit_Val* PDOPOf(gnss::UI* page) { return Of(page, &pageParts::PDOPEdit); }
    static ctrlGrid* SatsOf(gnss::UI* page) { return Of(page, &pageParts::VisSats); }
    static gnss* SourceOf(gnss::UI* page) { return Of(page, &pageParts::Decoder); }
};

struct nmeaParts : private gnssNMEA::UI {
    nmeaParts() = delete;
    template <class Member>
    static Member Of(gnss::UI* page, Member gnssNMEA::UI::*member)
    {
        return static_cast<gnssNMEA::UI*>(page)->*member;
    }
    static ctrlEdit_Text* FixQualityOf(gnss::UI* page) { return Of(page, &nmeaParts::FixQualityEdit); }
};

struct tsipParts : private gnssTSIP::UI {
    tsipParts() = delete;
    template <class Member>
    static Member Of(gnss::UI* page, Member gnssTSIP::UI::*member)
    {
        return static_cast<gnssTSIP::UI*>(page)->*member;
    }
    static ctrlEdit_Val* TDOPOf(gnss::UI* page) { return Of(page, &tsipParts::TDOPEdit); }
    static ctrlEdit_Val* WeekOf(gnss::UI* page) { return Of(page, &tsipParts::WeekEdit); }
    static ctrlEdit_Val* WeekTimeOf(gnss::UI* page) { return Of(page, &tsipParts::WeekTimeEdit); }
    static ctrlEdit_Val* UTCOffsetOf(gnss::UI* page) { return Of(page, &tsipParts::UTCOffsetEdit); }
    static ctrlEdit_Val* ClockBiasOf(gnss::UI* page) { return Of(page, &tsipParts::ClockBiasEdit); }
    static ctrlEdit_Val* TemperatureOf(gnss::UI* page) { return Of(page, &tsipParts::TemperatureEdit); }
    static ctrlEdit_Text* RXModeOf(gnss::UI* page) { return Of(page, &tsipParts::RXModeEdit); }
    static ctrlEdit_Text* DecodeStatusOf(gnss::UI* page) { return Of(page, &tsipParts::DecodeStatusEdit); }
};

struct ubxParts : private gnssUBX::UI {
    ubxParts() = delete;
    template <class Member>
    static Member& Of(gnss::UI* page, Member gnssUBX::UI::*member)
    {
        return static_cast<gnssUBX::UI*>(page)->*member;
    }
    static ctrlEdit_Val* TDOPOf(gnss::UI* page) { return Of(page, &ubxParts::TDOPBox); }
    static ctrlEdit_Val* PPSWeekOf(gnss::UI* page) { return Of(page, &ubxParts::PPSWeekBox); }
    static ctrlEdit_Val* PPSTimeOf(gnss::UI* page) { return Of(page, &ubxParts::PPSTimeBox); }
    static ctrlEdit_Val* PPSErrorOf(gnss::UI* page) { return Of(page, &ubxParts::PPSErrorBox); }
    static ctrlPage* TabsOf(gnss::UI* page) { return Of(page, &ubxParts::Tabs); }
    static ctrlGraphWave* PPSGraphOf(gnss::UI* page) { return Of(page, &ubxParts::PPSGraph); }
    static ctrlEdit_Val* RateOf(gnss::UI* page) { return Of(page, &ubxParts::RateEdit); }
    static ctrlEdit_Val* DutyOf(gnss::UI* page) { return Of(page, &ubxParts::DutyEdit); }
    static std::vector<ctrlGraphSpectrum*>& SpectraOf(gnss::UI* page)
    {
        return Of(page, &ubxParts::SpectrumGraphs);
    }

    // The check box of a signal; null for a name that no box has. Some boxes have the same name: the first.
    static ctrlButton* BoxOf(gnss::UI* page, const std::string& name)
    {
        for (ctrlButton* box : Of(page, &ubxParts::SignalBoxes)) {
            if (box->Name() == name && box->HasState(stateVisible))
                return box;
        }
        return nullptr;
    }
    static std::vector<ctrlButton*> BoxesOf(gnss::UI* page)
    {
        const auto& all = Of(page, &ubxParts::SignalBoxes);
        return {all.begin(), all.end()};
    }
};
