#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "base/NonCopyable.h"

namespace quorvane {

/// One observer's registration, ended by `cancel` or by the destructor. May outlive the observable
/// and may be cancelled from inside the observer. Main thread only.
class Subscription : NonCopyable {
public:
    Subscription() = default;

    explicit Subscription(std::function<void()> cancel) : m_cancel(std::move(cancel)) {}

    Subscription(Subscription&& other) noexcept
        : m_cancel(std::exchange(other.m_cancel, nullptr)) {}

    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            cancel();
            m_cancel = std::exchange(other.m_cancel, nullptr);
        }
        return *this;
    }

    ~Subscription() { cancel(); }

    void cancel() {
        if (auto cancel = std::exchange(m_cancel, nullptr))
            cancel();
    }

private:
    std::function<void()> m_cancel;
};

/// The part of an observable that does not depend on the value's type: its observers. Main thread
/// only.
class AnyObservable : NonCopyable {
public:
    virtual ~AnyObservable() = default;

    /// Calls `observer` after every change, until the subscription is dropped. Observers are called
    /// in the order of registration; one added during a notification is first called for the next.
    [[nodiscard]] Subscription observe(std::function<void()> observer) const {
        auto entry = std::make_shared<std::function<void()>>(std::move(observer));
        m_observers->push_back(entry);
        return Subscription([observers = std::weak_ptr(m_observers), entry] {
            *entry = nullptr;
            if (auto list = observers.lock())
                std::erase(*list, entry);
        });
    }

protected:
    void notify() const {
        // A copy, because an observer may register or cancel observers. Without observers, nothing
        // is allocated.
        if (m_observers->empty())
            return;
        const auto observers = *m_observers;
        for (const auto& observer : observers) {
            if (*observer) {
                // Copied, because an observer that cancels itself is destroyed while it runs.
                const auto call = *observer;
                call();
            }
        }
    }

private:
    using Observers = std::vector<std::shared_ptr<std::function<void()>>>;
    std::shared_ptr<Observers> m_observers = std::make_shared<Observers>();
};

/// Notifies of changes to something stored elsewhere. Main thread only.
class ChangeNotice final : public AnyObservable {
public:
    using AnyObservable::notify;
};

/// A value that notifies its observers when it changes. Main thread only.
template <class T>
class Observable final : public AnyObservable {
public:
    Observable() = default;

    explicit Observable(T value) : m_value(std::move(value)) {}

    [[nodiscard]] const T& get() const { return m_value; }

    // NOLINTNEXTLINE(google-explicit-constructor): to be used like the value itself.
    operator const T&() const { return m_value; }

    /// Stores `value`; notifies only if it differs.
    void set(T value) {
        if (m_value == value)
            return;
        m_value = std::move(value);
        notify();
    }

    Observable& operator=(T value) {
        set(std::move(value));
        return *this;
    }

    /// Stores `value` and notifies, even if it is equal to the old value.
    void setAndNotify(T value) {
        m_value = std::move(value);
        notify();
    }

private:
    T m_value{};
};

} // namespace quorvane
