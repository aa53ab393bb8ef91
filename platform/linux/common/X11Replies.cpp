#include "platform/linux/common/X11Replies.h"

#include <algorithm>
#include <charconv>
#include <xcb/xinput.h>

namespace quorvane {

namespace {

// Bytes of the protocol.
constexpr std::size_t unit = 4;
constexpr std::size_t fixedPart = 32;

/// `count` elements behind the fixed part of a reply or event, or as many as it has.
template <class Element, class Reply>
std::span<const Element> elements(const Reply& reply, std::size_t count) {
    static_assert(sizeof(Reply) == fixedPart || sizeof(Reply) == sizeof(xcb_ge_generic_event_t));
    const std::size_t received = unit * reply.length / sizeof(Element);
    return {reinterpret_cast<const Element*>(&reply + 1), std::min(count, received)};
}

} // namespace

std::string_view valueOf(const xcb_get_property_reply_t& reply) {
    const std::size_t size = std::size_t{reply.value_len} * (reply.format / 8U);
    const auto bytes = elements<char>(reply, size);
    return {bytes.data(), bytes.size()};
}

std::vector<xcb_randr_monitor_info_t> monitorsOf(const xcb_randr_get_monitors_reply_t& reply) {
    std::vector<xcb_randr_monitor_info_t> monitors;
    auto rest = elements<std::byte>(reply, unit * reply.length);
    while (monitors.size() < reply.nMonitors && rest.size() >= sizeof(xcb_randr_monitor_info_t)) {
        const auto& monitor = *reinterpret_cast<const xcb_randr_monitor_info_t*>(rest.data());
        monitors.push_back(monitor);
        const std::size_t size = sizeof monitor + unit * monitor.nOutput;
        rest = rest.subspan(std::min(size, rest.size()));
    }
    return monitors;
}

std::span<const xcb_keycode_t> keycodesOf(const xcb_get_modifier_mapping_reply_t& reply) {
    constexpr std::size_t modifiers = 8;
    return elements<xcb_keycode_t>(reply, modifiers * reply.keycodes_per_modifier);
}

std::vector<xcb_keysym_t> plainSymbolsOf(const xcb_get_keyboard_mapping_reply_t& reply) {
    std::vector<xcb_keysym_t> plain;
    const auto symbols = elements<xcb_keysym_t>(reply, reply.length);
    // The first symbol of a row is the key's without modifiers.
    const std::size_t row = reply.keysyms_per_keycode;
    for (std::size_t first = 0; row > 0 && first < symbols.size(); first += row)
        plain.push_back(symbols[first]);
    return plain;
}

std::span<const xcb_input_hierarchy_info_t> devicesOf(const xcb_input_hierarchy_event_t& event) {
    return elements<xcb_input_hierarchy_info_t>(event, event.num_infos);
}

double scaleOf(std::string_view resources) {
    constexpr std::string_view key = "Xft.dpi:";
    constexpr double standardResolution = 96;
    const std::size_t place = resources.find(key);
    if (place == std::string_view::npos)
        return 1;
    resources.remove_prefix(place + key.size());
    resources.remove_prefix(std::min(resources.find_first_not_of(" \t"), resources.size()));
    double resolution = 0;
    std::from_chars(resources.data(), resources.data() + resources.size(), resolution);
    const double scale = resolution / standardResolution;
    return scale >= 0.25 && scale <= 16 ? scale : 1;
}

} // namespace quorvane
