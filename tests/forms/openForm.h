// The main form, with its inside to look at.
#pragma once

#include "forms/gnssComm_UI.h"

class openForm final : public gnssComm::UI
{
public:
    using UI::AboutButton;
    using UI::AddressEdit;
    using UI::Client;
    using UI::ClientsLabel;
    using UI::Comm;
    using UI::ConnectButton;
    using UI::HelpButton;
    using UI::Page;
    using UI::PortBox;
    using UI::ProtocolLabel;
    using UI::ResetButton;
    using UI::RoleBox;
    using UI::RunNumber;
    using UI::Server;
    using UI::ServerButton;
    using UI::ServerOnSetting;
    using UI::ServerPortEdit;
    using UI::StatusLabel;
    using UI::UI;
};
