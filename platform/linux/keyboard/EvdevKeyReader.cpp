#include "platform/linux/keyboard/EvdevKeyReader.h"

#include <utility>

namespace quorvane {

std::unique_ptr<EvdevKeyReader> EvdevKeyReader::open(std::unique_ptr<KeyboardWatcher> nodes,
                                                     Sink sink, EvdevKeyboard::KeyQuery query) {
    std::unique_ptr<EvdevKeyReader> reader(
        new EvdevKeyReader(std::move(nodes), std::move(sink), query));
    return reader->m_keyboards.empty() ? nullptr : std::move(reader);
}

EvdevKeyReader::EvdevKeyReader(std::unique_ptr<KeyboardWatcher> nodes, Sink sink,
                               EvdevKeyboard::KeyQuery query)
    : m_sink(std::move(sink)), m_query(query), m_nodes(std::move(nodes)) {
    m_nodes->follow([this](const std::filesystem::path& node) { add(node); },
                    [this](const std::filesystem::path& node) { m_keyboards.erase(node); });
}

void EvdevKeyReader::add(const std::filesystem::path& node) {
    const auto known = m_keyboards.find(node);
    if (known != m_keyboards.end() && known->second->isOpen())
        return;
    auto keyboard = EvdevKeyboard::open(node, m_sink, m_query);
    if (!keyboard)
        return;
    keyboard->setReading(m_reading);
    m_keyboards[node] = std::move(keyboard);
}

void EvdevKeyReader::setReading(bool reading) {
    m_reading = reading;
    for (const auto& [node, keyboard] : m_keyboards)
        keyboard->setReading(reading);
}

} // namespace quorvane
