#include "tests/ui/program.h"

#include "platform/thread.h"
#include "tests/platform/screen/screenInput.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace {

constexpr char failureTitle[] = "Connection failure";
constexpr uint8_t receiverMode = 3;  // as the entry asks for

std::string FreshRoot()
{
    static unsigned last = 0;
    return "Software\\Vintermark\\Skyreckoning ui test\\" + std::to_string(++last);
}

void SetReceiverMode(gnssComm& link)
{
    const thrSpinHold hold(link.Lock);
    if (gnss* decoder = link.Decoder())
        decoder->ReceiverModeSet(receiverMode);
}

std::vector<ctrlWindow*> OpenBoxes()
{
    std::vector<ctrlWindow*> boxes;
    for (ctrlWindow* window : Toolkit().WindowList()) {
        if (window->Name() == failureTitle && window->HasState(stateVisible))
            boxes.push_back(window);
    }
    return boxes;
}

}  // namespace

// Where a paint asks a receiver for what is painted next there is always one more message.
void letPass()
{
    constexpr int Most = 20;
    for (int count = 0; count < Most && Toolkit().PumpOne(false); ++count) {
    }
    threadSleep(1);
}

// --- The program

program::program() : Root(FreshRoot()) {}

program::~program()
{
    Close();
    registryDeleteTree(Root);
}

void program::Store(const char* name, const std::string& text)
{
    settingsReg store;
    store.Root = Root;
    store.SetText(name, &text, 1);
}

void program::Store(const char* name, int32_t number)
{
    settingsReg store;
    store.Root = Root;
    store.SetInt32(name, &number, 1);
}

void program::Store(const char* name, bool value)
{
    settingsReg store;
    store.Root = Root;
    store.SetBool(name, &value, 1);
}

void program::Open()
{
    Form = new openForm(nullptr, Root.c_str(), "", "", formAbout | formHelp);
    ASSERT_NE(Form->Handle(), windowId{0}) << "there is a screen";
    Form->OnNotify = [form = Form](unsigned code) {
        if (code == notifyDetected)
            SetReceiverMode(form->Link());
        return code == notifyDetected;
    };
    Form->Show();
    Form->Start();
    letPass();
}

void program::OpenAt(const std::string& port)
{
    Open();
    ChoosePort(port);
}

void program::OpenClient(const std::string& address)
{
    Store("Connection", std::string("Network"));
    Store("TCP address", address);
    Open();
}

void program::Close()
{
    delete std::exchange(Form, nullptr);
    letPass();
}

// Not every system lists the ports that tests can have.
void program::ChoosePort(const std::string& port)
{
    if (Form->PortBox->RowFind(port) == Form->PortBox->Rows.size())
        Form->PortBox->ComboAdd(port);
    Form->PortBox->ComboSelect(port, 0);
    Form->PortBox->OnChange();
    letPass();
}

void program::ChooseRole(const std::string& role)
{
    Form->RoleBox->ComboSelect(role, 0);
    Form->RoleBox->OnChange();
    letPass();
}

void program::Press(ctrlButton* button)
{
    if (button->Kind() == buttonKind::Toggle || button->Kind() == buttonKind::ToggleHeld)
        button->Checked(!button->Checked());
    button->Click();
}

void program::SetServerPort(uint16_t port)
{
    Form->ServerPortEdit->Value(int64_t{port});
}

bool program::Shows(std::string_view model, std::string_view protocol) const
{
    return Form->Page && Protocol() == protocol && Status() == "Model: " + std::string(model);
}

// --- Message boxes

// A box runs a pump of its own, so only what is posted can look at it. While there is no window a closure
// runs on the thread that posts it.
boxReader::boxReader() : Alive(std::make_shared<bool>(true))
{
    const auto look = [this, alive = Alive, interface = std::this_thread::get_id()] {
        if (std::this_thread::get_id() == interface && *alive)
            Look();
    };
    Thread = std::jthread([look](const std::stop_token& stop) {
        constexpr uint32_t LookMs = 10;
        while (!stop.stop_requested()) {
            threadSleep(LookMs);
            Toolkit().Post(look, true);
        }
    });
}

boxReader::~boxReader()
{
    *Alive = false;
    Thread.request_stop();
    Thread.join();
}

bool boxReader::IsOpen()
{
    return !OpenBoxes().empty();
}

void boxReader::Look()
{
    for (ctrlWindow* box : OpenBoxes()) {
        Seen.push_back(box->Name());
        if (const auto instead = std::exchange(Instead, nullptr))
            instead();
        else
            box->CloseRequest();
    }
}

windowArea areaOnScreen(const ctrlWindow* control)
{
    int32_t x = 0;
    int32_t y = 0;
    windowArea monitor;
    control->ScreenPoint(x, y, monitor);
    return {x, y, x + static_cast<int32_t>(control->Width()), y + static_cast<int32_t>(control->Height())};
}

// --- The hand

bool clickAt(const ctrlWindow* control, int32_t x, int32_t y)
{
    windowArea area;
    letPass();
    if (!control->IsVisible() || !control->ScreenPoint(x, y, area))
        return false;
    screenMove(x + 1, y);
    screenMove(x, y);
    // Where a system reports an older place of the pointer late, the press must not come before it is told.
    letPass();
    screenPress(screenButton::Left);
    screenRelease(screenButton::Left);
    return true;
}

bool clickOn(const ctrlWindow* control)
{
    return clickAt(control, static_cast<int32_t>(control->Width() / 2),
                   static_cast<int32_t>(control->Height() / 2));
}

bool chooseRow(const ctrlComboBox* box, size_t row)
{
    const ctrlWindow* list = nullptr;
    const auto isOpen = [&list] {
        for (const ctrlWindow* window : Toolkit().WindowList())
            list = window->HasFlag(ctrlTool) && window->HasState(stateVisible) ? window : list;
        return list != nullptr;
    };
    if (!clickUntil(box, isOpen))
        return false;
    const ctrlLife life(list);
    const auto height = static_cast<int32_t>(list->Height() / box->Rows.size());
    letPass();
    const auto clickRow = [&] { return clickAt(list, 10, static_cast<int32_t>(row) * height + height / 2); };
    return doUntil(clickRow, [&] { return !life; });
}

void typeText(std::string_view text)
{
    for (const char character : text)
        screenType(static_cast<char32_t>(character));
}

void pressKey(uint32_t key)
{
    screenKeyDown(key);
    screenKeyUp(key);
}
