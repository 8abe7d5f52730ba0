// What tests of crashes share.
#pragma once

#include "platform/crash.h"

#include <vector>
#include <windows.h>

// An exception of our own, which `resuming` goes on behind.
constexpr uint32_t OwnCode = 0xE0001234;

// Has all exceptions reported, or noted, that come while it lives.
class watched
{
public:
    watched();
    explicit watched(crashReporter reporter);
    ~watched();
    watched(const watched&) = delete;
    watched& operator=(const watched&) = delete;

    // What was noted, each before those that it was chained from.
    const std::vector<crashRecord>& Seen() const;
};

// Goes on behind exceptions of our own code while it lives, as the last of the handlers.
class resuming
{
public:
    resuming();
    ~resuming();
    resuming(const resuming&) = delete;
    resuming& operator=(const resuming&) = delete;

private:
    PVOID Handler;
};

// Wine keeps what a thread asked for only when its stack's last page is set anew; on Windows this changes
// nothing.
void KeepStackForReport();

// Calls what is not there.
void CallNowhere();
