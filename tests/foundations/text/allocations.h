// Counts what this test program takes from the heap.
#pragma once

#include <cstddef>

// How often operator new was called since the program began.
size_t allocations();
