#include <array>
#include <filesystem>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>

#include "platform/linux/hid/IIOLidDevice.h"
#include "tests/fuzz/Fuzzing.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

constexpr auto deviceFolder = "bus/iio/devices/iio:device0/";

/// Writes the attribute, or removes it.
void setAttribute(const TemporaryFolder& sysfs, const std::string& name,
                  FuzzedDataProvider& input) {
    const auto file = std::string(deviceFolder) + name;
    const std::string text = input.ConsumeRandomLengthString(40);
    if (text == "-")
        std::filesystem::remove(sysfs.path() / file);
    else
        sysfs.write(file, text);
}

void checkReport(HIDDevice& lid) {
    std::array<std::uint8_t, 8> report{};
    std::size_t length = report.size();
    const bool isOpen = lid.open() == hidSuccess;
    if (lid.getReport(HIDReportType::Feature, 1, report, length) != hidSuccess)
        return;
    require(isOpen, "only an open channel has reports");
    require(length == 3 && report[0] == 1, "a report is its ID and an angle");
    const auto before = report;
    require(lid.getReport(HIDReportType::Feature, 1, report, length) == hidSuccess &&
                report == before,
            "the same files are the same angle");
}

} // namespace

} // namespace quorvane

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorvane;
    static const TemporaryFolder sysfs;
    FuzzedDataProvider input(data, size);
    for (const char* name : {"name", "in_angl_raw", "in_angl_scale", "in_angl_offset",
                             "in_angl0_label", "in_angl0_raw", "in_angl0_scale"})
        setAttribute(sysfs, name, input);
    for (const auto& lid : findIIOLids(sysfs.path()))
        checkReport(*lid.make());
    return 0;
}
