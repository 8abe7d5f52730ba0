// What the contract suites need beside the seam: a place on the disk and, where time stands still, a hand
// that moves it. Each platform defines these functions once.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

// Whether processes and time are played here rather than real.
bool contractIsFake();

// Everything as it is before any test: an empty scratch folder, no key of the suites.
void contractReset();

// A folder of the tests' own, which exists and was empty before the test.
std::u16string contractFolder();

// Lets time pass where it does not do so by itself.
void contractPassTime(int64_t nanoseconds);

// Waits, while time passes, until something has come true; false when it has not after ten seconds.
bool contractAwait(const std::function<bool()>& condition);

// The key below which the suites keep theirs, one for each test program: several may run at once.
extern const char* const ContractKey;

class contractTest : public testing::Test
{
protected:
    void SetUp() override { contractReset(); }
};
