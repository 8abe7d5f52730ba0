// A window that lays out one page as the main form does, and what was drawn of it.
#pragma once

#include "forms/gnssUI.h"
#include "foundations/text/utfLocale.h"
#include "tests/forms/pageDrawn.h"
#include "tests/toolkit/toolkitTest.h"
#include "toolkit/ctrlEdit_Angle.h"
#include "toolkit/ctrlEdit_Date.h"
#include "toolkit/ctrlEdit_Time.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlGrid.h"
#include "toolkit/ctrlLabel.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

// A page that shows its inside.
template <class Page>
class openPage : public Page
{
public:
    using Page::AltitudeEdit;
    using Page::DateEdit;
    using Page::DateLabel;
    using Page::Decoder;
    using Page::HDOPEdit;
    using Page::LatitudeEdit;
    using Page::LongitudeEdit;
    using Page::Page;
    using Page::PDOPEdit;
    using Page::SeaLevelEdit;
    using Page::SignalsMax;
    using Page::SpeedEdit;
    using Page::TimeEdit;
    using Page::TimeLabel;
    using Page::TrackEdit;
    using Page::VDOPEdit;
    using Page::VisSats;

    void Paint() override
    {
        ++Paints;
        Page::Paint();
    }
    unsigned Paints = 0;
};

// Gives the page all of its room but a margin, whose size is that of the toolkit.
class pageHost : public ctrlWindow
{
public:
    static constexpr int32_t Margin = 4;

    using ctrlWindow::ctrlWindow;

    void Layout() override
    {
        if (!Page)
            return;
        Page->Layout();
        Page->Move(Margin, Margin, Width(), Height() > Margin * 2 ? Height() - Margin * 2 : 1);
    }
    gnss::UI* Page = nullptr;
};

class pageTest : public toolkitTest
{
protected:
    static constexpr int32_t HostX = 100;
    static constexpr int32_t HostY = 100;
    static constexpr uint32_t HostWidth = 1400;
    static constexpr uint32_t HostHeight = 900;
    static constexpr uint32_t PlainDPI = 96;

    void SetUp() override
    {
        toolkitTest::SetUp();
        utfLocale.DecimalPoint = ".";
        utfLocale.DateSeparator = "/";
        utfLocale.TimeSeparator = ":";
    }
    void TearDown() override
    {
        toolkitTest::TearDown();
        utfLocaleFill();
    }

    // A page in its window, painted once. The window goes when the test ends.
    template <class Page>
    Page* Made(double scale = 1.0)
    {
        fakeScreenDPI(static_cast<uint32_t>(PlainDPI * scale));
        Host = new pageHost(nullptr, HostX, HostY, HostWidth, HostHeight, ctrlPerMonitor);
        auto* page = new Page(Host, 0);
        Host->Page = page;
        return page;
    }
    void Show(ctrlWindow* page)
    {
        page->Show();
        Host->Show();
        Toolkit().Windows().SetFocus(Host->Handle());
        Toolkit().PumpPending();
    }
    template <class Page>
    Page* Shown(double scale = 1.0)
    {
        Page* page = Made<Page>(scale);
        Show(page);
        return page;
    }

    // What a control writes when it is painted anew, with all that is in it.
    static std::vector<pageDrawn> Written(ctrlWindow* control)
    {
        Toolkit().PumpPending();
        control->Invalidate(true);
        return pageTextsOf(Drawn({"text"}));
    }
    static std::vector<std::string> Words(const std::vector<pageDrawn>& texts)
    {
        std::vector<std::string> words;
        words.reserve(texts.size());
        for (const pageDrawn& one : texts)
            words.push_back(one.Text);
        return words;
    }
    static pageDrawn Find(const std::vector<pageDrawn>& texts, const std::string& text)
    {
        const auto found = std::find_if(texts.begin(), texts.end(),
                                        [&text](const pageDrawn& one) { return one.Text == text; });
        EXPECT_NE(found, texts.end()) << text;
        return found == texts.end() ? pageDrawn{} : *found;
    }

    static rect AreaOf(const ctrlWindow* control)
    {
        return {control->X(), control->Y(), control->X() + static_cast<int32_t>(control->Width()),
                control->Y() + static_cast<int32_t>(control->Height())};
    }
    static std::vector<ctrlWindow*> VisibleChildren(const ctrlWindow* parent)
    {
        std::vector<ctrlWindow*> children;
        for (ctrlWindow* child = parent->FirstChild(); child; child = child->NextSibling()) {
            if (child->HasState(stateVisible))
                children.push_back(child);
        }
        return children;
    }
    static void ExpectNothingOverlaps(const ctrlWindow* parent)
    {
        const std::vector<ctrlWindow*> children = VisibleChildren(parent);
        const rect room{0, 0, static_cast<int32_t>(parent->Width()), static_cast<int32_t>(parent->Height())};
        for (size_t i = 0; i < children.size(); ++i) {
            EXPECT_FALSE(AreaOf(children[i]).IsEmpty()) << children[i]->Name();
            EXPECT_TRUE(rectCovers(room, AreaOf(children[i]))) << children[i]->Name() << " sticks out";
            for (size_t k = i + 1; k < children.size(); ++k)
                EXPECT_FALSE(rectMeet(AreaOf(children[i]), AreaOf(children[k])))
                    << children[i]->Name() << " lies on " << children[k]->Name();
        }
    }

    // Labels that the page paints itself stand on free ground, and within it.
    static void ExpectLabelsAreFree(ctrlWindow* page, const std::string& oneOfThem)
    {
        const std::vector<pageDrawn> texts = Written(page);
        const unsigned target = Find(texts, oneOfThem).Target;
        const rect room{0, 0, static_cast<int32_t>(page->Width()), static_cast<int32_t>(page->Height())};
        for (const pageDrawn& text : texts) {
            if (text.Target != target)
                continue;
            EXPECT_TRUE(rectCovers(room, text.Area)) << text.Text;
            for (const ctrlWindow* child : VisibleChildren(page))
                EXPECT_FALSE(rectMeet(text.Area, AreaOf(child))) << text.Text << " lies under a control";
        }
    }

    // What a value shows, with its unit.
    static std::string Shows(const ctrlEdit_Val* edit)
    {
        return edit->Name() + " " + edit->Prefix() + edit->Unit();
    }

    // The corner of a control in its window.
    static std::pair<int32_t, int32_t> CornerOf(const ctrlWindow* control)
    {
        int32_t x = HostX;
        int32_t y = HostY;
        for (const ctrlWindow* at = control; at && !at->Handle(); at = at->Parent()) {
            x += at->X();
            y += at->Y();
        }
        return {x, y};
    }
    static void Click(const ctrlWindow* control, int32_t x = 5, int32_t y = 5)
    {
        const auto [left, top] = CornerOf(control);
        fakeMouseMove(left + x, top + y);
        Toolkit().PumpPending();
        fakeMousePress();
        fakeMouseRelease();
        Toolkit().PumpPending();
    }
    static void Turn(const ctrlWindow* control, int32_t delta)
    {
        const auto [left, top] = CornerOf(control);
        fakeMouseMove(left + 5, top + 5);
        fakeMouseWheel(delta);
        Toolkit().PumpPending();
    }
    static void Type(const std::string& text)
    {
        fakeType(text);
        Toolkit().PumpPending();
    }
    static void Press(uint32_t key)
    {
        fakeKeyPress(key);
        Toolkit().PumpPending();
    }

    pageHost* Host = nullptr;
};
