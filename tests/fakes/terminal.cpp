#include "platform/terminal.h"

#include "tests/fakes/core.h"

// The fake platform has no terminal.
bool terminalReady()
{
    fakes::ask("terminalReady");
    return false;
}

terminalSize terminalNow()
{
    fakes::ask("terminalNow");
    return {};
}
