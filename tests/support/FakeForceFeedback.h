#pragma once

#include <algorithm>
#include <condition_variable>
#include <linux/input.h>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/haptics/ForceFeedback.h"

namespace quorvane {

/// Fake force-feedback devices and what was done with them. Thread-safe.
class FakeForceFeedback final : public ForceFeedbackDevices {
public:
    struct Device {
        HapticNode node;
        bool mayBeOpened = true;
        /// How many effects it takes.
        std::size_t room = 16;
    };

    /// An effect that was played, and on which node.
    struct Play {
        std::string node;
        ff_effect effect;
    };

    void plug(const Device& device) {
        const std::lock_guard lock(m_mutex);
        m_devices[device.node.node.string()] = {.device = device, .effects = {}};
    }

    void unplug(const std::string& node) {
        const std::lock_guard lock(m_mutex);
        m_devices.erase(node);
    }

    /// From now on uploads block until `unblockUploads`.
    void blockUploads() {
        const std::lock_guard lock(m_mutex);
        m_takesUploads = false;
    }

    void unblockUploads() {
        const std::lock_guard lock(m_mutex);
        m_takesUploads = true;
        m_unblocked.notify_all();
    }

    [[nodiscard]] std::vector<Play> plays() const { return look(m_plays); }

    [[nodiscard]] int timesListed() const { return look(m_timesListed); }

    [[nodiscard]] int uploads() const { return look(m_uploads); }

    /// The open nodes, one entry for each open port.
    [[nodiscard]] std::vector<std::string> opened() const { return look(m_opened); }

    /// Number of effects that are on the device now.
    [[nodiscard]] std::size_t effectsOn(const std::string& node) const {
        const std::lock_guard lock(m_mutex);
        const auto found = m_devices.find(node);
        return found == m_devices.end() ? 0 : found->second.effects.size();
    }

    std::vector<HapticNode> list() override {
        const std::lock_guard lock(m_mutex);
        ++m_timesListed;
        std::vector<HapticNode> nodes;
        for (const auto& [name, plugged] : m_devices)
            nodes.push_back(plugged.device.node);
        return nodes;
    }

    std::unique_ptr<ForceFeedbackPort> open(const HapticNode& node) override {
        const std::lock_guard lock(m_mutex);
        const auto found = m_devices.find(node.node.string());
        if (found == m_devices.end() || !found->second.device.mayBeOpened)
            return nullptr;
        m_opened.push_back(found->first);
        return std::make_unique<Port>(*this, found->first);
    }

private:
    struct Plugged {
        Device device;
        std::map<int, ff_effect> effects;
    };

    class Port final : public ForceFeedbackPort {
    public:
        Port(FakeForceFeedback& machine, std::string node)
            : m_machine(machine), m_node(std::move(node)) {}

        ~Port() override {
            const std::lock_guard lock(m_machine.m_mutex);
            auto& opened = m_machine.m_opened;
            opened.erase(std::find(opened.begin(), opened.end(), m_node));
        }

        std::optional<int> upload(const ff_effect& effect) override {
            std::unique_lock lock(m_machine.m_mutex);
            m_machine.m_unblocked.wait(lock, [this] { return m_machine.m_takesUploads; });
            ++m_machine.m_uploads;
            Plugged* plugged = find();
            if (!plugged || plugged->effects.size() >= plugged->device.room)
                return std::nullopt;
            const int id = ++m_machine.m_lastEffect;
            plugged->effects[id] = effect;
            return id;
        }

        void erase(int effect) override {
            const std::lock_guard lock(m_machine.m_mutex);
            if (Plugged* plugged = find())
                plugged->effects.erase(effect);
        }

        bool play(int effect) override {
            const std::lock_guard lock(m_machine.m_mutex);
            const Plugged* plugged = find();
            if (!plugged)
                return false;
            m_machine.m_plays.push_back({m_node, plugged->effects.at(effect)});
            return true;
        }

    private:
        Plugged* find() {
            const auto found = m_machine.m_devices.find(m_node);
            return found == m_machine.m_devices.end() ? nullptr : &found->second;
        }

        FakeForceFeedback& m_machine;
        std::string m_node;
    };

    template <typename Value>
    Value look(const Value& value) const {
        const std::lock_guard lock(m_mutex);
        return value;
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_unblocked;
    bool m_takesUploads = true;
    std::map<std::string, Plugged> m_devices;
    std::vector<std::string> m_opened;
    std::vector<Play> m_plays;
    int m_timesListed = 0;
    int m_uploads = 0;
    int m_lastEffect = 0;
};

} // namespace quorvane
