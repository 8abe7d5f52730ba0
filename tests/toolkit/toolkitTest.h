// What tests of windows have in common: a fresh fake platform, and the toolkit as it was before any window.
#pragma once

#include "tests/fakes/fakeDraws.h"
#include "tests/fakes/fakeWindows.h"
#include "tests/fakes/fakes.h"
#include "toolkit/ctrlToolkit.h"
#include "toolkit/ctrlWindow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

class toolkitTest : public testing::Test
{
protected:
    void SetUp() override
    {
        fakeReset();
        Forget();
    }
    void TearDown() override
    {
        while (Toolkit().HasWindows())
            delete Toolkit().WindowList().front();
        Forget();
        EXPECT_EQ(fakeWindows().size(), 0U) << "windows of the system that nobody destroyed";
        EXPECT_EQ(fakeDrawObjects(), 0U) << "targets, brushes or bitmaps that nobody released";
    }

    static void Forget()
    {
        ctrlToolkit& toolkit = Toolkit();
        toolkit.Focused = nullptr;
        toolkit.CursorId = 0;
        toolkit.LastMove = {};
        toolkit.Scale = 1.0F;
    }

    // Handles all that waits, paints too, and returns what was drawn meanwhile.
    static std::vector<std::string> Drawn()
    {
        fakeClearDraws();
        Toolkit().PumpPending();
        return fakeDraws();
    }

    // The same, but only the lines that begin with one of these.
    static std::vector<std::string> Drawn(const std::vector<std::string>& beginnings)
    {
        std::vector<std::string> lines = Drawn();
        std::erase_if(lines, [&beginnings](const std::string& line) {
            return std::none_of(beginnings.begin(), beginnings.end(),
                                [&line](const std::string& one) { return line.starts_with(one); });
        });
        return lines;
    }
};
