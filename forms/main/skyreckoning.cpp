// The program's entry.
#include "forms/arguments.h"
#include "forms/gnssComm_UI.h"
#include "forms/help.h"
#include "forms/uiAbout.h"
#include "forms/uiMessage.h"
#include "foundations/crash/crashHandler.h"
#include "platform/crash.h"
#include "platform/process.h"
#include "resources/icon/programIcon.h"

#include <cstdio>

namespace {

constexpr char programName[] = "Skyreckoning";
constexpr char programVersion[] = "1.0.5.5";
constexpr char settingsRoot[] = "Software\\Vintermark\\Skyreckoning";
constexpr char manual[] = "Skyreckoning.chm";
constexpr char aboutNote[] = "Monitor for GNSS receivers";
constexpr char noWindow[] = "No window can be opened: there is no display, or it lets nobody in.";
constexpr char displayLost[] = "The display is gone; the settings were saved where they could be.";
constexpr uint8_t receiverMode = 3;  // of a receiver that stands or moves anywhere up to airborne

// Before every other object that has to be made, and after all of them at the end.
[[gnu::init_priority(200)]] const crashHandler crashReports(programVersion);

void showAbout(ctrlForm* form)
{
    auto* about =
        new uiAbout(form, programName, programVersion, uiAboutWeb, uiAboutWeb, uiAboutMail, aboutNote);
    about->Icon(form->Icon());
    about->Modal(true);
}

void setReceiverMode(gnssComm& link)
{
    const thrSpinHold hold(link.Lock);
    if (gnss* decoder = link.Decoder())
        decoder->ReceiverModeSet(receiverMode);
}

bool notified(gnssComm::UI* form, unsigned code)
{
    switch (code) {
    case notifyAbout:
        showAbout(form);
        return true;
    case notifyDetected:
        setReceiverMode(form->Link());
        return true;
    case notifyHelp:
        Help(manual, form);
        return true;
    default:
        return false;
    }
}

// What main is given went through the system's code page where there is one text for all arguments.
std::vector<std::string> given(int count, char** words)
{
    const std::string line = processCommandLine();
    return line.empty() ? std::vector<std::string>(words, words + count) : argumentsSplit(line);
}

iconId makeIcon()
{
    const iconId own = Toolkit().Windows().ProgramIcon();
    return own ? own : Toolkit().Windows().MakeIcon(programIcon());
}

void complain(const char* text)
{
    for (const char* const piece : {programName, ": ", text, "\n"})
        std::fputs(piece, stderr);
}

// Until the form is gone, or its display.
void run(gnssComm::UI* form)
{
    const ctrlLife life(form);
    form->OnNotify = [form](unsigned code) { return notified(form, code); };
    form->Icon(makeIcon());
    form->Show();
    form->Centre();
    form->Start();
    while (Toolkit().PumpOne(true)) {
    }
    if (!life)
        return;
    // Nobody has closed it, and what it keeps and holds is to be left in order all the same.
    delete life.Window();
    complain(displayLost);
}

}  // namespace

int main(int count, char** words)
{
    const char* caption = nullptr;
    const char* text = nullptr;
    if (crashMessageOf(count, words, caption, text)) {
        uiMessage::Execute(static_cast<ctrlForm*>(nullptr), caption, text);
        return 0;
    }
    crashTellByProgram();

    argumentsKeep(given(count, words));
    auto* form = new gnssComm::UI(nullptr, settingsRoot, "", "", formAbout | formHelp);
    if (!form->Handle()) {
        delete form;
        complain(noWindow);
        return 1;
    }
    run(form);
    return 0;
}
