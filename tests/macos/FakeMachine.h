#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/NonCopyable.h"
#include "tests/macos/FakeMac.h"

namespace quorvane {

/// A machine as new for its life; at the end nothing may be left over and no mistake have been
/// made.
class FakeMachine : NonCopyable {
public:
    FakeMachine() { fakes::reset(); }

    ~FakeMachine() {
        EXPECT_THAT(fakes::leftOver(), testing::IsEmpty());
        EXPECT_THAT(fakes::machine().mistakes, testing::IsEmpty());
    }
};

} // namespace quorvane
