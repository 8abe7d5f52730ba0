// Whether the table of satellites looks as it should: it is drawn again by the test, in the place of the
// page, and both pictures are compared pixel by pixel.
#pragma once

#include "tests/ui/expected.h"

#include <string>
#include <vector>

class ctrlGrid;

// Empty when there is no difference; else where it is. The table must not change meanwhile.
std::string gridDifference(ctrlGrid* grid, const std::vector<expected::satRow>& rows);
