#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "tests/macos/FakeMac.h"

// The objects that several of the fakes use.
namespace quorvane::fakes {

struct String final : Object {
    explicit String(std::string contents) : text(std::move(contents)) {}

    [[nodiscard]] std::string type() const override { return "CFString"; }

    [[nodiscard]] std::string description() const override { return '"' + text + '"'; }

    std::string text;
};

struct Number final : Object {
    explicit Number(int number) : value(number) {}

    [[nodiscard]] std::string type() const override { return "CFNumber"; }

    [[nodiscard]] std::string description() const override { return std::to_string(value); }

    int value;
};

struct Dictionary final : Object {
    ~Dictionary() override;

    [[nodiscard]] std::string type() const override { return "CFDictionary"; }

    [[nodiscard]] std::string description() const override;

    /// None if there is no such key.
    [[nodiscard]] Object* find(const std::string& key) const;

    // Both retained.
    std::vector<std::pair<Object*, Object*>> entries;
};

struct Set final : Object {
    ~Set() override;

    [[nodiscard]] std::string type() const override { return "CFSet"; }

    // Retained.
    std::vector<Object*> members;
};

struct MachPort final : Object {
    MachPort();
    ~MachPort() override;

    [[nodiscard]] std::string type() const override { return "CFMachPort"; }

    bool valid = true;
    bool enabled = true;
    std::uint64_t eventsOfInterest = 0;
    void* callback = nullptr;
    void* userInfo = nullptr;
};

struct RunLoopSource final : Object {
    ~RunLoopSource() override;

    [[nodiscard]] std::string type() const override { return "CFRunLoopSource"; }

    // Retained.
    MachPort* port = nullptr;
};

struct RunLoop final : Object {
    [[nodiscard]] std::string type() const override { return "CFRunLoop"; }

    // Each retained, with the name of its mode.
    std::vector<std::pair<RunLoopSource*, std::string>> sources;
};

[[nodiscard]] RunLoop& currentRunLoop();
/// Removes the port's sources from the run loop, as invalidating a port does.
void dropSources(MachPort& port);

} // namespace quorvane::fakes
