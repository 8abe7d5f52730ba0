// The main form: the receiver's connection, in one of its roles, and the page of what was recognised.
//
// All on the interface thread. What the link and the network tell comes from their threads and is only posted
// here; what a run has posted does nothing once that run was stopped.
#pragma once

#include "foundations/settings/settingsItem.h"
#include "foundations/settings/settingsReg.h"
#include "link/gnssComm.h"
#include "link/gnssCommClient.h"
#include "link/gnssCommServer.h"
#include "toolkit/ctrlForm.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>

class ctrlButton;
class ctrlComboBox;
class ctrlComboBoxDynamic;
class ctrlEdit_Text;
class ctrlEdit_Val;
class ctrlLabel;

// Creation flags of the form.
enum : uint32_t {
    formAbout = 0x100,
    formHelp = 0x200,
    formEmbedded = 0x400,  // offers the role of a copy in another program, which gives the bytes
};

// Codes that the form gives to OnNotify.
enum : unsigned {
    notifyAbout = 5,
    notifyDetected = 6,
    notifyEmbedded = 7,    // this role was entered
    notifyUnembedded = 8,  // and left
    notifyHelp = 9,
    notifyNewData = 10,
};

class gnssComm::UI : public ctrlForm
{
public:
    // The texts name the place of the settings; see settingsReg.
    UI(ctrlWindow* parent, const char* root, const char* section, const char* subsection, uint32_t flags);
    ~UI() override;

    void Layout() override;

    // Applies the role that is chosen; a run that is on ends first. False when the serial port cannot be
    // opened.
    bool Start();

    // Of this form, and as long as it. In the role "Embedded" its Feed takes the receiver's bytes, from one
    // thread at a time.
    gnssComm& Link() { return Comm; }

private:
    static constexpr uint32_t stateEmbedded = 0x8000;
    static constexpr char waitingForReply[] = "Waiting for device reply...";
    static constexpr char cannotServe[] = "Cannot start the server for allowing remote control!";
    static constexpr char servesNoMore[] = "The server for allowing remote control has ended!";

    // --- Making
    ctrlLabel* AddLabel(const char* text, unsigned textFlags, bool measures);
    void MakeHead();
    void MakeSerialRow();
    void MakeNetworkRow();
    void ListenToControls();
    void ListenToLink();
    void ListenToNetwork();
    void LoadSettings(const char* root, const char* section, const char* subsection);
    void SaveSettings();

    // Runs on the interface thread, unless the form is gone or about to go.
    void PostHere(std::function<void()> task);
    void PostOfRun(std::function<void()> task);  // or the run is over

    // --- The run of the link
    void StopRun();  // with the page, and what the protocol was
    void RemovePage();
    void Reconnect(bool onlyUBX);
    bool IsRole(const char* role) const;
    void ShowRole();
    void LeaveSerial();
    void LeaveNetwork();
    void UseNetwork(bool network);
    void GNSS_OnDetectedGNSS();
    void GNSS_OnNewData();
    gnss::UI* MakePage(const char*& protocol);
    void MakeReset();
    void ResetClicked();
    void Status(const std::string& text);

    // --- Server and client
    void ApplyServer();
    void ServerFailed(const char* text);
    void CountClients();
    void ConnectClicked();
    void GiveUp();
    void Client_OnEvent(uint32_t event);
    void WrongServer();

    // --- Layout
    struct place;
    void PlaceHead(const place& here);
    void PlaceSerial(const place& here);
    void PlaceNetwork(const place& here);
    void Limit(int32_t pageTop);
    void BackInSight();

protected:
    settingsList Settings;
    settingsItemText RoleSetting{&Settings, "Connection"};
    settingsItemText PortSetting{&Settings, "Serial port"};
    settingsItemInt ServerPortSetting{&Settings, "Server port", pktPort};
    settingsItemBool ServerOnSetting{&Settings, "Server enabled", false};
    settingsItemText AddressSetting{&Settings, "TCP address"};
    settingsReg Store;

    ctrlLabel* RoleLabel = nullptr;
    ctrlComboBox* RoleBox = nullptr;
    ctrlLabel* ProtocolCaption = nullptr;
    ctrlLabel* ProtocolLabel = nullptr;
    ctrlButton* AboutButton = nullptr;
    ctrlButton* HelpButton = nullptr;
    ctrlComboBoxDynamic* PortBox = nullptr;
    ctrlButton* ServerButton = nullptr;
    ctrlLabel* ServerPortLabel = nullptr;
    ctrlEdit_Val* ServerPortEdit = nullptr;
    ctrlLabel* ClientsLabel = nullptr;
    ctrlLabel* AddressLabel = nullptr;
    ctrlEdit_Text* AddressEdit = nullptr;
    ctrlButton* ConnectButton = nullptr;
    ctrlLabel* StatusLabel = nullptr;
    ctrlWindow* Separator = nullptr;
    gnss::UI* Page = nullptr;
    ctrlButton* ResetButton = nullptr;  // on the page

    uint32_t PageHeight = 0;  // of the form when it last had a page
    bool HadPage = false;     // at the last layout

    std::atomic<uint32_t> RunNumber{0};  // of the run that is on
    std::atomic<bool> ServerOn{false};   // what the count of clients asks, on any thread
    thrSpin CountLock;                   // one count is shown after the other
    gnssComm Comm;
    gnssCommServer Server;
    gnssCommClient Client;
};
