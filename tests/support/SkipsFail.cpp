// Part of every test program: a case that was skipped has failed. CTest would count it as passed.

#include <gtest/gtest.h>

namespace quorvane {

namespace {

class SkipsFail final : public testing::EmptyTestEventListener {
    // Called before the printer's, which then says that the case has failed.
    void OnTestEnd(const testing::TestInfo& test) override {
        if (test.result()->Skipped())
            ADD_FAILURE() << "a test that is skipped tests nothing";
    }
};

// The list of listeners owns it.
[[maybe_unused]] const bool isListening = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new SkipsFail);
    return true;
}();

} // namespace

} // namespace quorvane
