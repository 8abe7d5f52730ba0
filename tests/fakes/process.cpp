#include "platform/process.h"

#include "tests/fakes/core.h"
#include "tests/fakes/fakes.h"

#include <memory>

struct processHandle {
    int ExitCode;
};

namespace {

constexpr int NoExitCode = -1;

struct processState {
    int NextExit = 0;
    std::map<const processHandle*, std::unique_ptr<processHandle>> Running;
};

processState& state()
{
    static processState& only = *new processState;
    return only;
}

std::string joined(const std::vector<std::string>& arguments)
{
    std::string text;
    for (const std::string& argument : arguments)
        text += (text.empty() ? "" : " ") + argument;
    return text;
}

}  // namespace

void fakes::resetProcess()
{
    state() = {};
}

std::string processPath()
{
    return fakes::ask("processPath").Scripted ? std::string() : "/fake/program";
}

std::string processCommandLine()
{
    return {};
}

void processInputBytes()
{
    fakes::record("processInputBytes", {});
}

processHandle* processStart(const std::vector<std::string>& arguments)
{
    if (fakes::enter("processStart", joined(arguments)).Scripted || arguments.empty())
        return nullptr;
    const std::lock_guard lock(fakes::stateMutex());
    auto process = std::make_unique<processHandle>(processHandle{state().NextExit});
    state().NextExit = 0;
    processHandle* const key = process.get();
    state().Running[key] = std::move(process);
    return key;
}

void processKill(processHandle*)
{
    // Each has ended by the time it is killed, which is harmless.
    fakes::enter("processKill");
}

int processWait(processHandle* process)
{
    const bool scripted = fakes::enter("processWait").Scripted;
    const std::lock_guard lock(fakes::stateMutex());
    const auto found = state().Running.find(process);
    if (found == state().Running.end())
        fakes::misuse("a wait for what is no process");
    const int code = scripted ? NoExitCode : found->second->ExitCode;
    state().Running.erase(found);
    return code;
}

void fakeProcessExit(int code)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().NextExit = code;
}
