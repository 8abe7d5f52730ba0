// The main form's roles, and the run of the link with its page.
#include "forms/gnssComm_UI.h"

#include "forms/gnssNMEA_UI.h"
#include "forms/gnssTSIP_UI.h"
#include "forms/gnssUBX_UI.h"
#include "platform/clock.h"
#include "platform/thread.h"
#include "toolkit/ctrlButton.h"
#include "toolkit/ctrlComboBox.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlLabel.h"

#include <initializer_list>
#include <utility>

namespace {

constexpr char roleSerial[] = "Serial port";
constexpr char roleNetwork[] = "Network";
constexpr char roleEmbedded[] = "Embedded";
constexpr uint8_t modelUBX = 6;  // of a receiver that talks NMEA and is a u-blox

constexpr int64_t nsPerMs = 1'000'000;
constexpr int64_t sendWaitMs = 50;
constexpr uint32_t sendStepMs = 2;
constexpr uint32_t boundaryWaitMs = 200;

void showAll(std::initializer_list<ctrlWindow*> controls, bool shown)
{
    for (ctrlWindow* one : controls)
        shown ? one->Show() : one->Hide();
}

}  // namespace

// --- The run

void gnssComm::UI::Status(const std::string& text)
{
    StatusLabel->Caption(text);
    StatusLabel->Show();
}

// The page lets go of its decoder before the link ends it, and what was posted by this run is void.
void gnssComm::UI::StopRun()
{
    if (Page)
        Page->Source(nullptr);
    Comm.Stop();
    ++RunNumber;
    ProtocolLabel->Caption("---");
    RemovePage();
}

void gnssComm::UI::RemovePage()
{
    if (!Page)
        return;
    Page->Source(nullptr);
    ResetButton = nullptr;
    std::exchange(Page, nullptr)->Destroy();
    InvalidateLayout();
}

void gnssComm::UI::Reconnect(bool onlyUBX)
{
    StopRun();
    Comm.UBXOnly = onlyUBX;
    Comm.PortSet(PortBox->Name());
    Start();
}

// --- Roles

bool gnssComm::UI::IsRole(const char* role) const
{
    return RoleBox->Name() == role;
}

// A server that is wanted is wanted again when this role returns.
void gnssComm::UI::LeaveSerial()
{
    showAll({PortBox, ServerButton, ServerPortLabel, ServerPortEdit, ClientsLabel}, false);
    if (!ServerOnSetting.Value || !ServerButton->IsEnabled())
        return;
    ServerButton->Checked(false);
    ApplyServer();
    ServerButton->Checked(true);
    ServerOnSetting.Value = true;
}

void gnssComm::UI::LeaveNetwork()
{
    showAll({AddressLabel, AddressEdit, ConnectButton}, false);
    if (!ConnectButton->Checked())
        return;
    ConnectButton->Checked(false);
    ConnectClicked();
}

void gnssComm::UI::ShowRole()
{
    if (!IsRole(roleSerial))
        LeaveSerial();
    if (!IsRole(roleNetwork))
        LeaveNetwork();
    if (!IsRole(roleEmbedded) && HasFlag(formEmbedded) && (StateClear(stateEmbedded) & stateEmbedded))
        Notify(notifyUnembedded);
    RoleSetting.Value = RoleBox->Name();
    if (IsRole(roleSerial))
        showAll({PortBox, ServerButton, ServerPortLabel, ServerPortEdit, ClientsLabel}, true);
    if (IsRole(roleNetwork))
        showAll({AddressLabel, AddressEdit, ConnectButton}, true);
    InvalidateLayout();
}

bool gnssComm::UI::Start()
{
    const ctrlLife life(this);
    StopRun();
    ShowRole();
    if (!life)
        return false;
    if (IsRole(roleSerial)) {
        UseNetwork(false);
        Comm.PortSet(PortBox->Name());
    } else if (IsRole(roleNetwork)) {
        UseNetwork(true);
        if (!ConnectButton->Checked()) {
            ConnectButton->Checked(true);
            ConnectClicked();
        }
    } else if (HasFlag(formEmbedded) && !(StateSet(stateEmbedded) & stateEmbedded)) {
        Notify(notifyEmbedded);
    }
    if (!life || (!Comm.Start() && !Comm.Network))
        return false;
    Status(waitingForReply);
    return true;
}

void gnssComm::UI::UseNetwork(bool network)
{
    Comm.Network = network;
    Comm.NetSend = nullptr;
    if (network)
        Comm.NetSend = [this](const uint8_t* bytes, size_t count) { Client.Send(bytes, count); };
}

// --- What the link tells

// The page for the decoder that is alive; null for none.
gnss::UI* gnssComm::UI::MakePage(const char*& protocol)
{
    uint8_t found = ProtocolNone;
    {
        const thrSpinHold hold(Comm.Lock);
        found = Comm.Decoder() ? Comm.Protocol.load() : ProtocolNone;
    }
    switch (found) {
    case ProtocolNMEA:
        protocol = "NMEA";
        return new gnssNMEA::UI(this, 0);
    case ProtocolTSIP:
        protocol = "TSIP";
        return new gnssTSIP::UI(this, 0);
    case ProtocolUBX: {
        protocol = "UBX";
        auto* page = new gnssUBX::UI(this, 0);
        if (!Comm.Network)
            page->StyleSet(stylePulseEdit);
        return page;
    }
    default:
        protocol = "Unknown";
        return nullptr;
    }
}

void gnssComm::UI::GNSS_OnDetectedGNSS()
{
    Status("Waiting for device model...");
    RemovePage();
    const char* protocol = nullptr;
    gnss::UI* page = MakePage(protocol);
    ProtocolLabel->Caption(protocol);
    if (!page)
        return;
    {
        const thrSpinHold hold(Comm.Lock);
        page->Source(Comm.Decoder());
    }
    Page = page;
    Page->Show();
    MakeReset();
    InvalidateLayout();
    const ctrlLife life(this);
    Notify(notifyDetected);
    if (life && IsRole(roleSerial))
        ApplyServer();
}

void gnssComm::UI::GNSS_OnNewData()
{
    std::string model;
    {
        const thrSpinHold hold(Comm.Lock);
        if (Page)
            Page->Refresh();
        if (const gnss* decoder = Comm.Decoder())
            model = decoder->ModelName();
        if (Comm.Protocol == ProtocolNMEA && Comm.NMEA && Comm.NMEA->Model == modelUBX)
            PostOfRun([this] { Reconnect(true); });
    }
    Status("Model: " + model);
    Notify(notifyNewData);
}

// --- Reset

void gnssComm::UI::MakeReset()
{
    ResetButton = new ctrlButton(Page, "Reset", ctrlMeasure);
    ResetButton->OnClick = [this] { PostOfRun([this] { ResetClicked(); }); };
    ResetButton->Show();
}

// The decoder resets its receiver at the next boundary between messages. A receiver that is silent stands at
// one already; for one in the middle of a message there is a moment.
void gnssComm::UI::ResetClicked()
{
    Comm.ResetPending = 1;
    const int64_t limit = clockSteadyNs() + sendWaitMs * nsPerMs;
    while (!Comm.WaitSent(false) && clockSteadyNs() < limit)
        threadSleep(sendStepMs);
    Comm.Feed(nullptr, 0);
    threadSleep(boundaryWaitMs);
    Start();
}
