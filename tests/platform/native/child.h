// A second process of the test program itself, which runs one test that takes part in no other run.
#pragma once

#include "platform/process.h"

#include <string>
#include <vector>

// A child test is in this suite and ends with childEnd.
#define CHILD_TEST(name) TEST(DISABLED_child, name)

// What a child ends with when everything in it was as it should be. One that never ran its test ends with 0.
constexpr int ChildGood = 42;

// Starts the child test of that name; null when that fails.
processHandle* childStart(const std::string& name, const std::vector<std::string>& arguments = {});

// Starts one and waits for its end.
int childRun(const std::string& name, const std::vector<std::string>& arguments = {});

// What the parent gave; only within a child.
std::vector<std::string> childArguments();

[[noreturn]] void childEnd(bool good);

// Stays until the parent kills it, or for a minute.
[[noreturn]] void childStay();
