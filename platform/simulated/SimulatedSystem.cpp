#include "platform/simulated/SimulatedSystem.h"

#include <algorithm>
#include <utility>

#include "base/UniformDraw.h"

namespace quorvane {

namespace {

std::string fileName(std::string_view name, std::string_view extension) {
    return std::string(name) + "." + std::string(extension);
}

} // namespace

bool SimulatedUserDefaults::boolForKey(std::string_view key) const {
    const auto value = m_values.find(key);
    return value != m_values.end() && value->second;
}

void SimulatedUserDefaults::setBool(std::string_view key, bool value) {
    if (!m_faults->fails(Fault::UserDefaultsWrite))
        m_values.insert_or_assign(std::string(key), value);
}

std::optional<std::filesystem::path>
SimulatedBundle::urlForResource(std::string_view name, std::string_view extension) const {
    const auto path = m_paths.find(fileName(name, extension));
    if (path == m_paths.end() || m_faults->fails(Fault::Resource))
        return std::nullopt;
    return path->second;
}

void SimulatedBundle::addResource(std::string_view name, std::string_view extension,
                                  std::filesystem::path path) {
    m_paths.insert_or_assign(fileName(name, extension), std::move(path));
}

std::uint64_t SimulatedRandom::uniform(std::uint64_t upperBound) {
    m_bounds.push_back(upperBound);
    if (m_script.empty())
        return uniformUpTo(upperBound, [this] { return m_engine(); });
    const std::uint64_t draw = m_script.front();
    m_script.pop_front();
    return std::min(draw, upperBound);
}

void SimulatedRandom::script(std::initializer_list<std::uint64_t> draws) {
    m_script.insert(m_script.end(), draws);
}

} // namespace quorvane
