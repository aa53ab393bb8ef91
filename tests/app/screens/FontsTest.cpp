#include "app/screens/Fonts.h"

#include <QStringList>

#include <gmock/gmock.h>

namespace quorvane {
namespace {

std::vector<std::string> families(const QFont& font) {
    std::vector<std::string> result;
    for (const QString& family : font.families())
        result.push_back(family.toStdString());
    return result;
}

using testing::ElementsAre;

TEST(Fonts, TextIsSetInInterWithColouredEmoji) {
    EXPECT_THAT(families(Fonts::text(QFont("Sans"))),
                ElementsAre("Inter", "Sans", "Noto Color Emoji"));
}

TEST(Fonts, SettingTextTwiceChangesNothing) {
    const QFont once = Fonts::text(QFont("Sans"));
    EXPECT_EQ(Fonts::text(once), once);
}

TEST(Fonts, HeavyTextIsBlackAndRounded) {
    const QFont font = Fonts::heavy(32);
    EXPECT_EQ(families(font).front(), "Quicksand");
    EXPECT_EQ(font.pixelSize(), 32);
    EXPECT_EQ(font.weight(), 900);
    EXPECT_EQ(font.letterSpacingType(), QFont::AbsoluteSpacing);
    EXPECT_NEAR(font.letterSpacing(), 0.992, 0.01) << "half of its outline's thickness";
}

TEST(Fonts, OnlyTheRoundedFontNeedsAnOutlineToBeBlack) {
    EXPECT_NEAR(Fonts::outline("Quicksand", 50), 3.1, 1e-6);
    EXPECT_EQ(Fonts::outline("Inter", 50), 0);
    EXPECT_EQ(Fonts::outline("Noto Color Emoji", 50), 0);
}

TEST(Fonts, EmojiAreInColour) {
    EXPECT_THAT(families(Fonts::emoji(80)), ElementsAre("Noto Color Emoji"));
    EXPECT_EQ(Fonts::emoji(80).pixelSize(), 80);
}

TEST(Fonts, AreTheDesktopsOwnWhereItHasThem) {
    Fonts::setFamilies({.emoji = "Its Emoji", .rounded = "Its Rounded"});
    EXPECT_THAT(families(Fonts::text(QFont("Sans"))), ElementsAre("Inter", "Sans", "Its Emoji"));
    EXPECT_THAT(families(Fonts::emoji(80)), ElementsAre("Its Emoji"));
    const QFont heavy = Fonts::heavy(32);
    EXPECT_EQ(families(heavy).front(), "Its Rounded");
    EXPECT_EQ(heavy.letterSpacing(), 0) << "it needs no outline";
    Fonts::setFamilies({});
}

} // namespace
} // namespace quorvane
