// The state that all windows share: who they are, the pumps, and the way onto the interface thread.
//
// The interface thread is the one that made the first native window; it pumps. There is one toolkit in the
// program.
#pragma once

#include "foundations/thread/thrSpin.h"
#include "foundations/thread/thrTimer.h"
#include "platform/window.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <vector>

class ctrlWindow;

class ctrlToolkit
{
public:
    ctrlToolkit();
    ctrlToolkit(const ctrlToolkit&) = delete;
    ctrlToolkit& operator=(const ctrlToolkit&) = delete;

    // Deletes the windows that are left, then the cursors.
    ~ctrlToolkit();

    windowSystem& Windows() { return *System; }

    // True also while there is no window. Any thread.
    bool IsInterfaceThread() const;

    // Runs a closure on the interface thread: later with `async`, else before the return. Called there
    // without `async`, or while there is no window, it runs at once. Closures that run later keep the order
    // in which their thread gave them, and those that are waited for overtake them; one is lost only when the
    // system has no room for it, or with the last window. While a thread waits for its closure the interface
    // thread must not wait for that thread. Any thread.
    void Post(std::function<void()> closure, bool async);

    // Handles what is in the queue, and returns when it is empty. False when the system is gone, and what was
    // in the queue will never come. Interface thread.
    bool PumpPending();

    // Handles one message, waiting for it if told to. False when there was none, or will never be one again:
    // the last window is gone, or the system is.
    bool PumpOne(bool wait);

    // --- For controls

    // Takes over the timer, of which there is one. `tick` runs on its thread, and must not wait for this one.
    // Who has the timer loses it to the next who takes or stops it, and is told by `lost`. Interface thread.
    void TimerTake(uint32_t milliseconds, std::function<void()> tick, std::function<void()> lost = {});
    void TimerStop();

    // --- For ctrlWindow

    // A frame that the toolkit itself is asking for, which the system must not correct.
    struct pendingFrame {
        windowEdges Frame{};
        bool UnderWay = false;
    };

    // What the mouse did last, so that a move to where it is already is dropped.
    struct mouseMove {
        const ctrlWindow* Window = nullptr;
        int32_t X = 0, Y = 0;
        bool operator==(const mouseMove&) const = default;
    };

    void Add(ctrlWindow* window);
    void Remove(ctrlWindow* window);
    bool HasWindows() const;
    std::vector<ctrlWindow*> WindowList() const;  // in the order of their making; interface thread

    // A native window is gone: closures that were on their way to it go to another.
    void Rescue(windowId gone);

    void DeferDelete(ctrlWindow* window);
    void ForgetDeferred(ctrlWindow* window);
    void SweepDeferred();
    void SweepSoon();  // where the end of what deletions waited for is no message

    void RunPosted(const windowMessage& message);
    cursorId Cursor(unsigned id);  // of 1 to 13, made on first use

    mutable thrSpin Lock;   // the window list and all sibling lists; held for moments, never over a call out
    windowArea WorkArea{};  // of the desktop, read once
    thrTimer Timer;         // its period may be changed while it is held
    ctrlWindow* Focused = nullptr;
    bool FocusMoving = false;  // the toolkit itself is moving the system's focus
    int32_t MouseX = 0;        // the last routed position, in the target's coordinates
    int32_t MouseY = 0;
    uint8_t CursorId = 0;
    mouseMove LastMove;
    ctrlWindow* MouseOver = nullptr;  // who heard of the mouse last; null when that one is gone
    pendingFrame Pending;
    uint32_t HighSurrogate = 0;
    float Scale = 1.0F;  // of the window that is being painted

private:
    struct posted {
        std::function<void()> Closure;
        windowId Target = 0;
        uint64_t Serial = 0;
    };

    windowId FirstWindow() const;
    void Sweep();
    void PostLater(std::function<void()> closure);
    void AskRun(uint64_t serial, windowId target);
    std::list<posted> TakeDue(windowId window);

    std::unique_ptr<windowSystem> System;
    std::function<void()> TimerLost;
    std::atomic<uint64_t> InterfaceThread{0};
    std::vector<ctrlWindow*> WindowsAll;
    std::vector<ctrlWindow*> Deferred;
    std::list<posted> Posted;  // on their way, under Lock, as are the two below
    uint64_t LastSerial = 0;
    uint64_t Owed = 0;  // of Posted, those that no message will come for
    std::array<cursorId, 14> Cursors{};
    bool WorkAreaKnown = false;
};

ctrlToolkit& Toolkit();
