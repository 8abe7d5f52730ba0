#include "platform/registry.h"

#include "tests/platform/contract.h"
#include "tests/platform/native/child.h"

namespace {

class registryNative : public contractTest
{
protected:
    void TearDown() override { registryDeleteTree(ContractKey); }
};

constexpr unsigned Values = 20;

CHILD_TEST(WritesItsValues)
{
    registryKey* const key = registryCreate(ContractKey);
    bool good = key != nullptr;
    for (unsigned value = 0; good && value < Values; value++)
        good = registrySet(key, childArguments().at(0) + std::to_string(value), registryType::Dword, &value,
                           sizeof(value));
    registryClose(key);
    childEnd(good);
}

void ExpectValues(registryKey* key, const std::string& prefix)
{
    for (unsigned value = 0; value < Values; value++) {
        registryType type = registryType::Text;
        unsigned stored = 0;
        uint32_t size = sizeof(stored);
        EXPECT_EQ(registryQuery(key, prefix + std::to_string(value), type, &stored, size),
                  registryStatus::Ok);
        EXPECT_EQ(stored, value);
        EXPECT_EQ(type, registryType::Dword);
    }
}

TEST_F(registryNative, LosesNothingWhenProcessesWriteAtOnce)
{
    const std::string prefixes[] = {"one ", "two ", "three ", "four "};
    std::vector<processHandle*> children;
    for (const std::string& prefix : prefixes)
        children.push_back(childStart("WritesItsValues", {prefix}));
    for (processHandle* const child : children) {
        ASSERT_NE(child, nullptr);
        EXPECT_EQ(processWait(child), ChildGood);
    }
    registryKey* const key = registryOpen(ContractKey);
    ASSERT_NE(key, nullptr);
    for (const std::string& prefix : prefixes)
        ExpectValues(key, prefix);
    registryClose(key);
}

}  // namespace
