// The one road by which this program ends itself: a fault that only a defect in the program can cause.
#pragma once

#include <string_view>

// Tells the debugger why, with a line end added unless the text ends in one, and executes a breakpoint. An
// empty text, or one that starts with a line end, is not written; the breakpoint comes all the same. It
// returns only when a debugger lets the program go on, so callers still leave their state whole. Any thread;
// allocates nothing, takes no lock.
void crashFatal(std::string_view text);
