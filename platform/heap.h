// A private heap: large regions for the checked heap, apart from the run-time library's own memory, so that
// damage done there stays there.
//
// A private heap is not serialised: its user lets one thread at a time into these functions.
#pragma once

#include <cstddef>

struct heapHandle;

// Makes an empty heap. `initial` is how many bytes the system may set aside for it at once; the heap grows
// past that. Null when the system has no memory for it.
heapHandle* heapCreate(size_t initial);

// Takes a region of at least `bytes` bytes, aligned to 16 or better, its content unspecified. Null when the
// memory cannot be had; the heap is unchanged then.
void* heapAllocate(heapHandle* heap, size_t bytes);

// The real size of a region in bytes, never below what was asked for; all of it may be used.
size_t heapSize(heapHandle* heap, const void* region);

// Gives one region back. A region of another heap is a programming error with no defined outcome.
void heapFree(heapHandle* heap, void* region);

// Ends the heap and gives back whatever is still taken from it.
void heapDestroy(heapHandle* heap);
