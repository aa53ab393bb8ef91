#include "platform/linux/common/BusMessage.h"

namespace quorvane {

BusValue readValue(sd_bus_message& message) {
    char type = 0;
    const char* contents = nullptr;
    if (sd_bus_message_peek_type(&message, &type, &contents) <= 0)
        return {};
    BusValue value;
    if (type == SD_BUS_TYPE_VARIANT) {
        sd_bus_message_enter_container(&message, type, contents);
        value = readValue(message);
        sd_bus_message_exit_container(&message);
    } else if (type == SD_BUS_TYPE_BOOLEAN) {
        int isTrue = 0;
        sd_bus_message_read_basic(&message, type, &isTrue);
        value = isTrue != 0;
    } else if (type == SD_BUS_TYPE_INT32) {
        sd_bus_message_read_basic(&message, type, &value.emplace<std::int32_t>());
    } else {
        sd_bus_message_skip(&message, nullptr);
    }
    return value;
}

BusProperties readProperties(sd_bus_message& message) {
    BusProperties properties;
    if (sd_bus_message_enter_container(&message, SD_BUS_TYPE_ARRAY, "{sv}") <= 0)
        return properties;
    const char* name = nullptr;
    while (sd_bus_message_enter_container(&message, SD_BUS_TYPE_DICT_ENTRY, "sv") > 0 &&
           sd_bus_message_read_basic(&message, SD_BUS_TYPE_STRING, &name) > 0) {
        properties[name] = readValue(message);
        sd_bus_message_exit_container(&message);
    }
    sd_bus_message_exit_container(&message);
    return properties;
}

BusProperties readPropertiesChanged(sd_bus_message& message) {
    if (sd_bus_message_has_signature(&message, "sa{sv}as") <= 0)
        return {};
    sd_bus_message_skip(&message, "s");
    BusProperties properties = readProperties(message);
    sd_bus_message_enter_container(&message, SD_BUS_TYPE_ARRAY, "s");
    const char* name = nullptr;
    while (sd_bus_message_read_basic(&message, SD_BUS_TYPE_STRING, &name) > 0)
        properties.try_emplace(name);
    return properties;
}

} // namespace quorvane
