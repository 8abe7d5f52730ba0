// The system's debug help library, which one thread at a time may use.
#pragma once

// Whether the calling thread has it, between its crashSymbolsStart and crashSymbolsEnd.
bool crashSymbolsMine();
