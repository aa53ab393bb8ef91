#pragma once

namespace quorvane {

/// Whether all keys of the session go through an X server. A Wayland session has a DISPLAY too, for
/// X11 programs, but keys reach that only while one of those has the focus.
[[nodiscard]] bool isX11Session();

} // namespace quorvane
