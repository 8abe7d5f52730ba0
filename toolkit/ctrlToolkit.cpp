#include "toolkit/ctrlToolkit.h"

#include "platform/clock.h"
#include "platform/thread.h"
#include "toolkit/ctrlCursors.h"
#include "toolkit/ctrlWindow.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <utility>

namespace {

// A paint that was asked for longer ago than this goes before anything that waits in the queue: a system
// sends msgPaint only when nothing else waits, and posts may come faster than they are handled.
constexpr int64_t paintPatienceNs = 50'000'000;

std::string className()
{
    constexpr int64_t nanosecondsPerMillisecond = 1'000'000;
    char text[64];
    std::snprintf(text, sizeof text, "VM_Window_ClassName_%016" PRIX64,
                  static_cast<uint64_t>(clockSteadyNs() / nanosecondsPerMillisecond));
    return text;
}

}  // namespace

ctrlToolkit::ctrlToolkit() : System(windowSystemMake(className(), &ctrlWindow::Receive)) {}

ctrlToolkit::~ctrlToolkit()
{
    while (!WindowsAll.empty())
        delete WindowsAll.front();
    for (const cursorId cursor : Cursors) {
        if (cursor)
            System->DestroyCursor(cursor);
    }
}

bool ctrlToolkit::IsInterfaceThread() const
{
    return !HasWindows() || InterfaceThread.load() == threadId();
}

bool ctrlToolkit::HasWindows() const
{
    const thrSpinHold hold(Lock);
    return !WindowsAll.empty();
}

std::vector<ctrlWindow*> ctrlToolkit::WindowList() const
{
    const thrSpinHold hold(Lock);
    return WindowsAll;
}

void ctrlToolkit::Add(ctrlWindow* window)
{
    {
        const thrSpinHold hold(Lock);
        if (WindowsAll.empty())
            InterfaceThread = threadId();
        WindowsAll.push_back(window);
    }
    if (!WorkAreaKnown) {
        WorkArea = System->DesktopWorkArea();
        WorkAreaKnown = true;
    }
}

void ctrlToolkit::Remove(ctrlWindow* window)
{
    bool last = false;
    {
        const thrSpinHold hold(Lock);
        std::erase(WindowsAll, window);
        last = WindowsAll.empty();
    }
    if (last)
        TimerStop();
}

void ctrlToolkit::Sweep()
{
    const int64_t now = clockSteadyNs();
    std::vector<ctrlLife> overdue;
    for (const ctrlWindow* window : WindowList()) {
        if (window->IsPaintOverdue(now - paintPatienceNs))
            overdue.emplace_back(window);
    }
    for (const ctrlLife& life : overdue) {
        if (life)
            life.Window()->PaintOverdue();
    }
}

bool ctrlToolkit::PumpPending()
{
    windowMessage message;
    for (;;) {
        Sweep();
        const windowTake take = System->Peek(message);
        if (take != windowTake::Taken)
            return take != windowTake::Failed;
        System->Dispatch(message);
    }
}

bool ctrlToolkit::PumpOne(bool wait)
{
    Sweep();
    windowMessage message;
    const windowTake take = wait && HasWindows() ? System->Wait(message) : System->Peek(message);
    if (take != windowTake::Taken)
        return false;
    System->Dispatch(message);
    return true;
}

void ctrlToolkit::DeferDelete(ctrlWindow* window)
{
    if (std::find(Deferred.begin(), Deferred.end(), window) == Deferred.end())
        Deferred.push_back(window);
}

void ctrlToolkit::ForgetDeferred(ctrlWindow* window)
{
    std::erase(Deferred, window);
}

void ctrlToolkit::SweepDeferred()
{
    for (;;) {
        const auto ready = std::find_if(Deferred.begin(), Deferred.end(),
                                        [](const ctrlWindow* window) { return window->MayBeDeleted(); });
        if (ready == Deferred.end())
            return;
        ctrlWindow* window = *ready;
        Deferred.erase(ready);
        delete window;
    }
}

void ctrlToolkit::SweepSoon()
{
    if (!Deferred.empty())
        Post([] {}, true);
}

void ctrlToolkit::TimerTake(uint32_t milliseconds, std::function<void()> tick, std::function<void()> lost)
{
    TimerStop();
    TimerLost = std::move(lost);
    Timer.OnTick = std::move(tick);
    Timer.Period = milliseconds;
    Timer.Start();
}

void ctrlToolkit::TimerStop()
{
    Timer.Stop();
    if (const std::function<void()> lost = std::exchange(TimerLost, {}))
        lost();
}

cursorId ctrlToolkit::Cursor(unsigned id)
{
    if (id == 0 || id >= Cursors.size())
        return 0;
    if (!Cursors[id])
        Cursors[id] = ctrlCursorMake(*System, id);
    return Cursors[id];
}
