#pragma once

#include <map>
#include <memory>

#include "platform/NotificationCenter.h"

namespace quorvane {

/// A notification centre within this process: the default centre on every platform, and the base of
/// the workspace centres.
class InProcessNotificationCenter : public NotificationCenter {
public:
    Token addObserver(std::string_view name, std::function<void()> block) override;
    void removeObserver(Token token) override;
    void post(std::string_view name) override;

    /// Number of registrations: a workspace centre listens to the system only while there are any.
    [[nodiscard]] std::size_t observerCount() const { return m_observers.size(); }

private:
    struct Observer {
        std::string name;
        std::shared_ptr<const std::function<void()>> block;
    };

    // Tokens increase, so the map is in the order of registration.
    std::map<Token, Observer> m_observers;
    Token m_nextToken = 1;
};

} // namespace quorvane
