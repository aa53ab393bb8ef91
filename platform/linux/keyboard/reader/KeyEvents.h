#pragma once

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstring>
#include <functional>
#include <linux/input.h>
#include <optional>

namespace quorvane {

/// A set of key codes, laid out as the kernel's ioctls have it. Leaves nothing in memory.
class KeySet {
public:
    KeySet() = default;
    KeySet(const KeySet&) = default;
    KeySet& operator=(const KeySet&) = default;

    ~KeySet() { explicit_bzero(m_words.data(), sizeof m_words); }

    [[nodiscard]] bool test(std::size_t key) const { return (m_words[key / bits] & bit(key)) != 0; }

    void set(std::size_t key, bool isIn) {
        m_words[key / bits] =
            isIn ? m_words[key / bits] | bit(key) : m_words[key / bits] & ~bit(key);
    }

    [[nodiscard]] bool none() const {
        return std::all_of(m_words.begin(), m_words.end(), [](auto word) { return word == 0; });
    }

    [[nodiscard]] void* data() { return m_words.data(); }

    static constexpr std::size_t size() { return sizeof(Words); }

private:
    static constexpr std::size_t bits = CHAR_BIT * sizeof(unsigned long);
    using Words = std::array<unsigned long, (KEY_CNT + bits - 1) / bits>;

    static constexpr unsigned long bit(std::size_t key) { return 1UL << (key % bits); }

    Words m_words{};
};

/// A keyboard's node may carry a pointer's, a pad's or a remote control's buttons too.
[[nodiscard]] bool isButton(std::size_t code);

/// Counts the keys that go down in one keyboard's events, without modifiers and repeats. Which keys
/// are down is remembered only to know repeats and to make up for events that the kernel dropped.
class KeyEvents {
public:
    /// Asks the device for the keys that are down now; none on failure.
    using Query = std::function<std::optional<KeySet>()>;

    explicit KeyEvents(Query query);

    /// How many keys went down with this event.
    [[nodiscard]] std::size_t handle(const input_event& event);

private:
    [[nodiscard]] std::size_t handleReport(const input_event& event);
    [[nodiscard]] std::size_t handleKey(std::size_t key, int value);
    [[nodiscard]] std::size_t catchUp();

    Query m_query;
    KeySet m_down;
    bool m_lostEvents = false;
};

} // namespace quorvane
