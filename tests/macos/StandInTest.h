#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/NonCopyable.h"
#include "tests/macos/StandIn.h"

namespace quorvane {

/// A machine as new for its life; at the end nothing may be left over and no mistake have been
/// made.
class StandInMachine : NonCopyable {
public:
    StandInMachine() { standin::reset(); }

    ~StandInMachine() {
        EXPECT_THAT(standin::leftOver(), testing::IsEmpty());
        EXPECT_THAT(standin::machine().mistakes, testing::IsEmpty());
    }
};

} // namespace quorvane
