// What the suites of windows stand on: a window system whose messages are written down.
#pragma once

#include "platform/window.h"
#include "tests/platform/screen/screenInput.h"

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <vector>

constexpr uint32_t StyleFramed = styleSystemMenu | styleMinimiseBox | styleMaximiseBox | styleResizable;

bool operator==(const windowEdges& one, const windowEdges& other);
void PrintTo(const windowEdges& edges, std::ostream* stream);

class windowTest : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    // A window of no size, not shown yet.
    windowId Make(uint32_t style = StyleFramed, windowId owner = 0);

    // A window with its client area there, not shown yet.
    windowId MakeAt(const windowEdges& client, uint32_t style = StyleFramed, windowId owner = 0);

    // The same, shown and active; popups are shown without that.
    windowId OpenAt(const windowEdges& client, uint32_t style = StyleFramed, windowId owner = 0);

    bool Place(windowId window, const windowEdges& client);
    windowEdges ClientOf(windowId window);

    // Takes messages, and what becomes of them, until nothing waits; or until something has come true, false
    // when it has not after ten seconds.
    void Pump();
    bool Until(const std::function<bool()>& condition);

    // Moves the mouse to a point of the client area; false when the window does not hear of it.
    bool Point(windowId window, int32_t x, int32_t y);

    // Waits until the keyboard is with the window; false when it does not come.
    bool Listens(windowId window);
    void Click(screenButton button = screenButton::Left);

    size_t Count(windowId window, uint32_t number) const;
    bool Has(windowId window, uint32_t number) const { return Count(window, number) > 0; }
    windowMessage Last(windowId window, uint32_t number) const;  // one without a number when there is none

    // The point that the last one carries, as windowPoint has it; the bits above it are nobody's.
    int64_t LastPoint(windowId window, uint32_t number) const;

    // The numbers of all that the window heard and that are among these, in order.
    std::vector<uint32_t> Order(windowId window, std::initializer_list<uint32_t> numbers) const;

    std::unique_ptr<windowSystem> System;
    std::vector<windowMessage> Heard;

    // What the receiver does before it leaves the message to the system; nothing leaves it there.
    std::function<std::optional<int64_t>(const windowMessage&)> Answer;

private:
    static int64_t Receive(const windowMessage& message);
    bool TakeOne();
    bool Repeats(const std::function<void()>& act, const std::function<bool()>& condition);
};
