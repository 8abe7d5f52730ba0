// Settings and ports of these tests are in folders of their own, also when the program is run by hand. They
// are set before there is a second thread, for the environment has no lock.
#include "tests/platform/linux/configuration.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

class ownFolders : public testing::Environment
{
public:
    void SetUp() override
    {
        Configuration = std::make_unique<configurationFolder>();
        const std::filesystem::path runtime = Configuration->Path / "runtime";
        std::filesystem::create_directories(runtime);
        Runtime = std::make_unique<variableSet>("XDG_RUNTIME_DIR", runtime.c_str());
    }
    void TearDown() override
    {
        Runtime.reset();
        Configuration.reset();
    }

private:
    std::unique_ptr<configurationFolder> Configuration;
    std::unique_ptr<variableSet> Runtime;
};

const testing::Environment* const Folders = testing::AddGlobalTestEnvironment(new ownFolders);

}  // namespace
