// An exception as Windows hands it to a handler.
#pragma once

#include "platform/crash.h"

#include <windows.h>

struct crashEvent {
    EXCEPTION_POINTERS& Pointers;
};

// What such a record says, in our own words. A chained one is not followed.
crashRecord crashRecordFrom(const EXCEPTION_RECORD& record);
