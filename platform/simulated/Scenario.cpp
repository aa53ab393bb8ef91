#include "platform/simulated/Scenario.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
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

/// An error in the scenario; caught in parseScenario.
class Mistake : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

template <class Value>
using Names = std::initializer_list<std::pair<std::string_view, Value>>;

/// The value of `name` among the words that `key` takes.
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

/// Passes each member of an object to its reader.
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

/// Json::exception if `json` is not a list.
const Json::array_t& listIn(const Json& json) {
    return json.get_ref<const Json::array_t&>();
}

/// The number that is the whole of `text`; none if there is anything else in it.
std::optional<int> wholeNumber(std::string_view text, int base) {
    const char* const end = text.data() + text.size();
    int number = 0;
    const auto result = std::from_chars(text.data(), end, number, base);
    return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

/// An ID: a number, or text in hexadecimal ("0x8104").
int readID(const Json& json) {
    std::int64_t id = 0;
    if (json.is_number_integer()) {
        id = json.get<std::int64_t>();
    } else {
        const auto text = json.get<std::string>();
        const auto number = wholeNumber(text.substr(text.starts_with("0x") ? 2 : 0), 16);
        if (!number)
            throw Mistake("\"" + text + "\" is not an ID in hexadecimal");
        id = *number;
    }
    if (id < 0 || id > 0xFFFF)
        throw Mistake("an ID is outside 0 to 65535");
    return static_cast<int>(id);
}

double readTime(const Json& json) {
    const auto time = json.get<double>();
    if (!(time >= 0) || !std::isfinite(time))
        throw Mistake("a time is negative");
    return time;
}

std::vector<Scenario::LidPoint> readLid(const Json& json) {
    std::vector<Scenario::LidPoint> points;
    for (const Json& point : listIn(json)) {
        if (listIn(point).size() != 2)
            throw Mistake("a lid's point is not [seconds, degrees]");
        const double at = readTime(point[0]);
        const auto degrees = point[1].get<double>();
        if (!points.empty() && at < points.back().at)
            throw Mistake("a lid's times decrease");
        if (degrees < 0 || degrees > 65535)
            throw Mistake("a lid's angle is outside 0 to 65535");
        points.push_back({.at = at, .degrees = degrees});
    }
    return points;
}

std::vector<std::uint8_t> readReport(const Json& json) {
    std::vector<std::uint8_t> report;
    for (const Json& byte : listIn(json)) {
        if (!byte.is_number_integer() || byte < 0 || byte > 255)
            throw Mistake("a report's byte is not a whole number from 0 to 255");
        report.push_back(byte.get<std::uint8_t>());
    }
    return report;
}

std::map<int, std::vector<std::uint8_t>> readReadings(const Json& json) {
    std::map<int, std::vector<std::uint8_t>> readings;
    for (const auto& [key, report] : json.get_ref<const Json::object_t&>()) {
        const int number = wholeNumber(key, 10).value_or(0);
        if (number < 1)
            throw Mistake("\"" + key + "\" is not the number of a reading");
        readings[number] = readReport(report);
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
    const auto quit = [&](const Json& value) {
        if (!value.get<bool>())
            throw Mistake("\"quit\" does not take false");
        happens(Scenario::Quit{});
    };
    readObject(
        json, "an event",
        {{"at", [&](const Json& value) { event.at = readTime(value); }},
         {"press", [&](const Json& value) { happens(Scenario::Press{value.get<std::string>()}); }},
         {"post", [&](const Json& value) { happens(Scenario::Post{value.get<std::string>()}); }},
         {"screens", screens},
         {"machine", machine},
         {"key", key},
         {"quit", quit}});
    if (kinds != 1)
        throw Mistake("an event must be exactly one of press, post, screens, machine, key, quit");
    return event;
}

std::vector<Scenario::Event> readEvents(const Json& json) {
    std::vector<Scenario::Event> events;
    for (const Json& event : listIn(json)) {
        events.push_back(readEvent(event));
        if (events.size() > 1 && events.back().at < events[events.size() - 2].at)
            throw Mistake("the events' times decrease");
    }
    return events;
}

Scenario readScenario(const Json& json) {
    Scenario scenario;
    const auto devices = [&](const Json& value) {
        std::transform(listIn(value).begin(), listIn(value).end(),
                       std::back_inserter(scenario.devices), readDevice);
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
    // A folder can be opened; only reading it fails.
    if (std::filesystem::is_directory(path, ignored))
        return ScenarioError{std::generic_category().message(EISDIR)};
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return ScenarioError{std::generic_category().message(errno)};
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return parseScenario(text);
}

double lidAngleAt(const std::vector<Scenario::LidPoint>& points, double time) {
    const auto next = std::find_if(points.begin(), points.end(),
                                   [time](const auto& point) { return point.at > time; });
    if (next == points.begin())
        return next->degrees;
    const auto previous = std::prev(next);
    if (next == points.end())
        return previous->degrees;
    const double part = (time - previous->at) / (next->at - previous->at);
    return previous->degrees + part * (next->degrees - previous->degrees);
}

} // namespace quorvane
