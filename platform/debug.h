// The debugger, and the program's own memory seen from outside.
//
// Nothing here allocates or takes a lock: these functions serve reports that are written while the program is
// already broken.
#pragma once

#include <cstddef>
#include <string_view>

// Shows a text (UTF-8) to the developer: on Windows in the attached debugger, on Linux on standard error with
// CR LF written as LF. Any thread. A text that nobody listens for is lost; nothing is added to it.
void debugWrite(std::string_view text);

// Whether a debugger is attached to this process now. Any thread; false when the system does not tell.
bool debugAttached();

// Executes a breakpoint on the calling thread. Without a debugger this ends the process by the system's own
// road for an unhandled breakpoint; it returns only when a debugger lets the program go on.
void debugBreak();

// Copies `bytes` bytes of the program's own memory at `address` to `target`, also while that memory is
// damaged or gone: false, with `target` unspecified, when any of it cannot be read. Any thread; safe in a
// crash.
bool debugRead(const void* address, void* target, size_t bytes);
