// Making and ending the main form.
#include "forms/gnssComm_UI.h"

#include "forms/gnssUI.h"
#include "link/serialPortList.h"
#include "toolkit/ctrlButton.h"
#include "toolkit/ctrlComboBox.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlLabel.h"

#include <utility>
#include <vector>

namespace {

constexpr unsigned leftText = textLeft | textTop | textBottom;
constexpr unsigned rightText = textRight | textTop | textBottom;
constexpr uint32_t firstWidth = 330;
constexpr uint32_t firstHeight = 76;
constexpr uint64_t longestAddress = 255;
constexpr int64_t lastPort = 65535;
constexpr uint64_t noRow = ~uint64_t{0};

std::vector<std::string> presentPorts()
{
    std::vector<std::string> names;
    for (const serialPortInfo& one : serialPortList()) {
        // One that two classes of devices report is still one.
        if (names.empty() || names.back() != one.port)
            names.push_back(one.port);
    }
    return names;
}

}  // namespace

gnssComm::UI::UI(ctrlWindow* parent, const char* root, const char* section, const char* subsection,
                 uint32_t flags)
    : ctrlForm(parent, 0, 0, firstWidth, firstHeight, flags | ctrlPerMonitor)
{
    Caption("Skyreckoning");
    FrameStyle(frameResize, frameMaximise | frameMaximiseToo | frameMinimise);
    LoadSettings(root, section, subsection);
    MakeHead();
    MakeSerialRow();
    MakeNetworkRow();
    StatusLabel = AddLabel("", leftText, false);
    Separator = new ctrlWindow(this, 0);
    Separator->BorderStyle(ctrlBorder::Sunken);
    Separator->BorderWidth(1);
    Separator->Show();
    ListenToControls();
    ListenToLink();
    ListenToNetwork();
}

gnssComm::UI::~UI()
{
    StateSet(stateClosing);
    SaveSettings();
    StopRun();
    Client.Disconnect(true);
    Server.Stop(true);
}

void gnssComm::UI::LoadSettings(const char* root, const char* section, const char* subsection)
{
    Store.Root = root;
    Store.Section = section;
    Store.Subsection = subsection;
    Store.LoadList(Settings);
    PlacementLoad(Store);
    PageHeight = Height();
}

void gnssComm::UI::SaveSettings()
{
    // What is being typed counts.
    ServerPortEdit->Commit();
    ServerPortSetting.Value = static_cast<int32_t>(ServerPortEdit->ValueGetI());
    AddressSetting.Value = AddressEdit->Name();
    Store.SaveList(Settings);
    PlacementSave(Store);
}

// --- Controls

ctrlLabel* gnssComm::UI::AddLabel(const char* text, unsigned textFlags, bool measures)
{
    return new ctrlLabel(this, text, textFlags, measures ? uint32_t{ctrlMeasure} : 0U);
}

void gnssComm::UI::MakeHead()
{
    RoleLabel = AddLabel("Connection", rightText, true);
    RoleBox = new ctrlComboBox(this, ctrlMeasure);
    RoleBox->ComboAdd("Serial port");
    RoleBox->ComboAdd("Network");
    if (HasFlag(formEmbedded))
        RoleBox->ComboAdd("Embedded");
    RoleBox->ComboSelect(RoleSetting.Value, 0);
    ProtocolCaption = AddLabel("GNSS receiver protocol:", rightText, true);
    ProtocolLabel = AddLabel("---", leftText, false);
    if (HasFlag(formAbout))
        AboutButton = new ctrlButton(this, "About", ctrlMeasure);
    if (HasFlag(formHelp))
        HelpButton = new ctrlButton(this, buttonGlyph::Question, 0);
    for (ctrlWindow* one : std::initializer_list<ctrlWindow*>{RoleLabel, RoleBox, ProtocolCaption,
                                                              ProtocolLabel, AboutButton, HelpButton}) {
        if (one)
            one->Show();
    }
}

void gnssComm::UI::MakeSerialRow()
{
    PortBox = new ctrlComboBoxDynamic(this, ctrlMeasure, presentPorts);
    PortBox->ComboSelect(PortSetting.Value, noRow);
    ServerButton = new ctrlButton(this, "Server", ctrlMeasure);
    ServerButton->Kind(buttonKind::Toggle);
    ServerButton->Checked(ServerOnSetting.Value);
    ServerOn = ServerOnSetting.Value;
    ServerPortLabel = AddLabel("Port", rightText, true);
    ServerPortEdit = new ctrlEdit_Val(this, ctrlEditInteger);
    ServerPortEdit->Range(int64_t{0}, lastPort);
    ServerPortEdit->Value(int64_t{ServerPortSetting.Value});
    ClientsLabel = AddLabel("", rightText, true);
}

void gnssComm::UI::MakeNetworkRow()
{
    AddressLabel = AddLabel("Address", rightText, true);
    AddressEdit = new ctrlEdit_Text(this, 0, 0, 1, 1, 0);
    AddressEdit->MaxLength(longestAddress);
    AddressEdit->EditText(AddressSetting.Value);
    ConnectButton = new ctrlButton(this, "Connect", 0);
    ConnectButton->Kind(buttonKind::Toggle);
}

void gnssComm::UI::ListenToControls()
{
    RoleBox->OnChange = [this] { Start(); };
    PortBox->OnChange = [this] {
        PortSetting.Value = PortBox->Name();
        Reconnect(false);
    };
    ServerButton->OnClick = [this] { ApplyServer(); };
    ConnectButton->OnClick = [this] { ConnectClicked(); };
    AddressEdit->OnEnter = [this] {
        if (ConnectButton->Checked())
            return;
        ConnectButton->Checked(true);
        ConnectClicked();
    };
    const auto notify = [this](unsigned code) {
        return [this, code] {
            if (OnNotify)
                OnNotify(code);
        };
    };
    if (AboutButton)
        AboutButton->OnClick = notify(notifyAbout);
    if (HelpButton)
        HelpButton->OnClick = notify(notifyHelp);
}

// --- From other threads

void gnssComm::UI::PostHere(std::function<void()> task)
{
    Toolkit().Post(
        [this, life = ctrlLife(this), task = std::move(task)] {
            if (life && !HasState(stateClosing))
                task();
        },
        true);
}

void gnssComm::UI::PostOfRun(std::function<void()> task)
{
    PostHere([this, run = RunNumber.load(), task = std::move(task)] {
        if (run == RunNumber)
            task();
    });
}

void gnssComm::UI::ListenToLink()
{
    Comm.OnDetectedGNSS = [this] { PostOfRun([this] { GNSS_OnDetectedGNSS(); }); };
    Comm.OnNewData = [this] { PostOfRun([this] { GNSS_OnNewData(); }); };
    Comm.OnRawData = [this](const std::vector<uint8_t>& block) { Server.Send(block); };
    Comm.OnProbing = [this](const std::string& text) {
        StatusLabel->Caption("Waiting for device reply (" + text + ")...");
    };
}

void gnssComm::UI::ListenToNetwork()
{
    Server.OnCommand = [this](const uint8_t* bytes, size_t count) { Comm.Write(bytes, count); };
    Server.OnClients = [this](unsigned) { CountClients(); };
    Server.OnFailed = [this] { PostHere([this] { ServerFailed(cannotServe); }); };
    Server.OnBroken = [this] { PostHere([this] { ServerFailed(servesNoMore); }); };
    Client.OnStream = [this](const uint8_t* bytes, size_t count) { Comm.Feed(bytes, count); };
    Client.OnWrongServer = [this] { PostHere([this] { WrongServer(); }); };
    Client.OnEvent = [this](const uint32_t& event) { PostHere([this, event] { Client_OnEvent(event); }); };
}
