#include "tests/support/TestDesktop.h"

#include <xcb/xtest.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace quorvane {

namespace {

constexpr uint8_t someLetter = 38;
constexpr uint8_t leftButton = 1;

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); } // NOLINT: the library's allocation.
};

template <class Reply>
using Answer = std::unique_ptr<Reply, FreeReply>;

} // namespace

TestDesktop::TestDesktop(const std::vector<std::string>& serverOptions) {
    startServer(serverOptions);
    m_connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(m_connection) != 0)
        throw std::runtime_error("the virtual display does not answer");
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_windowManager = std::make_unique<TestProgram>(std::vector<std::string>{"openbox"});
    if (!waitFor([this] { return windowManagerIsThere(); }))
        throw std::runtime_error("openbox does not start");
    // The toolkit keeps looking at these.
    static std::array<std::string, 3> words{"test", "-platform", "xcb"};
    for (std::string& word : words)
        m_arguments.push_back(word.data());
    m_application.emplace(m_argumentCount, m_arguments.data());
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

TestDesktop::~TestDesktop() {
    m_application.reset();
    xcb_disconnect(m_connection);
}

void TestDesktop::startServer(const std::vector<std::string>& options) {
    std::vector<std::string> command{"Xvfb",        "-displayfd", "1",   "-screen", "0",
                                     "1280x800x24", "-nolisten",  "tcp", "-noreset"};
    command.insert(command.end(), options.begin(), options.end());
    m_server = std::make_unique<TestProgram>(command);
    const std::string number = m_server->line();
    if (number.empty())
        throw std::runtime_error("Xvfb does not start");
    // NOLINTNEXTLINE(concurrency-mt-unsafe): before there is a second thread.
    setenv("DISPLAY", (":" + number).c_str(), 1);
}

std::unique_ptr<TestProgram> TestDesktop::startCompositor() const {
    auto compositor = std::make_unique<TestProgram>(std::vector<std::string>{
        "picom", "--config", "/dev/null", "--backend", "xrender", "--no-fading-openclose"});
    if (!waitFor([this] { return hasOwner("_NET_WM_CM_S0"); }))
        throw std::runtime_error("picom does not start");
    return compositor;
}

xcb_atom_t TestDesktop::atom(const std::string& name) const {
    const Answer<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(
        m_connection,
        xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(name.size()), name.c_str()),
        nullptr)};
    return reply->atom;
}

bool TestDesktop::hasOwner(const std::string& selection) const {
    const Answer<xcb_get_selection_owner_reply_t> reply{xcb_get_selection_owner_reply(
        m_connection, xcb_get_selection_owner(m_connection, atom(selection)), nullptr)};
    return reply->owner != XCB_WINDOW_NONE;
}

bool TestDesktop::windowManagerIsThere() const {
    // The list of its windows is what it publishes once it has taken up its work.
    const Answer<xcb_get_property_reply_t> windows{
        xcb_get_property_reply(m_connection,
                               xcb_get_property(m_connection, 0, m_screen->root,
                                                atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW, 0, 1),
                               nullptr)};
    return hasOwner("WM_S0") && windows && windows->type != XCB_ATOM_NONE;
}

xcb_window_t TestDesktop::makeWindow(const QRect& place, QRgb color, bool overrideRedirect) {
    const xcb_window_t window = xcb_generate_id(m_connection);
    const std::array<uint32_t, 3> values{color & RGB_MASK, overrideRedirect ? 1U : 0U,
                                         XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_KEY_PRESS};
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_screen->root,
                      static_cast<int16_t>(place.x()), static_cast<int16_t>(place.y()),
                      static_cast<uint16_t>(place.width()), static_cast<uint16_t>(place.height()),
                      0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                      values.data());
    return window;
}

xcb_window_t TestDesktop::openWindow(const QRect& place, QRgb color, bool fullScreen) {
    const xcb_window_t window = makeWindow(place, color, false);
    if (fullScreen) {
        const xcb_atom_t state = atom("_NET_WM_STATE_FULLSCREEN");
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_STATE"),
                            XCB_ATOM_ATOM, 32, 1, &state);
    }
    // The place is the person's wish: without that, the window manager chooses one.
    const std::array<uint32_t, 18> placed{1};
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, placed.size(), placed.data());
    xcb_map_window(m_connection, window);
    xcb_flush(m_connection);
    if (!waitFor([this, window] {
            wakeWindowManager();
            return isUp(window);
        }))
        throw std::runtime_error("the window does not come up");
    activate(window);
    return window;
}

xcb_window_t TestDesktop::openMenu(const QRect& place, QRgb color) {
    const xcb_window_t window = makeWindow(place, color, true);
    xcb_map_window(m_connection, window);
    xcb_flush(m_connection);
    return window;
}

void TestDesktop::recolor(xcb_window_t window, QRgb color) {
    const uint32_t pixel = color & RGB_MASK;
    xcb_change_window_attributes(m_connection, window, XCB_CW_BACK_PIXEL, &pixel);
    xcb_clear_area(m_connection, 0, window, 0, 0, 0, 0);
    xcb_flush(m_connection);
}

void TestDesktop::raise(xcb_window_t window) {
    const uint32_t mode = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection, window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
    xcb_flush(m_connection);
}

void TestDesktop::close(xcb_window_t window) {
    if (window == m_activated)
        m_activated = XCB_WINDOW_NONE;
    xcb_destroy_window(m_connection, window);
    xcb_flush(m_connection);
}

void TestDesktop::activate(xcb_window_t window) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = 2;
    xcb_send_event(m_connection, 0, m_screen->root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(m_connection);
    if (!waitFor([this, window] { return focus() == window; }))
        throw std::runtime_error("the window does not get the keyboard");
    m_activated = window;
    // The window may have had it before, and be raised only now.
    awaitWindowManager(window);
}

/// Gives the window manager an event. What it has read while it was starting it may look at only
/// when the next event comes.
void TestDesktop::wakeWindowManager() {
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_screen->root, atom("WAKE_UP"),
                        XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_flush(m_connection);
}

/// Returns when the window manager has dealt with everything so far: it handles what it is told in
/// order, and answers a new title with the one that it shows.
void TestDesktop::awaitWindowManager(xcb_window_t window) {
    const std::string title = "title " + std::to_string(++m_titles);
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME,
                        XCB_ATOM_STRING, 8, static_cast<uint32_t>(title.size()), title.data());
    xcb_flush(m_connection);
    const xcb_atom_t shown = atom("_NET_WM_VISIBLE_NAME");
    const xcb_atom_t utf8 = atom("UTF8_STRING");
    if (!waitFor([&] {
            const Answer<xcb_get_property_reply_t> reply{xcb_get_property_reply(
                m_connection, xcb_get_property(m_connection, 0, window, shown, utf8, 0, 64),
                nullptr)};
            return reply &&
                   std::string_view(
                       static_cast<const char*>(xcb_get_property_value(reply.get())),
                       static_cast<size_t>(xcb_get_property_value_length(reply.get()))) == title;
        }))
        throw std::runtime_error("openbox does not answer");
}

void TestDesktop::fake(uint8_t type, uint8_t detail, QPoint place) {
    xcb_test_fake_input(m_connection, type, detail, 0, m_screen->root,
                        static_cast<int16_t>(place.x()), static_cast<int16_t>(place.y()), 0);
}

/// The server takes turns with its clients: what others have sent it by now is done by the second
/// answer that this one gets.
void TestDesktop::awaitServer() const {
    static_cast<void>(focus());
    static_cast<void>(focus());
}

void TestDesktop::click(QPoint place) {
    awaitServer();
    fake(XCB_MOTION_NOTIFY, 0, place);
    fake(XCB_BUTTON_PRESS, leftButton, place);
    fake(XCB_BUTTON_RELEASE, leftButton, place);
    xcb_flush(m_connection);
    // It sees each click first and only then lets the window have it.
    if (m_activated != XCB_WINDOW_NONE)
        awaitWindowManager(m_activated);
    work(50);
}

void TestDesktop::pressKey() {
    fake(XCB_KEY_PRESS, someLetter, {});
    fake(XCB_KEY_RELEASE, someLetter, {});
    xcb_flush(m_connection);
    work(50);
}

void TestDesktop::readEvents() {
    // Asking for something makes sure that what came before the answer is there.
    static_cast<void>(focus());
    while (const Answer<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
        m_clicks += (event->response_type & 0x7F) == XCB_BUTTON_PRESS;
        m_keys += (event->response_type & 0x7F) == XCB_KEY_PRESS;
    }
}

int TestDesktop::takeClicks() {
    readEvents();
    return std::exchange(m_clicks, 0);
}

int TestDesktop::takeKeys() {
    readEvents();
    return std::exchange(m_keys, 0);
}

QImage TestDesktop::look() const {
    awaitServer();
    const QSize size = rectOf(m_screen->root).size();
    const Answer<xcb_get_image_reply_t> reply{
        xcb_get_image_reply(m_connection,
                            xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen->root,
                                          0, 0, static_cast<uint16_t>(size.width()),
                                          static_cast<uint16_t>(size.height()), ~0U),
                            nullptr)};
    return QImage(xcb_get_image_data(reply.get()), size.width(), size.height(),
                  QImage::Format_RGB32)
        .copy();
}

xcb_window_t TestDesktop::focus() const {
    const Answer<xcb_get_input_focus_reply_t> reply{
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr)};
    return reply->focus;
}

bool TestDesktop::isPanel(xcb_window_t window) const {
    const auto classCookie =
        xcb_get_property(m_connection, 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 64);
    const auto attributesCookie = xcb_get_window_attributes(m_connection, window);
    const Answer<xcb_get_property_reply_t> name{
        xcb_get_property_reply(m_connection, classCookie, nullptr)};
    const Answer<xcb_get_window_attributes_reply_t> attributes{
        xcb_get_window_attributes_reply(m_connection, attributesCookie, nullptr)};
    return name && attributes && attributes->override_redirect &&
           attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
           std::string_view(static_cast<const char*>(xcb_get_property_value(name.get())),
                            static_cast<size_t>(xcb_get_property_value_length(name.get())))
               .starts_with("quorvane");
}

bool TestDesktop::isUp(xcb_window_t window) const {
    const Answer<xcb_get_window_attributes_reply_t> attributes{xcb_get_window_attributes_reply(
        m_connection, xcb_get_window_attributes(m_connection, window), nullptr)};
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

QRect TestDesktop::rectOf(xcb_window_t window) const {
    const Answer<xcb_get_geometry_reply_t> reply{
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr)};
    return reply ? QRect(reply->x, reply->y, reply->width, reply->height) : QRect();
}

std::vector<xcb_window_t> TestDesktop::panelWindows() const {
    awaitServer();
    const Answer<xcb_query_tree_reply_t> tree{
        xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, m_screen->root), nullptr)};
    std::vector<xcb_window_t> windows;
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        const xcb_window_t window = xcb_query_tree_children(tree.get())[i];
        if (isPanel(window))
            windows.push_back(window);
    }
    return windows;
}

std::vector<QRect> TestDesktop::panels() const {
    std::vector<QRect> places;
    for (const xcb_window_t window : panelWindows())
        places.push_back(rectOf(window));
    return places;
}

std::vector<uint32_t> TestDesktop::panelProperty(const std::string& name) const {
    const Answer<xcb_get_property_reply_t> reply{xcb_get_property_reply(
        m_connection,
        xcb_get_property(m_connection, 0, panelWindows().back(), atom(name), XCB_ATOM_ANY, 0, 64),
        nullptr)};
    if (!reply || reply->format != 32)
        return {};
    const auto* numbers = static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
    return {numbers, numbers + reply->value_len};
}

bool TestDesktop::panelHasPointer() const {
    const Answer<xcb_test_compare_cursor_reply_t> reply{xcb_test_compare_cursor_reply(
        m_connection, xcb_test_compare_cursor(m_connection, panelWindows().back(), XCB_CURSOR_NONE),
        nullptr)};
    return reply && !reply->same;
}

void TestDesktop::pause() {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

void TestDesktop::work(int milliseconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (std::chrono::steady_clock::now() < end) {
        QCoreApplication::processEvents();
        pause();
    }
}

} // namespace quorvane
