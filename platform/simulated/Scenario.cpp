#include "platform/simulated/Scenario.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <system_error>
#include <utility>

#include "platform/NotificationCenter.h"
#include "platform/simulated/PlacedJson.h"

namespace quorvane {

namespace {

// Bytes. Scenarios have a few kilobytes.
constexpr std::size_t largestFile = 1 << 20;

template <class Value>
using Names = std::initializer_list<std::pair<std::string_view, Value>>;

/// The value of a name among the words that `key` takes.
template <class Value>
Value lookUp(const Names<Value>& names, const JsonValue& json, const std::string& key) {
    const auto& name = json.as<std::string>();
    for (const auto& [known, value] : names) {
        if (known == name)
            return value;
    }
    throw Mistake(json.offset, "\"" + key + "\" does not take \"" + name + "\"");
}

using Reader = std::function<void(const JsonValue&)>;
using Readers = std::initializer_list<std::pair<std::string_view, Reader>>;

/// Passes each member of an object to its reader.
void readObject(const JsonValue& json, const std::string& what, const Readers& readers) {
    const auto* const object = std::get_if<JsonValue::Object>(&json.value);
    if (!object)
        throw Mistake(json.offset, what + " is not an object");
    for (const auto& [offset, key, value] : *object) {
        const auto* const reader =
            std::find_if(readers.begin(), readers.end(),
                         [&key = key](const auto& known) { return known.first == key; });
        if (reader == readers.end())
            throw Mistake(
                offset,
                std::string(what).append(" has an unknown key \"").append(key).append("\""));
        try {
            reader->second(value);
        } catch (const JsonValue::WrongKind& wrong) {
            throw Mistake(wrong.offset, std::string(what).append(": \"").append(key).append(
                                            "\" has a value of the wrong kind"));
        }
    }
}

template <class Value>
Reader into(Value& target) {
    return [&target](const JsonValue& json) { target = json.as<Value>(); };
}

/// JsonValue::WrongKind if `json` is not a list.
const JsonValue::List& listIn(const JsonValue& json) {
    return json.as<JsonValue::List>();
}

/// The number that is the whole of `text`; none if there is anything else in it.
std::optional<int> wholeNumber(std::string_view text, int base) {
    const char* const end = text.data() + text.size();
    int number = 0;
    const auto result = std::from_chars(text.data(), end, number, base);
    return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

/// The value of a whole number; none of anything else.
std::optional<double> wholeNumber(const JsonValue& json) {
    const auto* const number = std::get_if<JsonValue::Number>(&json.value);
    return number && number->isWhole ? std::optional(number->value) : std::nullopt;
}

/// An ID: a number, or text in hexadecimal ("0x8104").
int readID(const JsonValue& json) {
    auto id = wholeNumber(json);
    if (!id) {
        const auto& text = json.as<std::string>();
        const std::string_view digits(text);
        id = wholeNumber(digits.substr(digits.starts_with("0x") ? 2 : 0), 16);
        if (!id)
            throw Mistake(json.offset, "\"" + text + "\" is not an ID in hexadecimal");
    }
    if (*id < 0 || *id > 0xFFFF)
        throw Mistake(json.offset, "an ID is outside 0 to 65535");
    return static_cast<int>(*id);
}

double readTime(const JsonValue& json) {
    const double time = json.as<JsonValue::Number>().value;
    if (time < 0)
        throw Mistake(json.offset, "a time is negative");
    return time;
}

std::map<std::string, bool> readDefaults(const JsonValue& json) {
    std::map<std::string, bool> defaults;
    for (const JsonValue::Member& member : json.as<JsonValue::Object>())
        defaults[member.key] = member.value.as<bool>();
    return defaults;
}

std::vector<Scenario::LidPoint> readLid(const JsonValue& json) {
    std::vector<Scenario::LidPoint> points;
    for (const JsonValue& point : listIn(json)) {
        const auto& pair = listIn(point);
        if (pair.size() != 2)
            throw Mistake(point.offset, "a lid's point is not [seconds, degrees]");
        const double at = readTime(pair[0]);
        const double degrees = pair[1].as<JsonValue::Number>().value;
        if (!points.empty() && at < points.back().at)
            throw Mistake(pair[0].offset, "a lid's times decrease");
        if (degrees < 0 || degrees > 65535)
            throw Mistake(pair[1].offset, "a lid's angle is outside 0 to 65535");
        points.push_back({.at = at, .degrees = degrees});
    }
    return points;
}

std::vector<std::uint8_t> readReport(const JsonValue& json) {
    std::vector<std::uint8_t> report;
    for (const JsonValue& value : listIn(json)) {
        const auto byte = wholeNumber(value);
        if (!byte || *byte < 0 || *byte > 255)
            throw Mistake(value.offset, "a report's byte is not a whole number from 0 to 255");
        report.push_back(static_cast<std::uint8_t>(*byte));
    }
    return report;
}

std::map<int, std::vector<std::uint8_t>> readReadings(const JsonValue& json) {
    std::map<int, std::vector<std::uint8_t>> readings;
    for (const auto& [offset, key, report] : json.as<JsonValue::Object>()) {
        const int number = wholeNumber(key, 10).value_or(0);
        if (number < 1)
            throw Mistake(offset, "\"" + key + "\" is not the number of a reading");
        // "1" and "01" are two keys.
        if (!readings.try_emplace(number, readReport(report)).second)
            throw Mistake(offset, "the reading \"" + key + "\" is there twice");
    }
    return readings;
}

Scenario::Device readDevice(const JsonValue& json) {
    Scenario::Device device;
    readObject(
        json, "a device",
        {{"vendor", [&](const JsonValue& value) { device.vendorID = readID(value); }},
         {"product", [&](const JsonValue& value) { device.productID = readID(value); }},
         {"lid", [&](const JsonValue& value) { device.lid = readLid(value); }},
         {"refusesOpen", into(device.refusesOpen)},
         {"unplugAt", [&](const JsonValue& value) { device.unplugAt = readTime(value); }},
         {"readings", [&](const JsonValue& value) { device.readings = readReadings(value); }}});
    return device;
}

Scenario::Event readEvent(const JsonValue& json) {
    std::optional<double> at;
    Scenario::Event event;
    int kinds = 0;
    const auto happens = [&](auto what) {
        event.what = std::move(what);
        ++kinds;
    };
    const auto screens = [&](const JsonValue& value) {
        happens(Scenario::Workspace{
            std::string(lookUp<std::string_view>({{"sleep", WorkspaceNotification::screensDidSleep},
                                                  {"wake", WorkspaceNotification::screensDidWake}},
                                                 value, "screens"))});
    };
    const auto machine = [&](const JsonValue& value) {
        happens(Scenario::Workspace{std::string(lookUp<std::string_view>(
            {{"wake", WorkspaceNotification::didWake}}, value, "machine"))});
    };
    const auto key = [&](const JsonValue& value) {
        happens(lookUp<Scenario::Key>({{"down", Scenario::Key::Down},
                                       {"repeat", Scenario::Key::Repeat},
                                       {"up", Scenario::Key::Up},
                                       {"flags", Scenario::Key::FlagsChanged}},
                                      value, "key"));
    };
    const auto quit = [&](const JsonValue& value) {
        if (!value.as<bool>())
            throw Mistake(value.offset, "\"quit\" does not take false");
        happens(Scenario::Quit{});
    };
    const auto press = [&](const JsonValue& value) {
        happens(Scenario::Press{value.as<std::string>()});
    };
    const auto post = [&](const JsonValue& value) {
        happens(Scenario::Post{value.as<std::string>()});
    };
    readObject(json, "an event",
               {{"at", [&](const JsonValue& value) { at = readTime(value); }},
                {"press", press},
                {"post", post},
                {"screens", screens},
                {"machine", machine},
                {"key", key},
                {"quit", quit}});
    if (kinds != 1)
        throw Mistake(json.offset,
                      "an event must be exactly one of press, post, screens, machine, key, quit");
    if (!at)
        throw Mistake(json.offset, "an event has no time, \"at\"");
    event.at = *at;
    return event;
}

std::vector<Scenario::Event> readEvents(const JsonValue& json) {
    std::vector<Scenario::Event> events;
    for (const JsonValue& event : listIn(json)) {
        events.push_back(readEvent(event));
        if (events.size() > 1 && events.back().at < events[events.size() - 2].at)
            throw Mistake(event.offset, "the events' times decrease");
    }
    return events;
}

Scenario readScenario(const JsonValue& json) {
    Scenario scenario;
    const auto devices = [&](const JsonValue& value) {
        std::transform(listIn(value).begin(), listIn(value).end(),
                       std::back_inserter(scenario.devices), readDevice);
    };
    readObject(
        json, "the scenario",
        {{"model", into(scenario.model)},
         {"trusted", into(scenario.trusted)},
         {"loginItem", into(scenario.loginItem)},
         {"defaults", [&](const JsonValue& value) { scenario.defaults = readDefaults(value); }},
         {"hid", devices},
         {"hidManagerRefusesOpen", into(scenario.hidManagerRefusesOpen)},
         {"events", [&](const JsonValue& value) { scenario.events = readEvents(value); }}});
    return scenario;
}

/// The mistake with its line and column. `text` is what was parsed.
ScenarioError locate(const Mistake& mistake, std::string_view text) {
    const std::string_view before = text.substr(0, mistake.offset());
    const std::string_view line = before.substr(before.rfind('\n') + 1);
    const auto continuesCharacter = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80;
    };
    return {.description = mistake.what(),
            .line = 1 + static_cast<int>(std::count(before.begin(), before.end(), '\n')),
            .column =
                1 + static_cast<int>(line.size()) -
                static_cast<int>(std::count_if(line.begin(), line.end(), continuesCharacter))};
}

std::string messageOf(std::errc error) {
    return std::make_error_code(error).message();
}

} // namespace

std::string ScenarioError::in(std::string_view file) const {
    std::string message(file);
    if (line > 0)
        message.append(":").append(std::to_string(line)).append(":").append(std::to_string(column));
    return message.append(": ").append(description);
}

std::variant<Scenario, ScenarioError> parseScenario(std::string_view text) {
    try {
        return readScenario(parseJson(text));
    } catch (const Mistake& mistake) {
        return locate(mistake, text);
    }
}

std::variant<Scenario, ScenarioError> loadScenario(const std::filesystem::path& path) {
    std::error_code error;
    // Opening a pipe would wait for its other end.
    const auto type = std::filesystem::status(path, error).type();
    if (type == std::filesystem::file_type::directory)
        return ScenarioError{messageOf(std::errc::is_a_directory)};
    if (std::filesystem::exists(std::filesystem::file_status(type)) &&
        type != std::filesystem::file_type::regular)
        return ScenarioError{"Not a regular file"};
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return ScenarioError{std::generic_category().message(errno)};
    // A file's size is not to be relied on: it may grow, and those of the kernel have none.
    std::string text(largestFile + 1, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > largestFile)
        return ScenarioError{"Larger than 1 MiB"};
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
