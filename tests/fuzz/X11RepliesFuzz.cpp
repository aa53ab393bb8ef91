#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>
#include <xcb/xinput.h>

#include "platform/linux/common/X11Replies.h"
#include "tests/fuzz/Fuzzing.h"

namespace quorvane {

namespace {

/// The input as a reply or event in memory of its own, as xcb receives it: with a length that is
/// true and everything else as it may be.
template <class Reply>
class Received {
public:
    explicit Received(std::string_view bytes)
        : m_bytes(std::max(bytes.size(), sizeof(Reply)) / 4 * 4) {
        std::memcpy(m_bytes.data(), bytes.data(), std::min(bytes.size(), m_bytes.size()));
        reply().length = static_cast<std::uint32_t>((m_bytes.size() - sizeof(Reply)) / 4);
    }

    Reply& reply() { return *reinterpret_cast<Reply*>(m_bytes.data()); }

    /// Whether `part` is in the reply, behind its fixed part. An empty one may be anywhere.
    template <class Part>
    bool holds(const Part& part) {
        const auto* begin = reinterpret_cast<const char*>(part.data());
        return part.empty() ||
               (begin >= m_bytes.data() + sizeof(Reply) &&
                begin + part.size() * sizeof part[0] <= m_bytes.data() + m_bytes.size());
    }

private:
    std::vector<char> m_bytes;
};

} // namespace

} // namespace quorvane

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorvane;
    const auto bytes = textOf(data, size);
    Received<xcb_get_property_reply_t> property(bytes);
    require(property.holds(valueOf(property.reply())), "a property's value is in the reply");
    const double scale = scaleOf(valueOf(property.reply()));
    require(scale >= 0.25 && scale <= 16, "a scale is one that a desktop has");

    Received<xcb_randr_get_monitors_reply_t> monitors(bytes);
    const auto found = monitorsOf(monitors.reply());
    require(found.size() <= monitors.reply().nMonitors &&
                found.size() * sizeof found[0] <= std::size_t{4} * monitors.reply().length,
            "monitors are in the reply");

    Received<xcb_get_modifier_mapping_reply_t> modifiers(bytes);
    require(modifiers.holds(keycodesOf(modifiers.reply())), "keycodes are in the reply");

    Received<xcb_get_keyboard_mapping_reply_t> keyboard(bytes);
    require(plainSymbolsOf(keyboard.reply()).size() <= keyboard.reply().length,
            "a row has a symbol at least");

    Received<xcb_input_hierarchy_event_t> hierarchy(bytes);
    require(hierarchy.holds(devicesOf(hierarchy.reply())), "devices are in the event");
    return 0;
}
