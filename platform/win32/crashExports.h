// The names that the program's own file exports.
#pragma once

#include "platform/crash.h"

// The exported function that an address lies in. False when it lies in none: also behind one, in a function
// without a name.
bool crashExportAt(uint64_t address, crashSymbol& symbol);
