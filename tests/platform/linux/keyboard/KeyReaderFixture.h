#pragma once

#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/keyboard/KeyReaderProcess.h"
#include "tests/support/QtApplication.h"
#include "tests/support/StandInReader.h"
#include "tests/support/Waiting.h"

namespace quorvane {

/// The client of a scripted reader, which this user may start.
class KeyReaderFixture : public testing::Test {
protected:
    KeyReaderFixture() : m_keyboards{m_standIn.readableNode()}, m_own(m_standIn.program()) {
        m_reader.emplace([this] { return KeyReaderPlaces{.own = m_own, .installed = m_installed}; },
                         [this] { return m_keyboards; });
    }

    void startReader() {
        ASSERT_TRUE(m_reader->start());
        ASSERT_TRUE(waitUntil([this] { return m_reader->isRunning(); }));
    }

    [[nodiscard]] Subscription countKeys() {
        return m_reader->listen([this] { ++m_keys; });
    }

    /// Whether the reader has been told this since the test began.
    [[nodiscard]] bool wasTold(const std::string& bytes) const {
        return waitUntil([this, &bytes] { return m_standIn.told() == bytes; });
    }

    [[nodiscard]] bool hasHint(const std::string& text) const {
        return waitUntil([this, &text] { return m_reader->obstacle().get() == text; });
    }

    QtApplication m_application;
    StandInReader m_standIn;
    std::vector<std::filesystem::path> m_keyboards;
    std::filesystem::path m_own;
    std::filesystem::path m_installed;
    int m_keys = 0;
    std::optional<KeyReaderProcess> m_reader;
};

} // namespace quorvane
