#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "base/NonCopyable.h"

namespace quorvane {

/// Keeps one observer registered; letting go of it (or `cancel`) ends the registration.
/// Safe to outlive the observable and to be cancelled from inside the observer itself.
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

/// What every observable value has in common, whatever its type: somebody can be told of a change.
class AnyObservable : NonCopyable {
public:
    virtual ~AnyObservable() = default;

    /// Calls `observer` after every change, until the subscription is dropped. Observers are called
    /// in the order of their registration; one that is added during a notice hears the next one.
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
        // A copy, because an observer may register or cancel others while it is being told. The
        // list itself stays free of allocation as long as nobody listens.
        if (m_observers->empty())
            return;
        const auto observers = *m_observers;
        for (const auto& observer : observers) {
            if (*observer) {
                // The observer may cancel itself, which would destroy it while it runs.
                const auto call = *observer;
                call();
            }
        }
    }

private:
    using Observers = std::vector<std::shared_ptr<std::function<void()>>>;
    std::shared_ptr<Observers> m_observers = std::make_shared<Observers>();
};

/// Tells of changes to something that is kept elsewhere. Main thread only.
class ChangeNotice final : public AnyObservable {
public:
    using AnyObservable::notify;
};

/// A stored property that tells its observers when its value really changed. Main thread only.
template <class T>
class Observable final : public AnyObservable {
public:
    Observable() = default;

    explicit Observable(T value) : m_value(std::move(value)) {}

    [[nodiscard]] const T& get() const { return m_value; }

    // NOLINTNEXTLINE(google-explicit-constructor): it reads as the value that it stands for.
    operator const T&() const { return m_value; }

    /// Stores `value`; a write that would not change the value notifies nobody.
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

    /// Stores `value` and notifies even when it is the value that was there before.
    void setAndNotify(T value) {
        m_value = std::move(value);
        notify();
    }

private:
    T m_value{};
};

} // namespace quorvane
