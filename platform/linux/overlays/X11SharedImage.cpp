#include "platform/linux/overlays/X11SharedImage.h"

#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace quorvane {

namespace {

constexpr int bytesPerPixel = 4;
constexpr uint32_t allPlanes = ~0U;
// Of a request that carries an image: its header, in bytes.
constexpr size_t imageHeader = 32;

// Through anything but a local socket no memory can be passed: trying to would end the connection.
bool isLocal(const X11Connection& connection) {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    // The socket interface gives every family's address through the same pointer.
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    return getsockname(xcb_get_file_descriptor(connection.get()), generic, &length) == 0 &&
           address.ss_family == AF_UNIX;
}

bool serverShares(const X11Connection& connection) {
    const auto* extension = xcb_get_extension_data(connection.get(), &xcb_shm_id);
    if (!extension || !extension->present)
        return false;
    const XcbReply<xcb_shm_query_version_reply_t> version{xcb_shm_query_version_reply(
        connection.get(), xcb_shm_query_version(connection.get()), nullptr)};
    // Descriptors are passed from 1.2 on.
    return version && std::pair(version->major_version, version->minor_version) >=
                          std::pair<uint16_t, uint16_t>(1, 2);
}

template <class Number>
int16_t place(Number number) {
    return static_cast<int16_t>(number);
}

template <class Number>
uint16_t extent(Number number) {
    return static_cast<uint16_t>(number);
}

} // namespace

X11SharedImage::X11SharedImage(X11Connection& connection, QSize size, QImage::Format format)
    : m_connection(connection), m_bytes(static_cast<size_t>(size.width()) *
                                        static_cast<size_t>(size.height()) * bytesPerPixel) {
    if (!isLocal(connection) || !serverShares(connection) || !share(size, format))
        m_image = QImage(size, format);
}

X11SharedImage::~X11SharedImage() {
    m_image = QImage();
    if (m_segment)
        xcb_shm_detach(m_connection.get(), m_segment);
    if (m_memory)
        munmap(m_memory, m_bytes);
}

bool X11SharedImage::share(QSize size, QImage::Format format) {
    const int descriptor = memfd_create("quorvane-overlay", MFD_CLOEXEC);
    if (descriptor < 0)
        return false;
    void* memory = MAP_FAILED; // NOLINT(performance-no-int-to-ptr): the system's constant.
    if (ftruncate(descriptor, static_cast<off_t>(m_bytes)) == 0)
        memory = mmap(nullptr, m_bytes, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (memory == MAP_FAILED) { // NOLINT(performance-no-int-to-ptr): the same.
        close(descriptor);
        return false;
    }
    m_memory = memory;
    const xcb_shm_seg_t segment = xcb_generate_id(m_connection.get());
    // The library closes the descriptor.
    const XcbReply<xcb_generic_error_t> error{xcb_request_check(
        m_connection.get(), xcb_shm_attach_fd_checked(m_connection.get(), segment, descriptor,
                                                      /*read_only=*/0))};
    if (error)
        return false;
    m_segment = segment;
    m_image = QImage(static_cast<uchar*>(memory), size.width(), size.height(),
                     static_cast<qsizetype>(size.width()) * bytesPerPixel, format);
    return true;
}

void X11SharedImage::put(xcb_window_t window, xcb_gcontext_t context, uint8_t depth,
                         const QRect& part) const {
    if (!m_segment) {
        send(window, context, depth, part);
        return;
    }
    xcb_shm_put_image(m_connection.get(), window, context, extent(m_image.width()),
                      extent(m_image.height()), extent(part.x()), extent(part.y()),
                      extent(part.width()), extent(part.height()), place(part.x()), place(part.y()),
                      depth, XCB_IMAGE_FORMAT_Z_PIXMAP, /*send_event=*/0, m_segment, 0);
}

void X11SharedImage::send(xcb_window_t window, xcb_gcontext_t context, uint8_t depth,
                          const QRect& part) const {
    const size_t longest = xcb_get_maximum_request_length(m_connection.get()) * size_t{4};
    // The connection is broken.
    if (longest <= imageHeader)
        return;
    const auto rowBytes = static_cast<size_t>(part.width()) * bytesPerPixel;
    const int rows = static_cast<int>(std::max<size_t>((longest - imageHeader) / rowBytes, 1));
    for (int top = part.top(); top <= part.bottom(); top += rows) {
        const int height = std::min(rows, part.bottom() + 1 - top);
        const QImage strip = m_image.copy(part.x(), top, part.width(), height);
        xcb_put_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, context,
                      extent(strip.width()), extent(height), place(part.x()), place(top), 0, depth,
                      static_cast<uint32_t>(strip.sizeInBytes()), strip.constBits());
    }
}

bool X11SharedImage::capture(QPoint corner) {
    if (m_connection.visual(m_connection.screen().root_depth) == 0)
        return false;
    return m_segment ? captureShared(corner) : captureSent(corner);
}

bool X11SharedImage::captureShared(QPoint corner) const {
    const auto cookie =
        xcb_shm_get_image(m_connection.get(), m_connection.root(), place(corner.x()),
                          place(corner.y()), extent(m_image.width()), extent(m_image.height()),
                          allPlanes, XCB_IMAGE_FORMAT_Z_PIXMAP, m_segment, 0);
    const XcbReply<xcb_shm_get_image_reply_t> reply{
        xcb_shm_get_image_reply(m_connection.get(), cookie, nullptr)};
    return reply != nullptr;
}

bool X11SharedImage::captureSent(QPoint corner) {
    const auto cookie = xcb_get_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP,
                                      m_connection.root(), place(corner.x()), place(corner.y()),
                                      extent(m_image.width()), extent(m_image.height()), allPlanes);
    const XcbReply<xcb_get_image_reply_t> reply{
        xcb_get_image_reply(m_connection.get(), cookie, nullptr)};
    if (!reply || static_cast<size_t>(xcb_get_image_data_length(reply.get())) != m_bytes)
        return false;
    std::memcpy(m_image.bits(), xcb_get_image_data(reply.get()), m_bytes);
    return true;
}

} // namespace quorvane
