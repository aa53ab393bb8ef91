#pragma once

#include <set>
#include <utility>

#include "platform/linux/keyboard/KeyboardWatcher.h"

namespace quorvane {

/// Keyboards that a test plugs in and unplugs; outlives its watchers.
class PluggedKeyboards {
public:
    class Nodes final : public KeyboardWatcher {
    public:
        explicit Nodes(PluggedKeyboards& machine) : m_machine(machine) {}

        ~Nodes() override { m_machine.m_followers.erase(this); }

        void follow(Visit present, Visit gone) override {
            m_present = std::move(present);
            m_gone = std::move(gone);
            m_machine.m_followers.insert(this);
            for (const auto& node : m_machine.m_nodes)
                m_present(node);
        }

    private:
        friend class PluggedKeyboards;

        PluggedKeyboards& m_machine;
        Visit m_present;
        Visit m_gone;
    };

    /// Also reports one that is plugged in already, as when its permissions change.
    void plugIn(const std::filesystem::path& node) {
        m_nodes.insert(node);
        for (Nodes* follower : m_followers)
            follower->m_present(node);
    }

    void unplug(const std::filesystem::path& node) {
        m_nodes.erase(node);
        for (Nodes* follower : m_followers)
            follower->m_gone(node);
    }

private:
    std::set<std::filesystem::path> m_nodes;
    std::set<Nodes*> m_followers;
};

} // namespace quorvane
