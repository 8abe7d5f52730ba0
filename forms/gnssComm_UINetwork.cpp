// The main form's server for others, and its own connection to one.
#include "forms/gnssComm_UI.h"

#include "forms/uiMessage.h"
#include "toolkit/ctrlButton.h"
#include "toolkit/ctrlComboBox.h"
#include "toolkit/ctrlEdit.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlLabel.h"

namespace {

constexpr char failureTitle[] = "Connection failure";

}  // namespace

// --- The server

void gnssComm::UI::ApplyServer()
{
    const bool on = ServerButton->Checked();
    ServerOnSetting.Value = on;
    ServerOn = on;
    if (on) {
        ServerPortEdit->Commit();
        Server.Start(static_cast<uint16_t>(ServerPortEdit->ValueGetI()));
    } else {
        Server.Stop(false);
    }
    CountClients();
    PortBox->Enable(!on);
    ServerPortEdit->Enable(!on);
}

void gnssComm::UI::ServerFailed(const char* text)
{
    // One that was ended meanwhile has nothing to tell.
    if (!ServerOn)
        return;
    Server.Stop(false);
    ServerButton->Checked(false);
    ServerOn = false;
    ServerOnSetting.Value = false;
    PortBox->Enable(true);
    ServerPortEdit->Enable(true);
    CountClients();
    uiMessage::Execute(static_cast<ctrlForm*>(this), failureTitle, text);
}

// Any thread.
void gnssComm::UI::CountClients()
{
    const thrSpinHold hold(CountLock);
    std::string text;
    if (ServerOn) {
        const unsigned count = Server.Clients();
        text = count == 0 ? "No clients" : count == 1 ? "1 client" : std::to_string(count) + " clients";
    }
    ClientsLabel->Caption(text);
}

// --- The client

void gnssComm::UI::GiveUp()
{
    ConnectButton->Checked(false);
    ConnectButton->Caption("Connect");
    AddressEdit->Enable(true);
}

void gnssComm::UI::ConnectClicked()
{
    const std::string address = AddressEdit->Name();
    if (address.empty()) {
        GiveUp();
        Client.Disconnect(false);
        return;
    }
    const bool on = ConnectButton->Checked();
    AddressEdit->Enable(!on);
    if (on) {
        ConnectButton->Caption("Connecting");
        Client.Connect(address);
    } else {
        Client.Disconnect(false);
        ConnectButton->Caption("Connect");
    }
}

void gnssComm::UI::Client_OnEvent(uint32_t event)
{
    const bool wanted = ConnectButton->Checked();
    const bool retries = Client.Link.RetryMs != 0;
    if (event == netTCPCli::EventConnected) {
        if (!wanted)
            return;
        ConnectButton->Caption("Disconnect");
        Client.Link.SetKeepAlive(false, 0);
        StopRun();
        Comm.Start();
        Status(waitingForReply);
        return;
    }
    if (event != netTCPCli::EventFailed && event != netTCPCli::EventDisconnected)
        return;
    const bool failed = event == netTCPCli::EventFailed;
    const bool givenUp = !retries && (wanted || !failed);
    const ctrlLife life(this);
    if (failed && wanted && !retries)
        uiMessage::Execute(static_cast<ctrlForm*>(this), failureTitle,
                           "Failed while trying to connect to the server");
    if (!life || HasState(stateClosing))
        return;
    if (givenUp)
        GiveUp();
    else
        ConnectButton->Caption("Connecting");
    if (Comm.Network) {
        StopRun();
        Status(givenUp ? "" : waitingForReply);
    }
}

void gnssComm::UI::WrongServer()
{
    Client.Disconnect(false);
    uiMessage::Execute(static_cast<ctrlForm*>(this), failureTitle, "Unsupported server type!");
}
