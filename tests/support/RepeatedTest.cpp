#include "tests/support/RepeatedTest.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <unistd.h>

#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

constexpr int mostAttempts = 4;
constexpr const char* attemptVariable = "QUORVANE_TEST_ATTEMPT";

class Repetition final : public testing::EmptyTestEventListener {
public:
    std::string reason;

private:
    void OnTestEnd(const testing::TestInfo& test) override {
        const std::string why = std::exchange(reason, {});
        const char* variable = std::getenv(attemptVariable);
        const int attempt = variable ? std::atoi(variable) : 1;
        if (!test.result()->Failed() || why.empty() || attempt == mostAttempts ||
            testing::UnitTest::GetInstance()->test_to_run_count() > 1)
            return;
        const auto program = std::filesystem::read_symlink("/proc/self/exe");
        const auto told = std::string(test.test_suite_name()) + "." + test.name() + ", attempt " +
                          std::to_string(attempt) + " is void: " + why;
        std::ofstream(program.parent_path() / "repeats.log", std::ios::app) << told << '\n';
        std::cout << told << std::endl;
        setenv(attemptVariable, std::to_string(attempt + 1).c_str(), 1);
        restart(program);
    }

    static void restart(const std::filesystem::path& program) {
        const std::string line = fileText("/proc/self/cmdline");
        std::vector<char*> arguments;
        for (std::size_t i = 0; i < line.size(); i = line.find('\0', i) + 1)
            arguments.push_back(const_cast<char*>(&line[i]));
        arguments.push_back(nullptr);
        execv(program.c_str(), arguments.data());
        std::perror("cannot repeat the test");
    }
};

} // namespace

void repeatIfItFails(const std::string& reason) {
    // The list of listeners owns it.
    static Repetition& repetition = []() -> Repetition& {
        auto* made = new Repetition;
        testing::UnitTest::GetInstance()->listeners().Append(made);
        return *made;
    }();
    repetition.reason = reason;
}

} // namespace quorvane
