#pragma once

#include <mutex>
#include <optional>
#include <utility>

namespace quorvane {

/// The newest value on its way from an item to its node, which takes it when the next frame is
/// drawn. An item that is updated for every step of an animation has the toolkit look through all
/// items for what lies under the mouse, and a node that takes its steps by itself has not. Put on
/// the main thread, taken on the one that draws.
template <typename T>
class RenderMailbox {
public:
    void put(T value) {
        const std::lock_guard lock(m_mutex);
        m_value = std::move(value);
    }

    /// None if there is nothing newer than what was taken last.
    [[nodiscard]] std::optional<T> take() {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_value, std::nullopt);
    }

private:
    std::mutex m_mutex;
    std::optional<T> m_value;
};

} // namespace quorvane
