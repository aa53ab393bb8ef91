#include <filesystem>

#include "platform/linux/system/LinuxUserDefaults.h"
#include "tests/fuzz/Fuzzing.h"
#include "tests/support/TemporaryFolder.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorvane;
    static const TemporaryFolder folder;
    const auto file = folder.write("quorvane.ini", textOf(data, size));
    const auto aside = folder.path() / "quorvane.ini.damaged";
    const bool before = LinuxUserDefaults(file).boolForKey("hardwareChecked");
    require(LinuxUserDefaults(file).boolForKey("hardwareChecked") == before,
            "reading changes nothing");
    const bool isDamaged = std::filesystem::remove(aside);
    require(!isDamaged || !before, "a damaged file counts as empty");

    LinuxUserDefaults(file).setBool("other", true);
    LinuxUserDefaults(file).setBool("hardwareChecked", !before);
    const LinuxUserDefaults after(file);
    require(!std::filesystem::remove(aside), "what is written is not damaged");
    require(after.boolForKey("hardwareChecked") == !before && after.boolForKey("other"),
            "what is written is read back");
    return 0;
}
