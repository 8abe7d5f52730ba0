// Which exceptions are crashes.
#pragma once

#include "platform/crash.h"

// Whether a report is due. Exceptions by which parts of the system and compilers talk to themselves are none.
// Neither are, unless `all`, access violations that the program could go on from and C++ exceptions of other
// makers, when they come from outside the program's own file: those parts catch what they cause.
bool crashCounts(const crashRecord& record, const crashRange& program, bool all);
