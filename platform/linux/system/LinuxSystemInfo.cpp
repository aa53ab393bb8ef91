#include "platform/linux/system/LinuxSystemInfo.h"

#include <array>
#include <utility>

#include "platform/linux/common/SysfsText.h"

namespace quorvane {

namespace {

constexpr std::array modelFiles{"sys/class/dmi/id/product_name", "proc/device-tree/model"};

} // namespace

LinuxSystemInfo::LinuxSystemInfo(std::filesystem::path root) : m_root(std::move(root)) {}

std::string LinuxSystemInfo::modelName() const {
    for (const char* file : modelFiles) {
        const auto model = readSystemText(m_root / file);
        if (model && !model->empty())
            return *model;
    }
    return {};
}

} // namespace quorvane
