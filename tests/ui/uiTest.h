// A test through the whole program: a copy of it, and a receiver at its port.
#pragma once

#include "tests/platform/screen/screenInput.h"
#include "tests/ui/program.h"
#include "tests/ui/receiver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

class uiTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (road::Most() == 0)
            GTEST_SKIP() << "there is no serial port to test with";
        screenReset();
    }
    void TearDown() override
    {
        Program.Close();
        Device.reset();
        screenReset();
    }

    std::optional<receiver> Device;
    program Program;
};
