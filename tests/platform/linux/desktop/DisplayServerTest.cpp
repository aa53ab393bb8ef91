#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "base/NonCopyable.h"
#include "platform/linux/desktop/DisplayServer.h"
#include "tests/support/Environment.h"
#include "tests/support/OpenFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/VirtualDisplay.h"

namespace quorvane {

namespace {

/// The socket of a Wayland server.
class WaylandSocket : NonCopyable {
public:
    explicit WaylandSocket(const std::filesystem::path& path) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.string().copy(std::begin(address.sun_path), sizeof address.sun_path - 1);
        const auto* generic = reinterpret_cast<const sockaddr*>(&address);
        if (bind(m_descriptor, generic, sizeof address) != 0 || listen(m_descriptor, 1) != 0)
            throw std::runtime_error("no socket");
    }

    ~WaylandSocket() { close(m_descriptor); }

private:
    int m_descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

class DisplayServerTest : public testing::Test {
protected:
    static void set(const char* variable, const std::string& value) {
        setenv(variable, value.c_str(), 1); // NOLINT(concurrency-mt-unsafe): one thread.
    }

    /// The value of QT_QPA_PLATFORM; empty if unset.
    static std::string choice() {
        const char* value = std::getenv("QT_QPA_PLATFORM"); // NOLINT(concurrency-mt-unsafe)
        return value ? value : "";
    }

    TemporaryFolder m_runtime;
    // Restored at the end, whatever a case or the program sets.
    EnvironmentVariable m_platform{"QT_QPA_PLATFORM", std::nullopt};
    EnvironmentVariable m_runtimeFolder{"XDG_RUNTIME_DIR", m_runtime.path().string()};
    EnvironmentVariable m_wayland{"WAYLAND_DISPLAY", std::nullopt};
    EnvironmentVariable m_x11{"DISPLAY", std::nullopt};
};

TEST_F(DisplayServerTest, WithoutADisplayThereIsNothingToRunOn) {
    EXPECT_EQ(DisplayServer().error(),
              "there is no display: neither DISPLAY nor WAYLAND_DISPLAY is set");
    EXPECT_EQ(choice(), "");
}

TEST_F(DisplayServerTest, AWaylandServerAloneIsUsed) {
    const WaylandSocket server(m_runtime.path() / "wayland-5");
    set("WAYLAND_DISPLAY", "wayland-5");
    const auto before = openDescriptors();
    EXPECT_EQ(DisplayServer().error(), "");
    EXPECT_EQ(choice(), "wayland");
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(DisplayServerTest, AWaylandServerMayBeNamedByItsPath) {
    const auto path = m_runtime.path() / "elsewhere";
    const WaylandSocket server(path);
    set("XDG_RUNTIME_DIR", "/nonexistent");
    set("WAYLAND_DISPLAY", path);
    EXPECT_EQ(DisplayServer().error(), "");
    EXPECT_EQ(choice(), "wayland");
}

TEST_F(DisplayServerTest, AServerThatDoesNotAnswerIsNamed) {
    set("WAYLAND_DISPLAY", "wayland-5");
    EXPECT_EQ(DisplayServer().error(), "the display 'wayland-5' does not answer");
    set("DISPLAY", ":12345");
    EXPECT_EQ(DisplayServer().error(), "the display ':12345' does not answer");
    EXPECT_EQ(choice(), "");
}

TEST_F(DisplayServerTest, AWaylandServerThatHangsDoesNotAnswer) {
    // Has room for two connections until it takes some.
    const WaylandSocket server(m_runtime.path() / "wayland-5");
    set("WAYLAND_DISPLAY", "wayland-5");
    std::string error;
    for (int attempt = 0; attempt < 3; ++attempt) {
        unsetenv("QT_QPA_PLATFORM"); // NOLINT(concurrency-mt-unsafe): one thread.
        error = DisplayServer().error();
    }
    EXPECT_EQ(error, "the display 'wayland-5' does not answer");
}

TEST_F(DisplayServerTest, ANameTooLongForASocketIsNoServer) {
    set("WAYLAND_DISPLAY", std::string(200, 'w'));
    EXPECT_EQ(DisplayServer().error(),
              "the display '" + std::string(200, 'w') + "' does not answer");
}

TEST_F(DisplayServerTest, WaylandIsUsedIfTheXServerDoesNotAnswer) {
    const WaylandSocket server(m_runtime.path() / "wayland-5");
    set("WAYLAND_DISPLAY", "wayland-5");
    set("DISPLAY", ":12345");
    EXPECT_EQ(DisplayServer().error(), "");
    EXPECT_EQ(choice(), "wayland");
}

TEST_F(DisplayServerTest, AnXServerIsPreferredAndItsConnectionKeptUntilQtHasItsOwn) {
    const VirtualDisplay display;
    const WaylandSocket server(m_runtime.path() / "wayland-5");
    set("WAYLAND_DISPLAY", "wayland-5");
    const auto before = openDescriptors();
    DisplayServer chosen;
    EXPECT_EQ(chosen.error(), "");
    EXPECT_EQ(choice(), "xcb");
    EXPECT_EQ(openDescriptors().size(), before.size() + 1);
    chosen.release();
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(DisplayServerTest, TheUsersChoiceIsKept) {
    set("QT_QPA_PLATFORM", "offscreen");
    EXPECT_EQ(DisplayServer().error(), "");
    EXPECT_EQ(choice(), "offscreen");
}

} // namespace

} // namespace quorvane
