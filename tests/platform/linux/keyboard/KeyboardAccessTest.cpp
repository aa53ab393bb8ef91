#include <sys/acl.h>
#include <sys/stat.h>

#include <acl/libacl.h>
#include <memory>
#include <optional>

#include <gmock/gmock.h>

#include "platform/linux/keyboard/access/KeyboardAccess.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr uid_t person = 12345;
constexpr uid_t other = 23456;

class KeyboardAccessTest : public testing::Test {
protected:
    /// A node as the kernel and udev make them: for root and the group, nobody else.
    [[nodiscard]] std::filesystem::path node(const std::string& name) const {
        auto path = m_folder.write(name, "");
        chmod(path.c_str(), 0660);
        return path;
    }

    /// The access list, an entry a comma.
    [[nodiscard]] static std::string rights(const std::filesystem::path& node) {
        const std::unique_ptr<std::remove_pointer_t<acl_t>, int (*)(void*)> list(
            acl_get_file(node.c_str(), ACL_TYPE_ACCESS), &acl_free);
        const std::unique_ptr<char, int (*)(void*)> text(
            acl_to_any_text(list.get(), nullptr, ',', TEXT_NUMERIC_IDS), &acl_free);
        return text.get();
    }

    TemporaryFolder m_folder;
};

TEST_F(KeyboardAccessTest, AUserIsANumberAndNothingElse) {
    EXPECT_EQ(parseUser("1000"), uid_t{1000});
    for (const char* text : {"", "0", "-1", "1000 ", " 1000", "0x3e8", "1000;", "4294967295",
                             "4294967296", "root", "99999999999999999999"})
        EXPECT_EQ(parseUser(text), std::nullopt) << text;
}

TEST_F(KeyboardAccessTest, ThePersonMayReadAndNoMoreAndTheOthersKeepTheirRights) {
    const auto keyboard = node("event0");
    ASSERT_TRUE(grantReading(keyboard, person));
    EXPECT_EQ(rights(keyboard), "user::rw-,user:12345:r--,group::rw-,mask::rw-,other::---");
}

TEST_F(KeyboardAccessTest, GrantingTwiceIsGrantingOnce) {
    const auto keyboard = node("event0");
    ASSERT_TRUE(grantReading(keyboard, person));
    const auto once = rights(keyboard);
    ASSERT_TRUE(grantReading(keyboard, person));
    EXPECT_EQ(rights(keyboard), once);
}

TEST_F(KeyboardAccessTest, TwoPersonsMayBothRead) {
    const auto keyboard = node("event0");
    ASSERT_TRUE(grantReading(keyboard, person));
    ASSERT_TRUE(grantReading(keyboard, other));
    EXPECT_THAT(rights(keyboard), HasSubstr("user:12345:r--"));
    EXPECT_THAT(rights(keyboard), HasSubstr("user:23456:r--"));
}

TEST_F(KeyboardAccessTest, ANodeThatHasGoneIsLeftOut) {
    EXPECT_FALSE(grantReading(m_folder.path() / "event9", person));
    const std::vector<SeatedKeyboard> keyboards{{m_folder.path() / "event9", "seat0"},
                                                {node("event0"), "seat0"}};
    EXPECT_EQ(grantKeyboards(keyboards, {"seat0"}, person), 1U);
}

TEST_F(KeyboardAccessTest, OnlyTheKeyboardsOfThePersonsSeatAreGranted) {
    const auto here = node("event0");
    const auto there = node("event1");
    const std::vector<SeatedKeyboard> keyboards{{here, "seat0"}, {there, "seat1"}};
    EXPECT_EQ(grantKeyboards(keyboards, {"seat1"}, person), 1U);
    EXPECT_THAT(rights(here), Not(HasSubstr("12345")));
    EXPECT_THAT(rights(there), HasSubstr("user:12345:r--"));
}

TEST_F(KeyboardAccessTest, WhoIsAtNoSeatIsGrantedNothing) {
    const auto keyboard = node("event0");
    EXPECT_EQ(grantKeyboards({{keyboard, "seat0"}}, {}, person), 0U);
    EXPECT_THAT(rights(keyboard), Not(HasSubstr("12345")));
}

TEST_F(KeyboardAccessTest, AUserWithoutASessionIsAtNoSeat) {
    EXPECT_TRUE(activeSeats(person).empty());
}

} // namespace

} // namespace quorvane
