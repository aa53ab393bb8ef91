#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

#include "tests/faults/WatchedApp.h"

namespace quorvane {
namespace {

struct NamedFault {
    Fault fault;
    const char* name;
    /// It costs an effect for as long as the program runs: what is loaded at launch, and where the
    /// lid is found.
    bool lasts = false;
};

/// Every fault but the one that ends the program.
constexpr std::array everyFault{
    NamedFault{Fault::HIDManagerOpen, "HIDManagerOpen", true},
    NamedFault{Fault::HIDDeviceSet, "HIDDeviceSet", true},
    NamedFault{Fault::HIDDeviceOpen, "HIDDeviceOpen", true},
    NamedFault{Fault::HIDReport, "HIDReport", true},
    NamedFault{Fault::HIDReportLength, "HIDReportLength", true},
    NamedFault{Fault::Resource, "Resource", true},
    NamedFault{Fault::FileOpen, "FileOpen", true},
    NamedFault{Fault::FileRead, "FileRead", true},
    NamedFault{Fault::BufferCreation, "BufferCreation", true},
    NamedFault{Fault::BufferSamples, "BufferSamples", true},
    NamedFault{Fault::FilePlayerCreation, "FilePlayerCreation", true},
    NamedFault{Fault::FilePlayerSound, "FilePlayerSound", true},
    NamedFault{Fault::FilePlayerPrepare, "FilePlayerPrepare"},
    NamedFault{Fault::FilePlayerPlay, "FilePlayerPlay"},
    NamedFault{Fault::EngineStart, "EngineStart"},
    NamedFault{Fault::Tap, "Tap"},
    NamedFault{Fault::TapSource, "TapSource"},
    NamedFault{Fault::Trust, "Trust"},
    NamedFault{Fault::MainScreen, "MainScreen"},
    NamedFault{Fault::PanelFront, "PanelFront"},
    NamedFault{Fault::HapticPulse, "HapticPulse"},
    NamedFault{Fault::UserDefaultsWrite, "UserDefaultsWrite"},
    NamedFault{Fault::LoginItemStatus, "LoginItemStatus"},
    NamedFault{Fault::ModelName, "ModelName"},
};
static_assert(everyFault.size() == faultCount - 1);

std::vector<std::filesystem::path> scenarioFiles() {
    std::vector<std::filesystem::path> files;
    for (const char* folder : {QUORVANE_SHIPPED_SCENARIOS, QUORVANE_FAULT_SCENARIOS})
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.path().extension() == ".scenario")
                files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

/// A scenario in which one call fails at a time.
class NthCallFailsTest : public testing::TestWithParam<std::filesystem::path> {
protected:
    void SetUp() override {
        auto loaded = loadScenario(GetParam());
        const auto* error = std::get_if<ScenarioError>(&loaded);
        ASSERT_EQ(error, nullptr) << error->description;
        m_scenario = std::get<Scenario>(std::move(loaded));
        WatchedApp untouched;
        untouched.setUp(m_scenario);
        untouched.play();
        m_noticed = untouched.noticed();
        m_failureLines = untouched.failureLines();
    }

    /// Whether there was an n-th call.
    bool playWith(const NamedFault& fault, int n) {
        SCOPED_TRACE("QUORVANE_FAULT='" + std::string(fault.name) + ' ' + std::to_string(n) + "'");
        WatchedApp app;
        app.setUp(m_scenario);
        Faults& faults = *app.machine.faults;
        faults.failOnce(fault.fault, n);
        bool failedBefore = false;
        app.onEnter = [&] { failedBefore = !faults.isAwaited(fault.fault); };
        app.play();
        if (faults.isAwaited(fault.fault))
            return false;
        EXPECT_TRUE(!failedBefore || fault.lasts || app.noticed() == m_noticed)
            << "an effect is missing in the next session";
        for (const auto& [line, count] : app.failureLines())
            EXPECT_LE(count, m_failureLines[line] + 1) << "said more than once: " << line;
        return true;
    }

    void playWithEach(const NamedFault& fault) {
        // Calls that come many times a second are alike: later ones are taken in growing steps.
        for (int n = 1; playWith(fault, n) && !HasFailure(); n += 1 + n / 16)
            ++m_failed;
    }

    Scenario m_scenario;
    std::set<std::string> m_noticed;
    std::map<std::string, int> m_failureLines;
    int m_failed = 0;
};

TEST_P(NthCallFailsTest, TheRulesHoldWhicheverCallFails) {
    // A failure prints the setting with which it is repeated alone.
    const char* only = std::getenv("QUORVANE_FAULT"); // NOLINT(concurrency-mt-unsafe)
    std::istringstream setting(only ? only : "");
    std::string name;
    int n = 0;
    setting >> name >> n;
    for (const NamedFault& fault : everyFault)
        if (!only)
            playWithEach(fault);
        else if (name == fault.name)
            playWith(fault, n);
    EXPECT_TRUE(only || m_failed > 20) << m_failed;
}

INSTANTIATE_TEST_SUITE_P(Scenarios, NthCallFailsTest, testing::ValuesIn(scenarioFiles()),
                         [](const auto& file) {
                             std::string name = file.param.stem().string();
                             std::erase_if(name, [](char letter) { return !std::isalnum(letter); });
                             return name;
                         });

} // namespace
} // namespace quorvane
