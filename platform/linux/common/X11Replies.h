#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>
#include <xcb/randr.h>
#include <xcb/xcb.h>

struct xcb_input_hierarchy_event_t;
struct xcb_input_hierarchy_info_t;

namespace quorvane {

// The parts of the X server's replies and events that vary in size. A reply is as long as its field
// `length` says, by which xcb receives it; the counts in it are not believed beyond that. What is
// returned points into the reply.

/// The value of a property; empty if it is not set.
[[nodiscard]] std::string_view valueOf(const xcb_get_property_reply_t& reply);

/// Copies, as they are of different sizes.
[[nodiscard]] std::vector<xcb_randr_monitor_info_t>
monitorsOf(const xcb_randr_get_monitors_reply_t& reply);

/// The keycodes of all modifiers; 0 where there is none.
[[nodiscard]] std::span<const xcb_keycode_t>
keycodesOf(const xcb_get_modifier_mapping_reply_t& reply);

/// The symbol of each keycode without modifiers, from the first keycode that was asked for on.
[[nodiscard]] std::vector<xcb_keysym_t>
plainSymbolsOf(const xcb_get_keyboard_mapping_reply_t& reply);

/// What happened to each device.
[[nodiscard]] std::span<const xcb_input_hierarchy_info_t>
devicesOf(const xcb_input_hierarchy_event_t& event);

/// The desktop's resolution setting for X11 programs, in pixels per point, in the text of the
/// property RESOURCE_MANAGER. 1 if there is none, or one that no desktop has: outside 1/4 to 16.
[[nodiscard]] double scaleOf(std::string_view resources);

} // namespace quorvane
