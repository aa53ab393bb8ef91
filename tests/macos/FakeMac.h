#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/NonCopyable.h"

/// A scripted stand-in of the C functions of macOS that platform/macos calls: reference counts and
/// run loops of Core Foundation, HID devices, event taps, the trust and the model. It is one
/// machine a process; a test resets it, scripts it, and asks what was called and what is left.
namespace quorvane::fakes {

/// What a CF type reference points to here.
struct Object : private NonCopyable {
    Object();
    virtual ~Object();

    /// "CFNumber", "IOHIDDevice".
    [[nodiscard]] virtual std::string type() const = 0;

    /// A number, a text in quotes, a dictionary in braces; the type of anything else.
    [[nodiscard]] virtual std::string description() const { return type(); }

    int retains = 1;
    /// Constants: retained and released at will, and not counted as left over.
    bool immortal = false;
};

/// One HID device that is plugged in.
struct Device {
    std::map<std::string, int> integers{};
    std::map<std::string, std::string> texts{};
    /// Feature report 1, its ID included.
    std::vector<std::uint8_t> report{};
    int openResult = 0;
    /// Not zero: what reading fails with.
    int readResult = 0;
    bool pluggedIn = true;
};

/// The machine, and what has been asked of it.
struct Machine {
    std::vector<std::shared_ptr<Device>> devices;
    int managerOpenResult = 0;
    /// Managers give no set at all, rather than an empty one.
    bool noDeviceSet = false;

    std::string model;
    bool trusted = false;
    /// How often a person was asked for their trust.
    int prompts = 0;

    bool tapsCanBeMade = true;
    bool tapSourcesCanBeMade = true;

    /// Every call worth telling of, with its arguments, in order.
    std::vector<std::string> calls;
    /// Uses of objects that are gone, and others that the real functions would crash on.
    std::vector<std::string> mistakes;
};

[[nodiscard]] Machine& machine();

/// A machine as new, with nothing counted.
void reset();

/// The types of the objects that somebody still holds a reference to, sorted.
[[nodiscard]] std::vector<std::string> leftOver();

/// Sends an event of the keyboard, or a notice (types of CGEventType), through the taps that hear
/// it now. True if every callback gave back the event that it was given.
bool deliver(std::uint32_t eventType, std::int64_t autorepeat);

/// How many events have been delivered to a callback, and how many taps' ports are open.
[[nodiscard]] int deliveries();
[[nodiscard]] int openTaps();

// For the stand-in's own files.

/// The object of a reference; none, and a mistake, if it is not there.
Object* find(const void* reference, const char* caller);
void mistake(const char* caller, const std::string& what);
void call(const std::string& what);
[[nodiscard]] std::string describe(const void* reference);

/// The object of a reference, if it is of that type and still there; a mistake otherwise.
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

/// The reference that stands for a new object.
template <typename Ref, typename Type>
Ref reference(Type* object) {
    return static_cast<Ref>(static_cast<void*>(static_cast<Object*>(object)));
}

} // namespace quorvane::fakes
