#include <ApplicationServices/ApplicationServices.h>
#include <sys/sysctl.h>

#include <cstring>

#include "tests/macos/FakeObjects.h"

namespace quorvane::fakes {

void resetTaps();

Machine& machine() {
    static Machine theMachine;
    return theMachine;
}

void reset() {
    machine() = {};
    resetTaps();
}

void mistake(const char* caller, const std::string& what) {
    machine().mistakes.push_back(std::string(caller) + ": " + what);
}

void call(const std::string& what) {
    machine().calls.push_back(what);
}

} // namespace quorvane::fakes

using namespace quorvane::fakes;

extern "C" {

const CFStringRef kAXTrustedCheckOptionPrompt =
    __CFStringMakeConstantString("AXTrustedCheckOptionPrompt");

unsigned char AXIsProcessTrusted() {
    return machine().trusted;
}

unsigned char AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
    call("AXIsProcessTrustedWithOptions(" + describe(options) + ")");
    const auto* known = checked<Dictionary>(options, "AXIsProcessTrustedWithOptions");
    const Object* prompt = known ? known->find("AXTrustedCheckOptionPrompt") : nullptr;
    if (prompt && prompt->description() == "true" && !machine().trusted)
        ++machine().prompts;
    return machine().trusted;
}

int sysctlbyname(const char* name, void* oldValue, std::size_t* oldLength, void* newValue,
                 std::size_t newLength) {
    if (newValue || newLength != 0)
        mistake("sysctlbyname", "sets a value");
    const std::string& model = machine().model;
    if (std::strcmp(name, "hw.model") != 0 || model.empty())
        return -1;
    const std::size_t needed = model.size() + 1;
    if (!oldValue) {
        *oldLength = needed;
        return 0;
    }
    const bool fits = *oldLength >= needed;
    *oldLength = fits ? needed : *oldLength;
    std::memcpy(oldValue, model.c_str(), *oldLength);
    return fits ? 0 : -1;
}

} // extern "C"
