#include "platform/linux/common/X11Replies.h"

#include <algorithm>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>
#include <xcb/xinput.h>

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// A reply or event as xcb receives it: a fixed part, and as many words as its length says.
template <class Reply>
class Received {
public:
    explicit Received(Reply fixed, const std::vector<std::uint32_t>& words = {})
        : m_bytes(sizeof fixed + 4 * words.size()) {
        fixed.length = static_cast<std::uint32_t>(words.size());
        std::memcpy(m_bytes.data(), &fixed, sizeof fixed);
        const auto* bytes = reinterpret_cast<const std::byte*>(words.data());
        std::copy_n(bytes, 4 * words.size(), m_bytes.begin() + sizeof fixed);
    }

    [[nodiscard]] const Reply& operator*() const {
        return *reinterpret_cast<const Reply*>(m_bytes.data());
    }

private:
    std::vector<std::byte> m_bytes;
};

xcb_get_property_reply_t property(std::uint8_t format, std::uint32_t length) {
    xcb_get_property_reply_t reply{};
    reply.format = format;
    reply.value_len = length;
    return reply;
}

TEST(X11Replies, APropertysValueEndsWithTheReply) {
    constexpr std::uint32_t letters = 0x64636261;
    EXPECT_EQ(valueOf(*Received(property(8, 3), {letters})), "abc");
    EXPECT_EQ(valueOf(*Received(property(8, 4000), {letters})), "abcd");
    EXPECT_EQ(valueOf(*Received(property(16, 1), {letters})), "ab");
    EXPECT_EQ(valueOf(*Received(property(32, 1), {letters, letters})), "abcd");
    EXPECT_EQ(valueOf(*Received(property(32, 0xFFFFFFFF), {letters})), "abcd");
    EXPECT_EQ(valueOf(*Received(property(0, 0))), "");
}

xcb_randr_get_monitors_reply_t monitors(std::uint32_t count) {
    xcb_randr_get_monitors_reply_t reply{};
    reply.nMonitors = count;
    return reply;
}

/// The words of a monitor of that width that says it has so many outputs.
std::vector<std::uint32_t> monitor(std::uint16_t width, std::uint16_t outputs) {
    return {7, std::uint32_t{outputs} << 16U, 0, width, 0, 0};
}

std::vector<std::uint32_t> operator+(std::vector<std::uint32_t> words,
                                     const std::vector<std::uint32_t>& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

TEST(X11Replies, MonitorsFollowTheOutputsOfTheOnesBefore) {
    const Received reply(monitors(2), monitor(800, 2) + std::vector{5U, 6U} + monitor(640, 0));
    const auto found = monitorsOf(*reply);
    ASSERT_THAT(found, SizeIs(2));
    EXPECT_EQ(found[0].name, 7U);
    EXPECT_EQ(found[0].width, 800);
    EXPECT_EQ(found[1].width, 640);
}

TEST(X11Replies, MonitorsEndWithTheReply) {
    EXPECT_THAT(monitorsOf(*Received(monitors(3), monitor(800, 0))), SizeIs(1));
    EXPECT_THAT(monitorsOf(*Received(monitors(2), monitor(800, 9) + monitor(640, 0))), SizeIs(1));
    EXPECT_THAT(monitorsOf(*Received(monitors(1), monitor(800, 9))), SizeIs(1));
    EXPECT_THAT(monitorsOf(*Received(monitors(1), {7, 0, 0, 800, 0})), IsEmpty());
    EXPECT_THAT(monitorsOf(*Received(monitors(0), monitor(800, 0))), IsEmpty());
}

TEST(X11Replies, KeycodesOfModifiersEndWithTheReply) {
    xcb_get_modifier_mapping_reply_t mapping{};
    mapping.keycodes_per_modifier = 1;
    EXPECT_THAT(keycodesOf(*Received(mapping, {0x04030201, 0x08070605})),
                ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
    mapping.keycodes_per_modifier = 255;
    EXPECT_THAT(keycodesOf(*Received(mapping, {0x04030201})), ElementsAre(1, 2, 3, 4));
}

TEST(X11Replies, PlainSymbolsAreTheFirstOfEachRow) {
    xcb_get_keyboard_mapping_reply_t mapping{};
    EXPECT_THAT(plainSymbolsOf(*Received(mapping, {1, 2})), IsEmpty()) << "rows without symbols";
    mapping.keysyms_per_keycode = 2;
    EXPECT_THAT(plainSymbolsOf(*Received(mapping, {1, 2, 3, 4})), ElementsAre(1, 3));
    EXPECT_THAT(plainSymbolsOf(*Received(mapping, {1, 2, 3})), ElementsAre(1, 3)) << "half a row";
    EXPECT_THAT(plainSymbolsOf(*Received(mapping)), IsEmpty());
}

TEST(X11Replies, DevicesOfAnEventEndWithIt) {
    xcb_input_hierarchy_event_t event{};
    event.num_infos = 2;
    const auto devices = [&event](const std::vector<std::uint32_t>& words) {
        const Received received(event, words);
        std::vector<int> ids;
        for (const auto& device : devicesOf(*received))
            ids.push_back(device.deviceid);
        return ids;
    };
    EXPECT_THAT(devices({11, 0, 0, 12, 0, 0, 13, 0, 0}), ElementsAre(11, 12));
    EXPECT_THAT(devices({11, 0, 0, 12, 0}), ElementsAre(11));
    EXPECT_THAT(devices({}), IsEmpty());
}

TEST(X11Replies, TheScaleIsTheResolutionOfTheDesktop) {
    EXPECT_EQ(scaleOf(""), 1);
    EXPECT_EQ(scaleOf("Xft.dpi:\t192\n"), 2);
    EXPECT_EQ(scaleOf("Xft.rgba: none\nXft.dpi: 144.0\nXft.hinting: 1"), 1.5);
    EXPECT_EQ(scaleOf("Xft.dpi:24"), 0.25);
    EXPECT_EQ(scaleOf("Xft.dpi:1536"), 16);
}

TEST(X11Replies, AResolutionThatNoDesktopHasIsNone) {
    for (const char* value :
         {"", "   ", "x", "0", "-96", "inf", "nan", "1e300", "1e-300", "23.9", "1537"})
        EXPECT_EQ(scaleOf(std::string("Xft.dpi: ") + value), 1) << value;
}

} // namespace
} // namespace quorvane
