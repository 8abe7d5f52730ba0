// The way onto the interface thread.
#include "toolkit/ctrlToolkit.h"
#include "toolkit/ctrlWindow.h"

#include <algorithm>
#include <iterator>
#include <utility>

windowId ctrlToolkit::FirstWindow() const
{
    const auto found = std::find_if(WindowsAll.begin(), WindowsAll.end(),
                                    [](const ctrlWindow* window) { return window->Handle() != 0; });
    return found == WindowsAll.end() ? 0 : (*found)->Handle();
}

void ctrlToolkit::Post(std::function<void()> closure, bool async)
{
    if (!async && IsInterfaceThread()) {
        if (closure)
            closure();
        return;
    }
    if (async) {
        PostLater(std::move(closure));
        return;
    }
    windowId target = 0;
    {
        const thrSpinHold hold(Lock);
        target = FirstWindow();
    }
    bool done = false;
    const std::function<void()> noting = [&closure, &done] {
        done = true;
        if (closure)
            closure();
    };
    if (!target)
        noting();
    // The window may go before it hears of it; then the next one is asked.
    while (target && !done) {
        System->Send(target, msgApp, 1, reinterpret_cast<int64_t>(&noting));
        const thrSpinHold hold(Lock);
        const windowId next = FirstWindow();
        target = next == target ? 0 : next;
    }
}

void ctrlToolkit::PostLater(std::function<void()> closure)
{
    std::list<posted> one;
    one.push_back({std::move(closure), 0, 0});
    uint64_t serial = 0;
    windowId target = 0;
    {
        // In one hold, so that a window that goes takes along or hands over all that is on its way to it.
        const thrSpinHold hold(Lock);
        target = FirstWindow();
        serial = ++LastSerial;
        one.front().Target = target;
        one.front().Serial = serial;
        if (target)
            Posted.splice(Posted.end(), one);
    }
    if (target)
        AskRun(serial, target);
    else if (one.front().Closure)
        one.front().Closure();
}

// Sends the message that a closure is due.
void ctrlToolkit::AskRun(uint64_t serial, windowId target)
{
    while (!System->Post(target, msgApp, 0, 0)) {
        std::list<posted> lost;
        const thrSpinHold hold(Lock);
        const auto own = std::find_if(Posted.begin(), Posted.end(),
                                      [serial](const posted& one) { return one.Serial == serial; });
        if (own == Posted.end() || own->Target != target) {
            // It was handed to another window, or ran on a message that was meant for another closure.
            const bool owed = std::any_of(Posted.begin(), Posted.end(),
                                          [target](const posted& one) { return one.Target == target; });
            Owed += owed ? 1 : 0;
            return;
        }
        const windowId next = FirstWindow();
        if (!next || next == target) {
            lost.splice(lost.end(), Posted, own);
            return;
        }
        own->Target = next;
        target = next;
    }
}

// The message says that a closure is due; which one, the list says. So closures keep their order also when
// the window that some were sent to goes and others were sent to the next.
std::list<ctrlToolkit::posted> ctrlToolkit::TakeDue(windowId window)
{
    std::list<posted> due;
    const thrSpinHold hold(Lock);
    if (Posted.empty())
        return due;
    const auto own = std::find_if(Posted.begin(), Posted.end(),
                                  [window](const posted& one) { return one.Target == window; });
    if (own != Posted.end())
        std::swap(own->Target, Posted.front().Target);
    const uint64_t count = std::min<uint64_t>(1 + std::exchange(Owed, 0), Posted.size());
    due.splice(due.end(), Posted, Posted.begin(), std::next(Posted.begin(), static_cast<ptrdiff_t>(count)));
    return due;
}

void ctrlToolkit::RunPosted(const windowMessage& message)
{
    if (message.First == 1) {
        (*reinterpret_cast<const std::function<void()>*>(message.Second))();
        return;
    }
    for (const posted& due : TakeDue(message.Window)) {
        if (due.Closure)
            due.Closure();
    }
}

void ctrlToolkit::Rescue(windowId gone)
{
    std::list<posted> lost;
    std::vector<uint64_t> moved;
    windowId target = 0;
    {
        const thrSpinHold hold(Lock);
        target = FirstWindow();
        if (!target) {
            lost.swap(Posted);
            Owed = 0;
        } else {
            for (posted& one : Posted) {
                if (one.Target != gone)
                    continue;
                one.Target = target;
                moved.push_back(one.Serial);
            }
        }
    }
    for (const uint64_t serial : moved)
        AskRun(serial, target);
}
