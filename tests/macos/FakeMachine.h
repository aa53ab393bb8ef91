#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/NonCopyable.h"
#include "tests/macos/FakeMac.h"

namespace quorvane {

/// Starts with a new machine, and expects no leftover objects and no mistakes at its end.
class FakeMachine : NonCopyable {
public:
    FakeMachine() { fakes::reset(); }

    ~FakeMachine() {
        EXPECT_THAT(fakes::leftOver(), testing::IsEmpty());
        EXPECT_THAT(fakes::machine().mistakes, testing::IsEmpty());
    }
};

} // namespace quorvane
