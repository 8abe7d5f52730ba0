// A handler that one thread raises while another may replace it.
//
// It runs under the event's lock: when the one who replaced it goes on, the handler before does not run and
// will not run again. So a handler must not replace itself, nor wait for a thread that may be replacing it.
#pragma once

#include "foundations/thread/thrSpin.h"

#include <functional>

template <class Signature>
class gnssEvent;

template <class... Arguments>
class gnssEvent<void(Arguments...)>
{
public:
    // Any thread. What the handler before held is let go of behind the lock.
    gnssEvent& operator=(std::function<void(Arguments...)> handler)
    {
        const thrSpinHold hold(Lock);
        Handler.swap(handler);
        return *this;
    }

    explicit operator bool() const
    {
        const thrSpinHold hold(Lock);
        return Handler != nullptr;
    }

    // Nothing when there is no handler.
    void operator()(Arguments... arguments) const
    {
        const thrSpinHold hold(Lock);
        if (Handler)
            Handler(arguments...);
    }

private:
    mutable thrSpin Lock;
    std::function<void(Arguments...)> Handler;
};
