// Lines on standard input, read beside the program's work.
#pragma once

#include <string>
#include <vector>

// Begins to read. The reading never ends by itself: a program that uses this leaves by std::_Exit.
void simStandardInputStart();

// The lines that have come since the last call.
std::vector<std::string> simStandardInputLines();
