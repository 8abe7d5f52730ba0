#include "tests/platform/native/child.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace {

constexpr size_t OwnArguments = 4;  // the program and the three that choose the test

}  // namespace

processHandle* childStart(const std::string& name, const std::vector<std::string>& arguments)
{
    std::vector<std::string> all = {processPath(), "--gtest_filter=DISABLED_child." + name,
                                    "--gtest_also_run_disabled_tests", "--gtest_brief=1"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    // A busy system refuses one now and then.
    constexpr int Attempts = 5;
    constexpr std::chrono::milliseconds Pause(100);
    processHandle* process = processStart(all);
    for (int attempt = 1; process == nullptr && attempt < Attempts; ++attempt) {
        std::this_thread::sleep_for(Pause);
        process = processStart(all);
    }
    return process;
}

int childRun(const std::string& name, const std::vector<std::string>& arguments)
{
    processHandle* const process = childStart(name, arguments);
    return process == nullptr ? -1 : processWait(process);
}

std::vector<std::string> childArguments()
{
    const std::vector<std::string> all = testing::internal::GetInjectableArgvs();
    return {all.begin() + OwnArguments, all.end()};
}

void childEnd(bool good)
{
    std::_Exit(good ? ChildGood : 1);
}

void childStay()
{
    std::this_thread::sleep_for(std::chrono::minutes(1));
    childEnd(false);
}
