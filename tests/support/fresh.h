#pragma once
// The fixture for tests of everything that works on the program's global state.

#include "support/freshstate.h"

#include <gtest/gtest.h>

namespace vantorel::test {

/// Every test begins, and leaves the program, as it is when it starts.
class FreshTest : public ::testing::Test {
protected:
    void SetUp() override { freshstate(); }
    void TearDown() override { freshstate(); }
};

} // namespace vantorel::test
