#include "platform/shell.h"

#include "tests/fakes/core.h"

bool shellOpen(const std::string& target)
{
    return !fakes::enter("shellOpen", target).Scripted && shellTargetIsValid(target);
}

bool shellHelp(const std::string& path)
{
    return !fakes::enter("shellHelp", path).Scripted && shellTargetIsValid(path);
}
