#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "platform/linux/keyboard/LinuxEventTapService.h"
#include "tests/support/Environment.h"

namespace quorvane {

namespace {

bool isX11SessionWith(const std::optional<std::string>& x11,
                      const std::optional<std::string>& wayland) {
    const EnvironmentVariable display("DISPLAY", x11);
    const EnvironmentVariable waylandDisplay("WAYLAND_DISPLAY", wayland);
    return isX11Session();
}

TEST(SessionTypeTest, ASessionWithAnXServerAlone) {
    EXPECT_TRUE(isX11SessionWith(":0", std::nullopt));
    EXPECT_TRUE(isX11SessionWith(":0", ""));
}

TEST(SessionTypeTest, AWaylandSessionIsNoneWithOrWithoutAnXServer) {
    EXPECT_FALSE(isX11SessionWith(":0", "wayland-0"));
    EXPECT_FALSE(isX11SessionWith(std::nullopt, "wayland-0"));
    EXPECT_FALSE(isX11SessionWith("", "wayland-0"));
}

TEST(SessionTypeTest, WithoutADisplayThereIsNoSession) {
    EXPECT_FALSE(isX11SessionWith(std::nullopt, std::nullopt));
    EXPECT_FALSE(isX11SessionWith("", std::nullopt));
}

} // namespace

} // namespace quorvane
