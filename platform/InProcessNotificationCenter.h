#pragma once

#include <map>
#include <memory>

#include "platform/NotificationCenter.h"

namespace quorvane {

/// A notification centre that carries notifications inside this process only: the default centre on
/// every platform of ours, and the delivering half of a workspace centre.
class InProcessNotificationCenter : public NotificationCenter {
public:
    Token addObserver(std::string_view name, std::function<void()> block) override;
    void removeObserver(Token token) override;
    void post(std::string_view name) override;

    /// Number of registrations, so that a centre can listen to the system only while it is heard.
    [[nodiscard]] std::size_t observerCount() const { return m_observers.size(); }

private:
    struct Observer {
        std::string name;
        std::shared_ptr<const std::function<void()>> block;
    };

    // Tokens grow, so the map's order is the order of registration.
    std::map<Token, Observer> m_observers;
    Token m_nextToken = 1;
};

} // namespace quorvane
