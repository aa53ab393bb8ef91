#pragma once

#include <filesystem>
#include <map>
#include <memory>

#include "platform/linux/keyboard/EvdevKeyboard.h"
#include "platform/linux/keyboard/KeyEventReader.h"
#include "platform/linux/keyboard/KeyboardWatcher.h"

namespace quorvane {

/// The keys of every keyboard that this process may read, including those plugged in later. A
/// keyboard that is unplugged is dropped silently.
class EvdevKeyReader final : public KeyEventReader {
public:
    /// Null if no keyboard can be read.
    [[nodiscard]] static std::unique_ptr<EvdevKeyReader>
    open(std::unique_ptr<KeyboardWatcher> nodes, Sink sink,
         EvdevKeyboard::KeyQuery query = &EvdevKeyboard::keysThatAreDown);

    void setReading(bool reading) override;

private:
    EvdevKeyReader(std::unique_ptr<KeyboardWatcher> nodes, Sink sink,
                   EvdevKeyboard::KeyQuery query);

    void add(const std::filesystem::path& node);

    Sink m_sink;
    EvdevKeyboard::KeyQuery m_query;
    std::map<std::filesystem::path, std::unique_ptr<EvdevKeyboard>> m_keyboards;
    bool m_reading = false;
    /// Last, so that it is destroyed first and calls no half-destroyed reader.
    std::unique_ptr<KeyboardWatcher> m_nodes;
};

} // namespace quorvane
