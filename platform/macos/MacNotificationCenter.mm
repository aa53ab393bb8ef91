#include "platform/macos/MacNotificationCenter.h"

#import <AppKit/AppKit.h>

#include <map>
#include <memory>
#include <utility>

#include "platform/macos/MacStrings.h"

namespace quorvane {

namespace {

class MacNotificationCenter final : public NotificationCenter {
public:
    explicit MacNotificationCenter(NSNotificationCenter* center) : m_center(center) {}

    ~MacNotificationCenter() override {
        for (const auto& [token, observer] : m_observers)
            [m_center removeObserver:observer.token];
    }

    Token addObserver(std::string_view name, std::function<void()> block) override {
        // The centre posts to all observers that it began with, removed ones too.
        const auto registered = std::make_shared<bool>(true);
        id<NSObject> token = [m_center addObserverForName:toNSString(name)
                                                   object:nil
                                                    queue:NSOperationQueue.mainQueue
                                               usingBlock:^(NSNotification*) {
                                                 if (*registered)
                                                     block();
                                               }];
        m_observers.emplace(m_nextToken, Observer{token, registered});
        return m_nextToken++;
    }

    void removeObserver(Token token) override {
        const auto found = m_observers.find(token);
        if (found == m_observers.end())
            return;
        *found->second.registered = false;
        [m_center removeObserver:found->second.token];
        m_observers.erase(found);
    }

    void post(std::string_view name) override {
        [m_center postNotificationName:toNSString(name) object:nil];
    }

private:
    struct Observer {
        id<NSObject> token;
        std::shared_ptr<bool> registered;
    };

    NSNotificationCenter* m_center;
    std::map<Token, Observer> m_observers;
    Token m_nextToken = 1;
};

} // namespace

std::unique_ptr<NotificationCenter> makeWorkspaceCenter() {
    return std::make_unique<MacNotificationCenter>(NSWorkspace.sharedWorkspace.notificationCenter);
}

std::unique_ptr<NotificationCenter> makeDefaultCenter() {
    return std::make_unique<MacNotificationCenter>(NSNotificationCenter.defaultCenter);
}

} // namespace quorvane
