#include "platform/simulated/Scenario.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "platform/NotificationCenter.h"

namespace quorvane {

namespace {

using Json = nlohmann::json;

/// Thrown where the text does not describe a machine; caught in parseScenario.
class Mistake : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

template <class Value>
using Names = std::initializer_list<std::pair<std::string_view, Value>>;

/// What `name` stands for in a table of the words that a key takes.
template <class Value>
Value lookUp(const Names<Value>& names, const std::string& name, const std::string& key) {
    for (const auto& [known, value] : names) {
        if (known == name)
            return value;
    }
    throw Mistake("\"" + key + "\" does not take \"" + name + "\"");
}

using Reader = std::function<void(const Json&)>;
using Readers = std::initializer_list<std::pair<std::string_view, Reader>>;

/// Hands each member of an object to its reader.
void readObject(const Json& json, const std::string& what, const Readers& readers) {
    if (!json.is_object())
        throw Mistake(what + " is not an object");
    for (const auto& [key, value] : json.items()) {
        const auto* const reader =
            std::find_if(readers.begin(), readers.end(),
                         [&key = key](const auto& known) { return known.first == key; });
        if (reader == readers.end())
            throw Mistake(
                std::string(what).append(" has an unknown key \"").append(key).append("\""));
        try {
            reader->second(value);
        } catch (const Json::exception&) {
            throw Mistake(std::string(what).append(": \"").append(key).append(
                "\" has a value of the wrong kind"));
        }
    }
}

template <class Value>
Reader into(Value& target) {
    return [&target](const Json& json) { target = json.get<Value>(); };
}

template <class Value>
Reader into(std::optional<Value>& target) {
    return [&target](const Json& json) { target = json.get<Value>(); };
}

/// An ID as JSON has it: a number, or text in hexadecimal ("0x8104").
int readID(const Json& json) {
    if (json.is_number_integer())
        return json.get<int>();
    const auto text = json.get<std::string>();
    std::size_t length = 0;
    int id = 0;
    try {
        id = std::stoi(text, &length, 16);
    } catch (const std::logic_error&) {
        length = 0;
    }
    if (text.empty() || length != text.size())
        throw Mistake("\"" + text + "\" is not an ID in hexadecimal");
    return id;
}

double readTime(const Json& json) {
    const auto time = json.get<double>();
    if (!(time >= 0) || !std::isfinite(time))
        throw Mistake("a time is negative");
    return time;
}

std::vector<Scenario::LidPoint> readLid(const Json& json) {
    std::vector<Scenario::LidPoint> way;
    for (const Json& point : json) {
        const auto [at, degrees] = point.get<std::pair<double, double>>();
        if (!way.empty() && at < way.back().at)
            throw Mistake("a lid's times decrease");
        if (degrees < 0 || degrees > 65535)
            throw Mistake("a lid's angle is outside 0 to 65535");
        way.push_back({.at = at, .degrees = degrees});
    }
    return way;
}

std::map<int, std::vector<std::uint8_t>> readReadings(const Json& json) {
    std::map<int, std::vector<std::uint8_t>> readings;
    for (const auto& [number, report] : json.items()) {
        const int reading = std::atoi(number.c_str());
        if (reading < 1)
            throw Mistake("\"" + number + "\" is not the number of a reading");
        readings[reading] = report.get<std::vector<std::uint8_t>>();
    }
    return readings;
}

Scenario::Device readDevice(const Json& json) {
    Scenario::Device device;
    readObject(json, "a device",
               {{"vendor", [&](const Json& value) { device.vendorID = readID(value); }},
                {"product", [&](const Json& value) { device.productID = readID(value); }},
                {"lid", [&](const Json& value) { device.lid = readLid(value); }},
                {"refusesOpen", into(device.refusesOpen)},
                {"unplugAt", [&](const Json& value) { device.unplugAt = readTime(value); }},
                {"readings", [&](const Json& value) { device.readings = readReadings(value); }}});
    return device;
}

Scenario::Event readEvent(const Json& json) {
    Scenario::Event event;
    int kinds = 0;
    const auto happens = [&](auto what) {
        event.what = std::move(what);
        ++kinds;
    };
    const auto screens = [&](const Json& value) {
        happens(Scenario::Workspace{
            std::string(lookUp<std::string_view>({{"sleep", WorkspaceNotification::screensDidSleep},
                                                  {"wake", WorkspaceNotification::screensDidWake}},
                                                 value.get<std::string>(), "screens"))});
    };
    const auto machine = [&](const Json& value) {
        happens(Scenario::Workspace{std::string(lookUp<std::string_view>(
            {{"wake", WorkspaceNotification::didWake}}, value.get<std::string>(), "machine"))});
    };
    const auto key = [&](const Json& value) {
        happens(lookUp<Scenario::Key>({{"down", Scenario::Key::Down},
                                       {"repeat", Scenario::Key::Repeat},
                                       {"up", Scenario::Key::Up},
                                       {"flags", Scenario::Key::FlagsChanged}},
                                      value.get<std::string>(), "key"));
    };
    readObject(
        json, "an event",
        {{"at", [&](const Json& value) { event.at = readTime(value); }},
         {"press", [&](const Json& value) { happens(Scenario::Press{value.get<std::string>()}); }},
         {"post", [&](const Json& value) { happens(Scenario::Post{value.get<std::string>()}); }},
         {"screens", screens},
         {"machine", machine},
         {"key", key},
         {"quit", [&](const Json&) { happens(Scenario::Quit{}); }}});
    if (kinds != 1)
        throw Mistake("an event must be exactly one of press, post, screens, machine, key, quit");
    return event;
}

std::vector<Scenario::Event> readEvents(const Json& json) {
    std::vector<Scenario::Event> events;
    for (const Json& event : json) {
        events.push_back(readEvent(event));
        if (events.size() > 1 && events.back().at < events[events.size() - 2].at)
            throw Mistake("the events' times decrease");
    }
    return events;
}

Scenario readScenario(const Json& json) {
    Scenario scenario;
    const auto devices = [&](const Json& value) {
        std::transform(value.begin(), value.end(), std::back_inserter(scenario.devices),
                       readDevice);
    };
    readObject(json, "the scenario",
               {{"model", into(scenario.model)},
                {"trusted", into(scenario.trusted)},
                {"loginItem", into(scenario.loginItem)},
                {"defaults", into(scenario.defaults)},
                {"hid", devices},
                {"hidManagerRefusesOpen", into(scenario.hidManagerRefusesOpen)},
                {"events", [&](const Json& value) { scenario.events = readEvents(value); }}});
    return scenario;
}

} // namespace

std::variant<Scenario, ScenarioError> parseScenario(std::string_view text) {
    try {
        return readScenario(Json::parse(text, nullptr, true, /*ignore_comments=*/true));
    } catch (const Json::exception& error) {
        return ScenarioError{error.what()};
    } catch (const Mistake& mistake) {
        return ScenarioError{mistake.what()};
    }
}

std::variant<Scenario, ScenarioError> loadScenario(const std::filesystem::path& path) {
    std::error_code ignored;
    // A folder can be opened, but fails at the first reading.
    if (std::filesystem::is_directory(path, ignored))
        return ScenarioError{std::generic_category().message(EISDIR)};
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return ScenarioError{std::generic_category().message(errno)};
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return parseScenario(text);
}

double lidAngleAt(const std::vector<Scenario::LidPoint>& way, double time) {
    const auto next =
        std::find_if(way.begin(), way.end(), [time](const auto& point) { return point.at > time; });
    if (next == way.begin())
        return next->degrees;
    const auto previous = std::prev(next);
    if (next == way.end())
        return previous->degrees;
    const double part = (time - previous->at) / (next->at - previous->at);
    return previous->degrees + part * (next->degrees - previous->degrees);
}

} // namespace quorvane
