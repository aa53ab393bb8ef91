#pragma once

#include <QImage>
#include <xcb/shm.h>

#include "base/NonCopyable.h"
#include "platform/linux/common/X11Connection.h"

namespace quorvane {

/// An image in memory that the X server can read too, where that server is on this machine; else it
/// is sent. The memory has no name anywhere: it goes with the two processes.
class X11SharedImage : NonCopyable {
public:
    X11SharedImage(X11Connection& connection, QSize size, QImage::Format format);
    ~X11SharedImage();

    [[nodiscard]] QImage& image() { return m_image; }

    /// Shows a part of the image at the same place in `window`.
    void put(xcb_window_t window, xcb_gcontext_t context, uint8_t depth, const QRect& part) const;
    /// Fills the image with what the screen shows from `corner` on; whether that could be had.
    bool capture(QPoint corner);

private:
    bool share(QSize size, QImage::Format format);
    [[nodiscard]] bool captureShared(QPoint corner) const;
    bool captureSent(QPoint corner);
    void send(xcb_window_t window, xcb_gcontext_t context, uint8_t depth, const QRect& part) const;

    X11Connection& m_connection;
    size_t m_bytes;
    void* m_memory = nullptr;
    xcb_shm_seg_t m_segment = 0;
    QImage m_image;
};

} // namespace quorvane
