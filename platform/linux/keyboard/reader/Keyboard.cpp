#include "platform/linux/keyboard/reader/Keyboard.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <utility>

namespace quorvane {

namespace {

void setMask(int descriptor, std::uint32_t type, KeySet codes) {
    input_mask mask{};
    mask.type = type;
    mask.codes_size = KeySet::size();
    mask.codes_ptr = reinterpret_cast<std::uintptr_t>(codes.data());
    // Without the mask there are more wake-ups and nothing else.
    static_cast<void>(ioctl(descriptor, EVIOCSMASK, &mask));
}

/// Masks all events of the node but those of keys.
void askForKeysOnly(int descriptor) {
    KeySet types;
    types.set(EV_KEY, true);
    setMask(descriptor, EV_SYN, types);
    KeySet keys;
    for (std::size_t code = 0; code < KEY_CNT; ++code)
        keys.set(code, !isButton(code));
    setMask(descriptor, EV_KEY, keys);
}

} // namespace

std::unique_ptr<Keyboard> Keyboard::open(const std::string& node, Query query) {
    auto descriptor = FileDescriptor::open(node, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!descriptor)
        return nullptr;
    askForKeysOnly(descriptor.get());
    return std::unique_ptr<Keyboard>(new Keyboard(std::move(descriptor), query));
}

Keyboard::Keyboard(FileDescriptor descriptor, Query query)
    : m_descriptor(std::move(descriptor)),
      m_events([query, device = m_descriptor.get()] { return query(device); }) {}

std::optional<std::size_t> Keyboard::read() {
    std::array<input_event, 64> events; // NOLINT(*-member-init): filled by read.
    const ssize_t size = ::read(m_descriptor.get(), events.data(), sizeof events);
    const bool isEmpty = size < 0 && (errno == EAGAIN || errno == EINTR);
    // The kernel returns whole events only.
    const bool isWhole = size > 0 && static_cast<std::size_t>(size) % sizeof(input_event) == 0;
    std::size_t presses = 0;
    for (std::size_t i = 0; isWhole && i < static_cast<std::size_t>(size) / sizeof(input_event);
         ++i)
        presses += m_events.handle(events[i]);
    explicit_bzero(events.data(), sizeof events);
    return isEmpty || isWhole ? std::optional(presses) : std::nullopt;
}

bool Keyboard::isGone() const {
    pollfd device{.fd = m_descriptor.get(), .events = 0, .revents = 0};
    return poll(&device, 1, 0) > 0;
}

std::optional<KeySet> Keyboard::keysThatAreDown(int descriptor) {
    KeySet keys;
    if (ioctl(descriptor, EVIOCGKEY(KeySet::size()), keys.data()) < 0)
        return std::nullopt;
    return keys;
}

} // namespace quorvane
