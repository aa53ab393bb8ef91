#include <fuzzer/FuzzedDataProvider.h>

#include "platform/linux/keyboard/reader/KeyEvents.h"
#include "platform/linux/keyboard/reader/Keyboard.h"
#include "tests/fuzz/Fuzzing.h"
#include "tests/support/KeyboardPipe.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

std::optional<KeySet> someKeys(FuzzedDataProvider& input) {
    if (!input.ConsumeBool())
        return std::nullopt;
    KeySet keys;
    for (int count = input.ConsumeIntegralInRange(0, 5); count > 0; --count)
        keys.set(input.ConsumeIntegralInRange<std::size_t>(0, KEY_CNT - 1), true);
    return keys;
}

int someType(FuzzedDataProvider& input) {
    return input.ConsumeIntegralInRange(0, 3) > 0 ? input.ConsumeIntegralInRange(EV_SYN, EV_KEY)
                                                  : input.ConsumeIntegral<std::uint16_t>();
}

int someCode(FuzzedDataProvider& input, int type) {
    if (type == EV_SYN)
        return input.ConsumeIntegralInRange<int>(SYN_REPORT, SYN_DROPPED);
    return input.ConsumeIntegralInRange(0, 15) > 0
               ? input.ConsumeIntegralInRange<int>(0, KEY_CNT - 1)
               : input.ConsumeIntegral<std::uint16_t>();
}

int someValue(FuzzedDataProvider& input) {
    const int value = input.ConsumeIntegralInRange(0, 3);
    return value < 3 ? value : input.ConsumeIntegral<int>();
}

void handleEvents(FuzzedDataProvider& input) {
    KeyEvents keys([&input] { return someKeys(input); });
    while (input.remaining_bytes() > 0) {
        const int type = someType(input);
        const input_event event = KeyboardPipe::make(type, someCode(input, type), someValue(input));
        const std::size_t presses = keys.handle(event);
        if (type == EV_SYN) {
            require(presses <= KEY_CNT, "a report makes up for each key once");
            continue;
        }
        require(presses <= 1, "an event is one key at most");
        require(presses == 0 || (type == EV_KEY && event.value != 0 && event.value != 2 &&
                                 !isButton(event.code)),
                "only a key that goes down counts");
        require(keys.handle(event) == 0 || event.value == 0, "a key that is down does not go down");
    }
}

/// The bytes as a device sends them, in whatever portions they come.
void readBytes(std::string_view bytes) {
    static const TemporaryFolder folder;
    static const KeyboardPipe pipe(folder.path() / "event0");
    const auto keyboard = Keyboard::open(pipe.node(), [](int) { return std::optional(KeySet()); });
    pipe.sendBytes(bytes);
    std::size_t presses = 0;
    while (!pipe.isEmpty())
        presses += keyboard->read().value_or(0);
    require(presses <= bytes.size() / sizeof(input_event), "an event is one key at most");
}

} // namespace

} // namespace quorvane

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    quorvane::handleEvents(input);
    quorvane::readBytes(quorvane::textOf(data, size));
    return 0;
}
