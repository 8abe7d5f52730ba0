// What stands between a message about a crash and its reader.
#pragma once

// The connection to the display by which this program holds the mouse, so that nobody else gets it; -1 when
// it does not. A message ends that connection first.
void crashMouseHeldBy(int connection);
