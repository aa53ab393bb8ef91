#include "tests/app/screens/views/LayoutFixture.h"

#include <QImageReader>
#include <QTest>

#include <cmath>
#include <utility>

#include "app/screens/scene/SymbolProvider.h"

namespace quorvane {
namespace {

const QColor red("#ff3b30");

class Controls : public LayoutTest {};

TEST_F(Controls, CornersOfButtonsAreRound) {
    launchIntoControlPanel();
    const QRectF place = placeOf(stop);
    // With a corner radius of 20, points nearer than 5.86 to both edges are outside.
    expectNear(at(place.topLeft() + QPointF(4, 4)), besideOf(stop));
    expectNear(at(place.topLeft() + QPointF(7, 7)), red);
    expectNear(at(place.bottomRight() - QPointF(4, 4)), besideOf(stop));
    expectNear(at(place.bottomRight() - QPointF(10, 10)), red);
}

TEST_F(Controls, ASwitchIsRedOnAGreyCapsule) {
    launchIntoControlPanel();
    const QRectF on = placeOf("Startup");
    const QColor night = at(on.topLeft() - QPointF(5, -13));
    expectNear(at(on.topLeft() + QPointF(21, 1)), over(night, QColor("#8e8e93"), 0.4));
    expectNear(at(on.topLeft() + QPointF(14, 13)), red);
    expectNear(at(on.topLeft() + QPointF(30, 13)), Qt::white);
    const QRectF off = placeOf("Thermals");
    expectNear(at(off.topLeft() + QPointF(13, 13)), Qt::white);
    EXPECT_LT(at(off.topLeft() + QPointF(30, 13)).red(), 100);
}

TEST_F(Controls, EveryRowHasItsSymbol) {
    launchIntoControlPanel();
    const QImage picture = picture1x();
    // The mean difference between what is drawn at the row's beginning and a symbol, 0 to 255.
    const auto difference = [&](const std::string& row, const QString& symbol) {
        QImageReader reader(":/symbols/" + symbol + ".svg");
        reader.setScaledSize({18, 18});
        const QImage drawn = reader.read();
        EXPECT_EQ(drawn.size(), QSize(18, 18)) << symbol.toStdString();
        const QPoint corner(70, qRound(placeOf(row).top()) + 4);
        const int night = picture.pixelColor(corner - QPoint(4, 0)).lightness();
        double sum = 0;
        for (int y = 0; y < drawn.height(); ++y)
            for (int x = 0; x < drawn.width(); ++x) {
                const double lit = night + (255 - night) * 0.7 * drawn.pixelColor(x, y).alphaF();
                sum += std::abs(picture.pixelColor(corner + QPoint(x, y)).lightness() - lit);
            }
        return sum / (18 * 18);
    };
    const std::vector<std::pair<std::string, QString>> rows{
        {"Build quality", "door.left.hand.open"},
        {"Keyboard", "keyboard"},
        {"Thermals", "fan"},
        {"Stability", "exclamationmark.triangle"},
        {"Performance", "snowflake"},
        {"Startup", "power"}};
    for (const auto& [row, symbol] : rows)
        for (const auto& [otherRow, other] : rows) {
            if (other == symbol)
                EXPECT_LT(difference(row, symbol), 20) << row;
            else
                EXPECT_GT(difference(row, other), 30) << row << " and " << otherRow;
        }
    const QRectF place(70, placeOf("Startup").top() + 4, 18, 18);
    const QColor night = at(place.topLeft() - QPointF(4, 0));
    EXPECT_NEAR(brightestIn(place), over(night, Qt::white, 0.7).lightness(), 8);
}

TEST_F(Controls, SymbolsAreTheDesktopsOwnWhereItHasThem) {
    constexpr int side = 18;
    SymbolPicture symbol{.width = side, .height = side, .pixels = {}};
    for (int i = 0; i < side * side; ++i)
        symbol.pixels.insert(symbol.pixels.end(), {200, 100, 50, 255});
    m_desktop.everySymbol = symbol;
    launchIntoControlPanel();
    const QPointF middle(79, placeOf("Startup").top() + 13);
    const QColor night = at(middle - QPointF(13, 0));
    expectNear(at(middle), over(night, QColor(200, 100, 50), 0.7));
}

TEST_F(Controls, AnEmptySymbolOfTheDesktopIsReplacedByTheProgramsOwn) {
    m_desktop.everySymbol = SymbolPicture{};
    QSize size;
    const QImage drawn = SymbolProvider(m_desktop).requestImage("power", &size, {18, 18});
    EXPECT_EQ(size, QSize(18, 18));
    EXPECT_EQ(drawn.size(), QSize(18, 18));
}

TEST_F(Controls, ControlsShowThatTheMouseIsOnThemAndPresses) {
    launchIntoControlPanel();
    const auto hover = [this](const std::string& name) {
        QTest::mouseMove(&m_window->window(), placeOf(name).center().toPoint());
        settle();
    };
    hover("SIMULATION ACTIVE");
    const QColor switchBefore = at(placeOf("Startup").topLeft() + QPointF(14, 13));
    const QColor buttonBefore = fillOf(stop);
    hover("Startup");
    EXPECT_NE(at(placeOf("Startup").topLeft() + QPointF(14, 13)), switchBefore);
    hover(stop);
    const QColor hovered = fillOf(stop);
    EXPECT_NE(hovered, buttonBefore);
    QTest::mousePress(&m_window->window(), Qt::LeftButton, {}, placeOf(stop).center().toPoint());
    settle();
    EXPECT_LT(fillOf(stop).lightness(), hovered.lightness());
    EXPECT_LT(brightestIn(placeOfText(stop)), 240) << "its words too";
    QTest::mouseMove(&m_window->window(), {5, 5});
    settle();
    EXPECT_EQ(fillOf(stop), buttonBefore) << "the mouse is elsewhere";
    QTest::mouseRelease(&m_window->window(), Qt::LeftButton, {}, {5, 5});
    settle();
    EXPECT_TRUE(m_content->sufferingMode()) << "released elsewhere";
}

TEST_F(Controls, ThePopupsButtonShowsThatTheMouseIsOnItAndPresses) {
    launchIntoControlPanel();
    openInfo("Keyboard");
    const QPoint middle = placeOf("OK").center().toPoint();
    const auto fill = [&] { return at(placeOf("OK").topLeft() + QPointF(20, 18)); };
    const QColor blue("#007aff");
    const QColor ground("#23233a");
    expectNear(fill(), blue);
    QTest::mouseMove(&m_window->window(), middle);
    settle();
    expectNear(fill(), over(ground, blue, 0.9));
    QTest::mousePress(&m_window->window(), Qt::LeftButton, {}, middle);
    settle();
    expectNear(fill(), over(ground, blue, 0.75));
}

TEST_F(Controls, AnInfoButtonTakesClicksBesideItsSymbol) {
    launchIntoControlPanel();
    const QPointF middle = placeOf("About Thermals").center();
    for (const QPointF offset : {QPointF(12, 0), QPointF(-12, 10), QPointF(0, -13)}) {
        QTest::mouseClick(&m_window->window(), Qt::LeftButton, {}, (middle + offset).toPoint());
        ASSERT_TRUE(m_content->showInfo()) << offset.x() << ", " << offset.y();
        EXPECT_EQ(m_content->activeInfoLabel().get(), "Thermal Performance");
        m_content->dismissInfo();
        settle();
    }
}

TEST_F(Controls, AHintIsYellowAndMakesRoomForItself) {
    constexpr auto hint = "Accessibility permission needed — enable in System Settings";
    m_keyboard->canStart = false;
    m_keyboard->whatKeepsItFromBeingNoticed = hint;
    launchIntoControlPanel();
    const QRectF below(98, placeOf("Keyboard").bottom() + 1, 382, 9);
    const QColor night = at(below.topLeft() - QPointF(4, 0));
    const QColor hintColor = over(night, QColor("#ffcc00"), 0.8);
    EXPECT_EQ(countOf(hintColor, below, 30), 0);
    toggle("Keyboard");
    settle();
    ASSERT_TRUE(text(hint));
    EXPECT_TRUE(text(hint)->isVisible());
    EXPECT_EQ(
        lookOf(hint),
        (Look{.size = 11, .weight = QFont::Medium, .color = QColor("#ffcc00"), .opacity = 0.8}));
    const QRectF place(text(hint)->mapToScene({0, 0}), text(hint)->size());
    EXPECT_EQ(place.left(), 98) << "below its label";
    EXPECT_GT(place.top(), placeOf("Keyboard").top() + 18);
    EXPECT_LE(place.bottom(), placeOf("Thermals").top());
    EXPECT_GT(countOf(hintColor, place, 3), 40);
    m_keyboard->canStart = true;
    m_keyboard->whatKeepsItFromBeingNoticed = "";
    toggle("Keyboard");
    settle();
    EXPECT_FALSE(text(hint));
    EXPECT_EQ(placeOf("Thermals").top() - placeOf("Keyboard").bottom(), 10);
}

} // namespace
} // namespace quorvane
