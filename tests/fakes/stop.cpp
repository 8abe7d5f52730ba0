// Here nobody is asked to end but by the script: fakeFail("stopAsked") stands for the request.
#include "platform/stop.h"

#include "tests/fakes/core.h"

void stopWatch()
{
    fakes::enter("stopWatch");
}

bool stopAsked()
{
    return fakes::ask("stopAsked").Scripted;
}
