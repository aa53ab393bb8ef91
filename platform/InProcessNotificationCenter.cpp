#include "platform/InProcessNotificationCenter.h"

#include <utility>

namespace quorvane {

NotificationCenter::Token InProcessNotificationCenter::addObserver(std::string_view name,
                                                                   std::function<void()> block) {
    const Token token = m_nextToken++;
    m_observers.emplace(token,
                        Observer{std::string(name),
                                 std::make_shared<const std::function<void()>>(std::move(block))});
    return token;
}

void InProcessNotificationCenter::removeObserver(Token token) {
    m_observers.erase(token);
}

void InProcessNotificationCenter::post(std::string_view name) {
    // Looked up again at each step, because a block may add and remove observers. Those added
    // during this post are not called for it.
    const Token end = m_nextToken;
    for (auto it = m_observers.begin(); it != m_observers.end() && it->first < end;) {
        const Token token = it->first;
        if (it->second.name == name) {
            const auto block = it->second.block;
            (*block)();
        }
        it = m_observers.upper_bound(token);
    }
}

} // namespace quorvane
