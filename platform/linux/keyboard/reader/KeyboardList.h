#pragma once

#include <string>
#include <vector>

#include "base/NonCopyable.h"
#include "platform/linux/common/ReleasedBy.h"
#include "platform/linux/common/Udev.h"

namespace quorvane {

/// A device's name as its maker or the user's program chose it, safe for a line of the log:
/// anything but printable ASCII is replaced. `name` may be null.
[[nodiscard]] std::string printableName(const char* name);

struct KeyboardNode {
    std::string path;
    std::string seat;
    /// For the log.
    std::string name;
};

/// Which keyboards are plugged in. Tests plug in pipes.
class KeyboardList : NonCopyable {
public:
    virtual ~KeyboardList() = default;

    /// Becomes readable when keyboards may have come or gone; -1 if that cannot be known.
    [[nodiscard]] virtual int descriptor() const = 0;

    /// All there are now. Afterwards the descriptor tells of later changes only.
    [[nodiscard]] virtual std::vector<KeyboardNode> read() = 0;
};

/// The keyboards that udev knows.
class UdevKeyboardList final : public KeyboardList {
public:
    UdevKeyboardList();

    [[nodiscard]] int descriptor() const override;
    [[nodiscard]] std::vector<KeyboardNode> read() override;

private:
    using UdevMonitor = std::unique_ptr<udev_monitor, ReleasedBy<udev_monitor_unref>>;

    UdevContext m_context;
    UdevMonitor m_monitor;
};

} // namespace quorvane
