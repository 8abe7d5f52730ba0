// Other programs, started and ended by this one.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct processHandle;

// The file of the running program, an absolute path, UTF-8. Empty when the system does not tell.
std::string processPath();

// The text that the program was started with, its own name and all arguments, UTF-8. Empty where the system
// hands them over one by one.
std::string processCommandLine();

// Lets standard input give every byte as it came, where the system would take it for text. Once, before the
// first read.
void processInputBytes();

// Starts a program with its arguments, the first of which is its own file; each arrives as it is given here,
// blanks, quotes and all. It inherits the environment and the standard streams, but no file handle. Null when
// it cannot be started.
processHandle* processStart(const std::vector<std::string>& arguments);

// Ends the process at once, without letting it clean up. Harmless on one that has ended.
void processKill(processHandle* process);

// Waits for the end, frees the handle and gives the exit code; -1 for a process that did not end by its own
// will.
int processWait(processHandle* process);
