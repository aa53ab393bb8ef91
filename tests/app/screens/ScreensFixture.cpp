#include "tests/app/screens/ScreensFixture.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QGuiApplication>
#include <QQuickItem>
#include <QTest>

#include <algorithm>

#include "app/screens/bridge/SpringValue.h"
#include "base/UniformDraw.h"

namespace quorvane {

namespace {

constexpr int patience = 10'000;

void visit(QAccessibleInterface* from,
           const std::function<void(QAccessibleInterface& element)>& visitor) {
    if (!from || !from->isValid() || from->state().invisible)
        return;
    visitor(*from);
    for (int i = 0; i < from->childCount(); ++i)
        visit(from->child(i), visitor);
}

std::string nameOf(const QAccessibleInterface& element) {
    return element.text(QAccessible::Name).toStdString();
}

// A repeater's items are children in the scene only, not QObject children.
bool hasMovingSpring(const QQuickItem& item) {
    const auto springs = item.findChildren<SpringValue*>(Qt::FindDirectChildrenOnly);
    const auto items = item.childItems();
    return std::any_of(springs.begin(), springs.end(),
                       [](const SpringValue* spring) { return spring->isMoving(); }) ||
           std::any_of(items.begin(), items.end(),
                       [](const QQuickItem* child) { return hasMovingSpring(*child); });
}

void act(QAccessibleInterface* element, const QString& action) {
    ASSERT_TRUE(element);
    ASSERT_TRUE(element->actionInterface());
    ASSERT_TRUE(element->actionInterface()->actionNames().contains(action));
    element->actionInterface()->doAction(action);
}

} // namespace

ScreensTest::ScreensTest() {
    m_machine.system.model = "MacBookPro18,3";
    m_keyboard->needsPermission = true;
}

ScreensTest::~ScreensTest() = default;

void ScreensTest::withAllEffects() {
    m_effects = {.keyboard = [this] { return m_keyboard; },
                 .fan = [this] { return m_fan; },
                 .bsod = [] { return std::make_shared<FakeEffect>(); },
                 .freeze = [] { return std::make_shared<FakeEffect>(); }};
}

void ScreensTest::withHardwareChecked() {
    m_machine.userDefaults.setBool(ContentView::hardwareCheckedKey, true);
}

void ScreensTest::makeWindow() {
    m_content = std::make_unique<ContentView>(m_machine.platform(), m_startup, m_effects.list());
    m_window = std::make_unique<MainWindow>(*m_content, m_machine.platform(), m_desktop);
}

void ScreensTest::appear() {
    makeWindow();
    bool appeared = false;
    QObject::connect(m_window.get(), &MainWindow::appeared, [&appeared] { appeared = true; });
    QObject::connect(&m_window->window(), &QQuickWindow::frameSwapped, m_window.get(),
                     [this] { ++m_frames; });
    ASSERT_TRUE(m_window->show());
    waitUntil([&appeared] { return appeared; }, "the window has appeared");
}

void ScreensTest::launch() {
    appear();
    settle();
}

void ScreensTest::launchChecked() {
    withHardwareChecked();
    launch();
}

void ScreensTest::launchIntoControlPanel() {
    launchChecked();
    press(enter);
    settle();
}

void ScreensTest::runCheck() {
    press(check);
    m_machine.runLoop.advance(1.5);
}

void ScreensTest::openInfo(const std::string& label) {
    press("About " + label);
    settle();
}

void ScreensTest::waitUntil(const std::function<bool()>& condition, const char* what) {
    const QDeadlineTimer deadline(patience);
    while (!condition() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    ASSERT_TRUE(condition()) << "timed out before " << what;
}

// A requested update is drawn within the next round or two, because main() has set
// QT_QPA_UPDATE_IDLE_TIME to 0.
void ScreensTest::draw() {
    constexpr int quietRounds = 5;
    const QDeadlineTimer deadline(patience);
    for (int round = 0; round < quietRounds; ++round) {
        const int before = m_frames;
        QCoreApplication::processEvents();
        if (m_frames != before)
            round = 0;
        ASSERT_FALSE(deadline.hasExpired()) << "the window never comes to rest";
    }
}

void ScreensTest::animate(int milliseconds) {
    draw();
    m_animations.pass(milliseconds);
    draw();
}

void ScreensTest::settle() {
    constexpr int longestSpring = 10'000;
    constexpr int longestTransition = 200;
    draw();
    for (int passed = 0; isMoving(); passed += longestTransition) {
        ASSERT_LT(passed, longestSpring) << "a spring never rests";
        animate(longestTransition);
    }
    animate(longestTransition);
}

bool ScreensTest::isMoving() {
    return hasMovingSpring(*m_window->window().rootObject());
}

std::vector<std::string> ScreensTest::names(QAccessible::Role role) {
    std::vector<std::string> result;
    visit(QAccessible::queryAccessibleInterface(&m_window->window()),
          [&](const QAccessibleInterface& element) {
              if (element.role() == role)
                  result.push_back(nameOf(element));
          });
    return result;
}

std::vector<std::string> ScreensTest::texts() {
    return names(QAccessible::StaticText);
}

std::vector<std::string> ScreensTest::buttons() {
    return names(QAccessible::Button);
}

std::vector<std::string> ScreensTest::switches() {
    return names(QAccessible::CheckBox);
}

QAccessibleInterface* ScreensTest::element(const std::string& name) {
    QAccessibleInterface* result = nullptr;
    int count = 0;
    visit(QAccessible::queryAccessibleInterface(&m_window->window()),
          [&](QAccessibleInterface& element) {
              if (nameOf(element) == name) {
                  result = &element;
                  ++count;
              }
          });
    EXPECT_LE(count, 1) << "more than one element is called " << name;
    return result;
}

bool ScreensTest::isOn(const std::string& name) {
    QAccessibleInterface* found = element(name);
    EXPECT_TRUE(found) << "there is no " << name;
    return found && found->state().checked;
}

void ScreensTest::press(const std::string& name) {
    act(element(name), QAccessibleActionInterface::pressAction());
}

void ScreensTest::toggle(const std::string& name) {
    act(element(name), QAccessibleActionInterface::toggleAction());
}

void ScreensTest::type(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(&m_window->window(), key, modifiers);
}

void ScreensTest::repeat(Qt::Key key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, QString(), /*autorep=*/true);
    QCoreApplication::sendEvent(&m_window->window(), &event);
}

void ScreensTest::focus(const std::string& name) {
    act(element(name), QAccessibleActionInterface::setFocusAction());
    ASSERT_EQ(focused(), name);
}

void ScreensTest::click(const std::string& name) {
    QAccessibleInterface* found = element(name);
    ASSERT_TRUE(found) << "there is no " << name;
    QTest::mouseClick(&m_window->window(), Qt::LeftButton, {},
                      m_window->window().mapFromGlobal(found->rect().center()));
}

std::string ScreensTest::focused() {
    QQuickItem* item = m_window->window().activeFocusItem();
    QAccessibleInterface* found = item ? QAccessible::queryAccessibleInterface(item) : nullptr;
    return found ? nameOf(*found) : "";
}

void ScreensTest::expectNear(const QColor& seen, const QColor& wanted, int tolerance) {
    EXPECT_NEAR(seen.red(), wanted.red(), tolerance);
    EXPECT_NEAR(seen.green(), wanted.green(), tolerance);
    EXPECT_NEAR(seen.blue(), wanted.blue(), tolerance);
}

QRectF ScreensTest::placeOf(const std::string& name) {
    QAccessibleInterface* found = element(name);
    EXPECT_TRUE(found) << "there is no " << name;
    if (!found)
        return {};
    const auto* item = qobject_cast<QQuickItem*>(found->object());
    return item->mapRectToScene(QRectF({}, item->size()));
}

QImage ScreensTest::picture1x() {
    return m_window->window().grabWindow().scaled(m_window->window().size());
}

void ScreensTest::scriptParticle(const LoneParticle& particle) {
    constexpr int particles = 12;
    const auto draw = [](double value, double low, double high) {
        return static_cast<std::uint64_t>((value - low) / (high - low) *
                                          static_cast<double>(uniformDrawBound));
    };
    m_machine.random.script({0, 0, draw(particle.x, 0, 500), draw(particle.y, -100, 700),
                             draw(particle.size, 40, 60), draw(particle.opacity, 0.08, 0.2), 0, 0});
    for (int i = 1; i < particles; ++i)
        m_machine.random.script({0, 0, 0, 0, 0, 0, 0, 0});
}

QColor ScreensTest::colorAt(int x, int y) {
    const QImage picture = m_window->window().grabWindow();
    const double scale = static_cast<double>(picture.width()) / m_window->window().width();
    return picture.pixelColor(static_cast<int>(x * scale), static_cast<int>(y * scale));
}

void ScreensTest::savePicture(const std::string& name) {
    const QString folder = QCoreApplication::applicationDirPath() + "/screens";
    ASSERT_TRUE(QDir().mkpath(folder));
    const QImage picture = m_window->window().grabWindow();
    const double ratio = m_window->window().effectiveDevicePixelRatio();
    const QString scale = ratio == 1 ? QString() : QString("@%1x").arg(ratio);
    EXPECT_TRUE(picture.save(folder + "/" + QString::fromStdString(name) + scale + ".png"));
}

} // namespace quorvane
