#include <algorithm>
#include <cstdio>
#include <linux/input.h>
#include <string>
#include <vector>

#include "platform/linux/haptics/EvdevForceFeedback.h"
#include "platform/linux/hid/HidrawDevice.h"
#include "platform/linux/keyboard/reader/KeyboardList.h"
#include "tests/fuzz/Fuzzing.h"

namespace quorvane {

namespace {

void readHIDID(std::string_view text) {
    const auto identity = parseHIDID(text);
    if (!identity)
        return;
    std::vector<char> printed(32);
    std::snprintf(printed.data(), printed.size(), "0003:%08X:%08X",
                  static_cast<unsigned>(identity->vendorID),
                  static_cast<unsigned>(identity->productID));
    require(parseHIDID(printed.data()) == identity, "what the kernel prints is read back");
}

/// Takes the bytes as words too, and prints them as the kernel does.
void readCapabilities(std::string_view text) {
    static_cast<void>(hapticKind(text));
    std::vector<unsigned long> words(text.size() / sizeof(unsigned long));
    std::copy_n(text.data(), words.size() * sizeof(unsigned long),
                reinterpret_cast<char*>(words.data()));
    std::string printed;
    for (auto word = words.rbegin(); word != words.rend(); ++word) {
        std::vector<char> digits(32);
        std::snprintf(digits.data(), digits.size(), "%lx ", *word);
        printed += digits.data();
    }
    require(hapticKind(printed) == hapticKind(words), "printed bits are the same device's");
}

void readName(const std::string& name) {
    const std::string shown = printableName(name.c_str());
    require(shown.size() == std::string_view(name.c_str()).size(), "a name keeps its length");
    require(std::all_of(shown.begin(), shown.end(),
                        [](char letter) { return letter >= ' ' && letter <= '~'; }),
            "a name is safe to print");
}

} // namespace

} // namespace quorvane

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = quorvane::textOf(data, size);
    quorvane::readHIDID(text);
    quorvane::readCapabilities(text);
    quorvane::readName(std::string(text));
    return 0;
}
