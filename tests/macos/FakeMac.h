#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/NonCopyable.h"

/// Fakes of the C functions of macOS that platform/macos calls: reference counts and run loops of
/// Core Foundation, HID devices, event taps, accessibility trust and the model's name. A process
/// has one machine. A test resets it, scripts it, and checks what was called and what is left.
namespace quorvane::fakes {

/// The target of a CF type reference.
struct Object : private NonCopyable {
    Object();
    virtual ~Object();

    /// "CFNumber", "IOHIDDevice".
    [[nodiscard]] virtual std::string type() const = 0;

    /// A number, a text in quotes, a dictionary in braces; the type of anything else.
    [[nodiscard]] virtual std::string description() const { return type(); }

    int retains = 1;
    /// For constants: never freed, and not counted as left over.
    bool immortal = false;
};

/// One HID device that is plugged in.
struct Device {
    std::map<std::string, int> integers{};
    std::map<std::string, std::string> texts{};
    /// Feature report 1, its ID included.
    std::vector<std::uint8_t> report{};
    int openResult = 0;
    /// The error of each reading, unless 0.
    int readResult = 0;
    bool pluggedIn = true;
};

/// The machine, and the calls made to it.
struct Machine {
    std::vector<std::shared_ptr<Device>> devices;
    int managerOpenResult = 0;
    /// Managers return null instead of an empty set.
    bool noDeviceSet = false;

    std::string model;
    bool trusted = false;
    /// How often the user was asked for trust.
    int prompts = 0;

    bool tapsCanBeMade = true;
    bool tapSourcesCanBeMade = true;

    /// The calls that tests look at, with their arguments, in order.
    std::vector<std::string> calls;
    /// Uses of freed objects, and others on which the real functions would crash.
    std::vector<std::string> mistakes;
};

[[nodiscard]] Machine& machine();

/// Starts with a new machine.
void reset();

/// The types of the objects that are still referenced, sorted.
[[nodiscard]] std::vector<std::string> leftOver();

/// Sends an event (a CGEventType) through the taps that would get it now. True if every callback
/// returned the event that it was given.
bool deliver(std::uint32_t eventType, std::int64_t autorepeat);

/// How many events have been delivered to a callback, and how many taps' ports are open.
[[nodiscard]] int deliveries();
[[nodiscard]] int openTaps();

// For the fakes themselves.

/// The object of a reference; null, and a mistake, if it is freed.
Object* find(const void* reference, const char* caller);
void mistake(const char* caller, const std::string& what);
void call(const std::string& what);
[[nodiscard]] std::string describe(const void* reference);

/// The object of a reference; null, and a mistake, if it is freed or of another type.
template <typename Type>
Type* checked(const void* reference, const char* caller) {
    Object* object = find(reference, caller);
    if (!object)
        return nullptr;
    auto* typed = dynamic_cast<Type*>(object);
    if (!typed)
        mistake(caller, object->type());
    return typed;
}

/// The reference to a new object.
template <typename Ref, typename Type>
Ref reference(Type* object) {
    return static_cast<Ref>(static_cast<void*>(static_cast<Object*>(object)));
}

} // namespace quorvane::fakes
