#include "platform/linux/common/X11Connection.h"

#include <string>

namespace quorvane {

namespace {

constexpr uint32_t redOfEightBits = 0xFF0000;

const xcb_screen_t* screenAt(xcb_connection_t* connection, int number) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; number > 0 && screens.rem > 1; --number)
        xcb_screen_next(&screens);
    return screens.data;
}

xcb_visualid_t visualOf(const xcb_depth_t& depth) {
    for (auto visuals = xcb_depth_visuals_iterator(&depth); visuals.rem > 0;
         xcb_visualtype_next(&visuals))
        if (visuals.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR &&
            visuals.data->red_mask == redOfEightBits)
            return visuals.data->visual_id;
    return 0;
}

} // namespace

std::unique_ptr<X11Connection> X11Connection::open() {
    int screenNumber = 0;
    xcb_connection_t* connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(connection) != 0) {
        xcb_disconnect(connection);
        return nullptr;
    }
    return std::unique_ptr<X11Connection>(new X11Connection(connection, screenNumber));
}

X11Connection::X11Connection(xcb_connection_t* connection, int screenNumber)
    : m_connection(connection), m_screenNumber(screenNumber),
      m_screen(screenAt(connection, screenNumber)),
      m_readable(xcb_get_file_descriptor(connection), QSocketNotifier::Read) {
    QObject::connect(&m_readable, &QSocketNotifier::activated, &m_readable,
                     [this] { readEvents(); });
    m_settle.setSingleShot(true);
    m_settle.setInterval(0);
    QObject::connect(&m_settle, &QTimer::timeout, &m_settle, [this] { readEvents(); });
}

X11Connection::~X11Connection() {
    m_readable.setEnabled(false);
    xcb_disconnect(m_connection);
}

void X11Connection::settle() {
    flush();
    m_settle.start();
}

void X11Connection::flush() {
    xcb_flush(m_connection);
}

void X11Connection::setReading(bool reading) {
    m_readable.setEnabled(reading && xcb_connection_has_error(m_connection) == 0);
    // Events that xcb has queued already do not make the socket readable.
    if (reading)
        m_settle.start();
    else
        m_settle.stop();
}

void X11Connection::readEvents() {
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)})
        if (m_handler)
            m_handler(*event);
    // The socket of a lost connection stays readable for ever.
    if (xcb_connection_has_error(m_connection) != 0)
        m_readable.setEnabled(false);
}

bool X11Connection::isBroken() {
    // xcb notices a lost connection only by reading.
    readEvents();
    return xcb_connection_has_error(m_connection) != 0;
}

xcb_atom_t X11Connection::atom(std::string_view name) const {
    const auto known = m_atoms.find(name);
    if (known != m_atoms.end())
        return known->second;
    const auto cookie = xcb_intern_atom(m_connection, /*only_if_exists=*/0,
                                        static_cast<uint16_t>(name.size()), name.data());
    const XcbReply<xcb_intern_atom_reply_t> reply{
        xcb_intern_atom_reply(m_connection, cookie, nullptr)};
    return m_atoms[std::string(name)] = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

bool X11Connection::composites() const {
    const xcb_atom_t selection = atom("_NET_WM_CM_S" + std::to_string(m_screenNumber));
    const XcbReply<xcb_get_selection_owner_reply_t> reply{xcb_get_selection_owner_reply(
        m_connection, xcb_get_selection_owner(m_connection, selection), nullptr)};
    return reply && reply->owner != XCB_WINDOW_NONE;
}

xcb_visualid_t X11Connection::visual(int depth) const {
    for (auto depths = xcb_screen_allowed_depths_iterator(m_screen); depths.rem > 0;
         xcb_depth_next(&depths))
        if (depths.data->depth == depth)
            if (const xcb_visualid_t visual = visualOf(*depths.data))
                return visual;
    return 0;
}

} // namespace quorvane
