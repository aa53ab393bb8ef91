#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/linux/common/FileDescriptor.h"
#include "platform/linux/hid/HIDDeviceList.h"

namespace quorvane {

/// Finds devices, on the thread of a search.
class HIDFinder : NonCopyable {
public:
    virtual ~HIDFinder() = default;

    /// A descriptor that can be read when devices have come or gone, until `find`; -1: nothing says
    /// so.
    [[nodiscard]] virtual int descriptor() const = 0;
    /// The devices that are there now. May take as long as the system likes.
    [[nodiscard]] virtual std::vector<FoundHIDDevice> find() = 0;
};

/// Apple's hidraw nodes, and the lid angle channels of industrial I/O under `sysfs`; udev tells
/// when they come and go.
[[nodiscard]] std::unique_ptr<HIDFinder> makeUdevHIDFinder(const std::filesystem::path& sysfs);

/// Keeps a list of the devices on a thread of its own, which sleeps until it is asked or the
/// finder's descriptor can be read. Main thread only.
class HIDSearch : public std::enable_shared_from_this<HIDSearch>, NonCopyable {
public:
    /// Begins to look for devices, and to read those that it finds.
    [[nodiscard]] static std::shared_ptr<HIDSearch> start(std::unique_ptr<HIDFinder> finder);

    /// Ends the thread without waiting for it.
    void stop();

    /// False if the thread could not be started.
    [[nodiscard]] bool runs() const { return m_runs; }

    /// Looks again, has all devices read so that their answers come at the same time, and returns
    /// them. Returns those that were there before once the thread has been stuck for 0.25 s.
    [[nodiscard]] std::vector<std::shared_ptr<ThreadedHIDDevice>> devices();

private:
    using Clock = std::chrono::steady_clock;

    explicit HIDSearch(std::unique_ptr<HIDFinder> finder);

    void run();
    void wake() const;
    /// False when the search has been stopped.
    bool sleep();
    void look();

    const FileDescriptor m_wake;
    bool m_runs = false;
    // The thread's only.
    const std::unique_ptr<HIDFinder> m_finder;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    HIDDeviceList m_list;
    bool m_stopped = false;
    // How often devices were asked for, and how many of these the thread has answered.
    std::uint64_t m_asked = 1;
    std::uint64_t m_answered = 0;
    // When the oldest unanswered one was.
    Clock::time_point m_unansweredSince = Clock::now();
};

} // namespace quorvane
