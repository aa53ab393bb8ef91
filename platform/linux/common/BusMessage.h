#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <systemd/sd-bus.h>
#include <variant>

namespace quorvane {

/// A value of a message, if it is of one of these types; else none.
using BusValue = std::variant<std::monostate, bool, std::int32_t>;

using BusProperties = std::map<std::string, BusValue, std::less<>>;

/// Reads the next value; of a variant, also of one in another, what it holds. None at the end.
[[nodiscard]] BusValue readValue(sd_bus_message& message);

/// Reads the properties of an a{sv}.
[[nodiscard]] BusProperties readProperties(sd_bus_message& message);

/// Reads the signal of org.freedesktop.DBus.Properties: the new values; none, under their names,
/// for those that the signal only says have changed.
[[nodiscard]] BusProperties readPropertiesChanged(sd_bus_message& message);

} // namespace quorvane
