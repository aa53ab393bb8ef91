// Part of every test program: a skipped case fails. CTest would count it as passed.

#include <gtest/gtest.h>

namespace quorvane {

namespace {

class SkipsFail final : public testing::EmptyTestEventListener {
    // OnTestEnd runs in reverse order: the printer's comes later and prints the failure.
    void OnTestEnd(const testing::TestInfo& test) override {
        if (test.result()->Skipped())
            ADD_FAILURE() << "a skipped test tests nothing";
    }
};

// The list of listeners owns it.
[[maybe_unused]] const bool isListening = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new SkipsFail);
    return true;
}();

} // namespace

} // namespace quorvane
