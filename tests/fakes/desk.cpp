#include "tests/fakes/desk.h"

#include "tests/fakes/core.h"

#include <algorithm>

namespace {

// Never destroyed, for static objects may call the platform after the end of main.
fakes::deskState& state()
{
    static fakes::deskState& only = *new fakes::deskState;
    return only;
}

int32_t scaled(int32_t pixels, uint32_t dpi)
{
    return static_cast<int32_t>((static_cast<int64_t>(pixels) * dpi + 48) / 96);
}

struct border {
    int32_t Side;
    int32_t Top;
};

border borderOf(const fakes::window& of, uint32_t dpi)
{
    constexpr int32_t Side = 8;
    constexpr int32_t Top = 31;
    if ((of.Style & stylePopup) != 0)
        return {0, 0};
    return {scaled(Side, dpi), scaled(Top, dpi)};
}

}  // namespace

namespace fakes {

desk::desk() : Lock(stateMutex()) {}

deskState* desk::operator->() const
{
    return &state();
}

window* desk::Find(windowId id) const
{
    const auto found = state().Windows.find(id);
    return found == state().Windows.end() ? nullptr : &found->second;
}

void desk::Forget(windowId id) const
{
    deskState& all = state();
    all.Windows.erase(id);
    std::erase(all.Order, id);
    for (windowId* holder : {&all.Active, &all.Focus, &all.Capture}) {
        if (*holder == id)
            *holder = 0;
    }
    const auto isFor = [id](const queueRow& row) { return !row.Action && row.Message.Window == id; };
    std::erase_if(all.Queue, isFor);
    all.Posted = static_cast<size_t>(
        std::count_if(all.Queue.begin(), all.Queue.end(), [](const queueRow& row) { return row.Posted; }));
    for (const std::shared_ptr<sentMessage>& sent : all.Sent)
        sent->Done = sent->Done || sent->Message.Window == id;
    std::erase_if(all.Sent, [](const std::shared_ptr<sentMessage>& sent) { return sent->Done; });
    deskChanged().notify_all();
}

int desk::Layer(windowId id, windowId raised) const
{
    const window* found = Find(id);
    const bool isTopmost = found && found->Topmost;
    bool isOwned = false;
    for (const window* each = found; each && !isOwned; each = Find(each->Made.Owner))
        isOwned = each->Made.Owner == raised;
    return (isTopmost ? 2 : 0) + (isOwned ? 1 : 0);
}

std::condition_variable& deskChanged()
{
    static std::condition_variable& only = *new std::condition_variable;
    return only;
}

void resetWindow()
{
    for (const std::shared_ptr<sentMessage>& sent : state().Sent)
        sent->Done = true;
    state() = deskState{};
    deskChanged().notify_all();
}

windowMessage deskMessage(windowId window, uint32_t number, uint64_t first, int64_t second)
{
    constexpr int64_t NsPerMs = 1'000'000;
    const desk desk;
    return {.Window = window,
            .Number = number,
            .First = first,
            .Second = second,
            .Time = static_cast<uint32_t>(clockNow().Now / NsPerMs),
            .ScreenX = desk->MouseX,
            .ScreenY = desk->MouseY};
}

void deskRequireInterface()
{
    const desk desk;
    const bool isKnown = desk->Interface != std::thread::id();
    if (isKnown && desk->Interface != std::this_thread::get_id())
        misuse("windows belong to the interface thread");
}

windowEdges deskClient(const window& of)
{
    if (of.State == sizedMinimised)
        return {of.Frame.Left, of.Frame.Top, of.Frame.Left, of.Frame.Top};
    const border border = borderOf(of, of.DPI);
    const windowEdges client{of.Frame.Left + border.Side, of.Frame.Top + border.Top,
                             of.Frame.Right - border.Side, of.Frame.Bottom - border.Side};
    return {client.Left, client.Top, std::max(client.Left, client.Right),
            std::max(client.Top, client.Bottom)};
}

windowEdges deskFrame(const window& of, const windowEdges& client, uint32_t dpi)
{
    const border border = borderOf(of, dpi);
    return {client.Left - border.Side, client.Top - border.Top, client.Right + border.Side,
            client.Bottom + border.Side};
}

int64_t deskTell(windowId window, uint32_t number, uint64_t first, int64_t second)
{
    return deskTell(deskMessage(window, number, first, second));
}

int64_t deskTell(const windowMessage& message)
{
    windowReceiver receiver = nullptr;
    {
        const desk desk;
        const window* target = desk.Find(message.Window);
        if (target)
            receiver = target->Receiver;
    }
    return receiver ? receiver(message) : 0;
}

void deskQueue(queueAction action)
{
    const desk desk;
    desk->Queue.push_back({.Action = std::move(action)});
    deskChanged().notify_all();
}

}  // namespace fakes
