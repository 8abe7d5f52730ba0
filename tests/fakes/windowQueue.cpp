#include "tests/fakes/core.h"
#include "tests/fakes/desk.h"
#include "tests/fakes/windowSystem.h"

#include <algorithm>
#include <chrono>
#include <utility>

// Messages that wait, and who waits for them.

namespace fakes {

namespace {

constexpr size_t MostPosted = 10'000;

// Real time: a wait that nothing ends is a test that hangs.
constexpr std::chrono::seconds LongestWait{10};
constexpr std::chrono::seconds LongestSend{60};

std::shared_ptr<sentMessage> nextSent()
{
    const desk desk;
    if (desk->Sent.empty())
        return nullptr;
    std::shared_ptr<sentMessage> sent = desk->Sent.front();
    desk->Sent.pop_front();
    return sent;
}

void handleSent()
{
    while (const std::shared_ptr<sentMessage> sent = nextSent()) {
        const int64_t result = deskTell(sent->Message);
        const desk desk;
        sent->Result = result;
        sent->Done = true;
        deskChanged().notify_all();
    }
}

std::optional<queueRow> nextRow()
{
    const desk desk;
    if (desk->Queue.empty())
        return std::nullopt;
    queueRow row = std::move(desk->Queue.front());
    desk->Queue.pop_front();
    if (row.Posted)
        --desk->Posted;
    return row;
}

bool isToPaint(const window& window)
{
    return window.PaintAsked && window.Visible && window.State != sizedMinimised;
}

windowId nextToPaint()
{
    const desk desk;
    for (const auto& [id, window] : desk->Windows) {
        if (isToPaint(window))
            return id;
    }
    return 0;
}

bool isGone(windowId id)
{
    const desk desk;
    return !desk.Find(id);
}

windowTake look(windowMessage& message)
{
    if (desk()->Lost)
        return windowTake::Failed;
    handleSent();
    while (std::optional<queueRow> row = nextRow()) {
        const std::optional<windowMessage> made = row->Action ? row->Action() : row->Message;
        handleSent();
        if (!made || isGone(made->Window))
            continue;
        message = *made;
        return windowTake::Taken;
    }
    if (const windowId toPaint = nextToPaint()) {
        message = deskMessage(toPaint, msgPaint);
        return windowTake::Taken;
    }
    return windowTake::None;
}

// Sleeps until there is something to look at; false when the program was told to end.
bool sleepUntilSomething()
{
    desk desk;
    const auto isSomething = [&] {
        const bool paints = std::any_of(desk->Windows.begin(), desk->Windows.end(),
                                        [](const auto& row) { return isToPaint(row.second); });
        return desk->Ended || desk->Lost || paints || !desk->Queue.empty() || !desk->Sent.empty();
    };
    if (!deskChanged().wait_for(desk.Lock, LongestWait, isSomething))
        misuse("a wait for a message that does not come");
    return !desk->Ended || !desk->Queue.empty() || !desk->Sent.empty();
}

// The characters that a key press makes overtake what waits.
void addCharacters(const windowMessage& press)
{
    const desk desk;
    const auto found = desk->Characters.find(press.Second);
    if (found == desk->Characters.end())
        return;
    std::u16string units = std::move(found->second);
    desk->Characters.erase(found);
    std::reverse(units.begin(), units.end());
    for (const char16_t unit : units) {
        windowMessage message = press;
        message.Number = msgChar;
        message.First = unit;
        message.Second = 0;
        desk->Queue.push_front({.Message = message});
    }
}

int64_t command(windowId id, uint64_t which)
{
    struct commandRow {
        uint64_t Command;
        windowShow Show;
    };
    constexpr commandRow Shows[] = {
        {commandMinimise, windowShow::Minimise},
        {commandMaximise, windowShow::Maximise},
        {commandRestore, windowShow::Restore},
    };
    if (which == commandClose)
        return deskTell(id, msgClose);
    for (const commandRow& row : Shows) {
        if (row.Command == which)
            deskShow(id, row.Show);
    }
    return 0;
}

int64_t followSuggestion(const windowMessage& message)
{
    const auto* frame = reinterpret_cast<const windowEdges*>(static_cast<intptr_t>(message.Second));
    if (frame)
        deskPlace(message.Window, *frame, placeKeepOrder | placeNoActivate);
    return 0;
}

}  // namespace

bool scriptedWindows::Post(windowId window, uint32_t number, uint64_t first, int64_t second)
{
    const std::string arguments = std::to_string(window) + ' ' + std::to_string(number);
    if (enter("windowPost", arguments).Scripted)
        return false;
    const windowMessage message = deskMessage(window, number, first, second);
    const desk desk;
    if (!desk.Find(window) || desk->Posted == MostPosted)
        return false;
    ++desk->Posted;
    desk->Queue.push_back({.Message = message, .Posted = true});
    deskChanged().notify_all();
    return true;
}

int64_t scriptedWindows::Send(windowId window, uint32_t number, uint64_t first, int64_t second)
{
    const std::string arguments = std::to_string(window) + ' ' + std::to_string(number);
    if (enter("windowSend", arguments).Scripted)
        return 0;
    const windowMessage message = deskMessage(window, number, first, second);
    const bool isInterface = desk()->Interface == std::this_thread::get_id();
    if (isInterface)
        return deskTell(message);

    const auto sent = std::make_shared<sentMessage>(sentMessage{.Message = message});
    desk desk;
    if (!desk.Find(window))
        return 0;
    desk->Sent.push_back(sent);
    deskChanged().notify_all();
    if (!deskChanged().wait_for(desk.Lock, LongestSend, [&] { return sent->Done; }))
        misuse("nobody takes what was sent");
    return sent->Result;
}

windowTake scriptedWindows::Peek(windowMessage& message)
{
    deskRequireInterface();
    return ask("windowPeek").Scripted ? windowTake::Failed : look(message);
}

windowTake scriptedWindows::Wait(windowMessage& message)
{
    deskRequireInterface();
    if (ask("windowWait").Scripted)
        return windowTake::Failed;
    for (;;) {
        const windowTake take = look(message);
        if (take != windowTake::None)
            return take;
        if (!sleepUntilSomething())
            return windowTake::None;
    }
}

void scriptedWindows::Dispatch(const windowMessage& message)
{
    deskRequireInterface();
    ask("windowDispatch");
    if (message.Number == msgKeyDown)
        addCharacters(message);
    deskTell(message);
}

int64_t scriptedWindows::Default(const windowMessage& message)
{
    constexpr uint64_t CommandMask = 0xFFF0;
    if (!windowEnter("windowDefault", message.Window, std::to_string(message.Number)))
        return 0;
    switch (message.Number) {
    case msgClose:
        deskDestroy(message.Window);
        return 0;
    case msgSysCommand:
        return command(message.Window, message.First & CommandMask);
    case msgCancelMode:
        if (desk()->Capture == message.Window)
            deskCapture(0);
        return 0;
    case msgPaint:
        PaintDone(message.Window);
        return 0;
    case msgGesture:
        GestureClose(message.Second);
        return 0;
    case msgDPIChanged:
        return followSuggestion(message);
    default:
        return 0;
    }
}

void scriptedWindows::AskPaint(windowId id)
{
    if (enter("windowAskPaint", std::to_string(id)).Scripted)
        return;
    const desk desk;
    window* found = desk.Find(id);
    if (found && found->Visible) {
        found->PaintAsked = true;
        deskChanged().notify_all();
    }
}

void scriptedWindows::PaintDone(windowId id)
{
    if (!windowEnter("windowPaintDone", id))
        return;
    const desk desk;
    if (window* found = desk.Find(id))
        found->PaintAsked = false;
}

void scriptedWindows::PaintNow(windowId id)
{
    if (!windowEnter("windowPaintNow", id))
        return;
    {
        const desk desk;
        const window* found = desk.Find(id);
        if (!found || !isToPaint(*found))
            return;
    }
    deskTell(id, msgPaint);
}

}  // namespace fakes
