// Being asked to end: by a person at the terminal or by the system.
#pragma once

// From now on such a request is kept for stopAsked instead of ending the program at once. A second one, of
// whatever kind, before the program has ended, ends it as the system would. The end of a terminal that the
// program was started to outlive is no such request. Calling it again changes nothing. Any thread.
void stopWatch();

// Whether somebody asked since stopWatch. Once true it stays so. Any thread; never blocks.
bool stopAsked();
