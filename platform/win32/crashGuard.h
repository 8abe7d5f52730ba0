// The steps that run under crashGuarded, as those who meet their exceptions see them.
#pragma once

#include "platform/crash.h"

#include <windows.h>

// What has to be there before the first guard. Once it is, it stays: other threads may be inside a guard.
void crashGuardPrepare();

// When the calling thread is inside a guard and the exception is a fault, has the thread go on behind the
// guard as soon as the handler continues the execution. False when the exception is somebody else's.
bool crashGuardTakes(EXCEPTION_POINTERS& pointers);

// Goes on behind the calling thread's innermost guard with that exception. Returns when there is no guard.
void crashGuardLeave(const crashRecord& record);
