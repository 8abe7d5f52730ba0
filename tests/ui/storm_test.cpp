// A storm of users: whatever they do, in whatever order, while everything arrives as fast as it can.
//
// How many seconds it takes is in SKY_STORM_SECONDS, and with which seed in SKY_STORM_SEED.
#include "platform/clock.h"
#include "tests/link/native/machine.h"
#include "tests/ui/host.h"
#include "tests/ui/pageInside.h"
#include "tests/ui/uiTest.h"
#include "toolkit/ctrlEdit.h"

#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

constexpr unsigned defaultSeconds = 10;

unsigned NumberIn(const char* variable, unsigned otherwise)
{
    const char* text = std::getenv(variable);
    return text == nullptr ? otherwise : static_cast<unsigned>(std::atoi(text));
}

class stormUi : public uiTest
{
public:
    // Each step is one of these, chosen at random.
    using step = void (stormUi::*)();

    unsigned Below(unsigned limit) { return static_cast<unsigned>(Random() % limit); }

    static constexpr simModel Models[] = {simModel::NeoM9N, simModel::NeoF10N, simModel::M8,
                                          simModel::Acutime, simModel::NMEA};

    void PlaceReceiver()
    {
        const unsigned port = Below(road::Most());
        simOptions options;
        options.Model = Models[Below(std::size(Models))];
        options.Rate = 10 + Below(16);
        options.Seed = Below(1000);
        options.NMEA = Below(8) == 0;
        Receivers[port].reset();
        Receivers[port].emplace(options, port);
        Plugged[port] = true;
    }
    void PullOrPlug()
    {
        // A cable that was pulled is looked for first.
        unsigned port = Below(road::Most());
        for (unsigned other = 0; other < road::Most(); ++other)
            port = Plugged[other] ? port : other;
        Plugged[port] ? Receivers[port]->Unplug() : Receivers[port]->Plug();
        Plugged[port] = !Plugged[port];
    }
    void ChangePort()
    {
        if (Program.Form->PortBox->IsEnabled())
            Program.ChoosePort(Receivers[Below(road::Most())]->Port());
    }
    void ChangeRole() { Program.ChooseRole(Below(3) == 0 ? "Network" : "Serial port"); }
    void Reset()
    {
        if (Program.Form->ResetButton)
            Program.Form->ResetButton->Click();
    }
    void ToggleServer()
    {
        Program.SetServerPort(Port);
        if (Program.Form->ServerButton->HasState(stateVisible))
            program::Press(Program.Form->ServerButton);
    }
    void ClientComesOrGoes()
    {
        if (Second.Form)
            Second.Close();
        else
            Second.OpenClient("127.0.0.1:" + std::to_string(Port));
    }
    void ConnectOrNot()
    {
        if (Second.Form)
            program::Press(Second.Form->ConnectButton);
    }
    void TurnTabs()
    {
        for (const program* one : {&Program, &Second}) {
            if (!one->Form || !one->Form->Page || one->Protocol() != "UBX")
                continue;
            ctrlPage* tabs = ubxParts::TabsOf(one->Form->Page);
            tabs->SetCurrent(tabs->PageCount - 1 - (Below(4) == 0 ? tabs->PageCount - 1 : 0));
        }
    }
    void ClickBox()
    {
        for (const program* one : {&Program, &Second}) {
            if (one->Form && one->Form->Page && one->Protocol() == "UBX")
                program::Press(ubxParts::BoxesOf(one->Form->Page)[Below(19)]);
        }
    }
    void ChangeHeight()
    {
        if (Program.Form->Page)
            Program.Form->Height(400 + Below(500));
    }
    void MakeAnew()
    {
        Program.Close();
        Program.Open();
        Program.ChoosePort(Receivers[0]->Port());
    }
    void Watch()
    {
        const unsigned turns = 1 + Below(100);
        for (unsigned turn = 0; turn < turns; ++turn)
            letPass();
    }

    // What holds at every moment.
    void Check() const
    {
        for (const program* one : {&Program, &Second}) {
            if (!one->Form)
                continue;
            ASSERT_EQ(one->Form->Page != nullptr, one->Form->ResetButton != nullptr);
            ASSERT_EQ(one->Form->Page != nullptr, one->Protocol() != "---") << one->Protocol();
            if (!one->Form->Page)
                continue;
            ASSERT_NE(pageParts::SourceOf(one->Form->Page), nullptr);
            ASSERT_TRUE(one->Status().starts_with("Model: ") ||
                        one->Status().starts_with("Waiting for device"))
                << one->Status();
        }
    }

    void Calm()
    {
        Second.Close();
        for (unsigned port = 0; port < road::Most(); ++port) {
            if (!Plugged[port])
                Receivers[port]->Plug();
        }
        Program.Close();
        Receivers[0].reset();
        Receivers[0].emplace(simModel::NeoM9N, 0);
        Program.Store("Connection", std::string("Serial port"));
        Program.OpenAt(Receivers[0]->Port());
        if (Program.Form->ServerButton->Checked())
            program::Press(Program.Form->ServerButton);
        EXPECT_TRUE(comes([&] { return Program.Shows("u-blox Neo-M9N", "UBX"); })) << Program.Status();
    }

    std::mt19937 Random;
    const uint16_t Port = freePort();
    std::optional<receiver> Receivers[2];
    bool Plugged[2] = {};
    program Second;
    boxReader Boxes;
};

TEST_F(stormUi, TheProgramStandsThroughAnything)
{
    if (!road::BearsHaste())
        GTEST_SKIP() << "painting takes too long here for data that come so fast";
    struct stepRow {
        const char* Name;
        step Do;
        unsigned Weight;
    };
    constexpr stepRow Steps[] = {
        {"receiver", &stormUi::PlaceReceiver, 1},
        {"cable", &stormUi::PullOrPlug, 3},
        {"port", &stormUi::ChangePort, 2},
        {"role", &stormUi::ChangeRole, 2},
        {"reset", &stormUi::Reset, 1},
        {"server", &stormUi::ToggleServer, 4},
        {"client", &stormUi::ClientComesOrGoes, 3},
        {"connect", &stormUi::ConnectOrNot, 2},
        {"tabs", &stormUi::TurnTabs, 8},
        {"box", &stormUi::ClickBox, 5},
        {"height", &stormUi::ChangeHeight, 3},
        {"anew", &stormUi::MakeAnew, 1},
        {"watch", &stormUi::Watch, 24},
    };
    unsigned weights = 0;
    for (const stepRow& row : Steps)
        weights += row.Weight;
    // The system's own threads and files come with the first window.
    Program.Open();
    Program.Close();
    const size_t threads = livingThreads();
    const size_t files = openDescriptors();

    const unsigned seed = NumberIn("SKY_STORM_SEED", 1);
    Random.seed(seed);
    // A sanitizer ends the program where it stands, so what it takes to do the same again is told before.
    std::printf("storm of seed %u\n", seed);
    std::fflush(stdout);
    Program.Open();
    for (unsigned port = 0; port < road::Most(); ++port) {
        Receivers[port].emplace(Models[port], port);
        Plugged[port] = true;
    }
    const int64_t end =
        clockSteadyNs() + int64_t{NumberIn("SKY_STORM_SECONDS", defaultSeconds)} * 1'000'000'000;
    unsigned steps = 0;
    unsigned pages = 0;
    while (clockSteadyNs() < end) {
        unsigned choice = Below(weights);
        const stepRow* row = Steps;
        while (choice >= row->Weight)
            choice -= (row++)->Weight;
        (this->*row->Do)();
        letPass();
        ++steps;
        pages += Program.Form->Page ? 1 : 0;
        ASSERT_NO_FATAL_FAILURE(Check()) << "step " << steps << ", " << row->Name << ", of seed " << seed;
    }
    std::printf("%u steps, %u of them with a page\n", steps, pages);
    EXPECT_GT(pages, steps / 10) << "there was something to storm at";
    Calm();
    Program.Close();
    Receivers[0].reset();
    Receivers[1].reset();
    EXPECT_TRUE(comes([&] { return livingThreads() == threads; })) << livingThreads() << " of " << threads;
    EXPECT_EQ(openDescriptors(), files);
}

}  // namespace
