#include <filesystem>

#include "platform/linux/system/SettingsFile.h"
#include "tests/fuzz/Fuzzing.h"
#include "tests/support/TemporaryFolder.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorvane;
    static const TemporaryFolder folder;
    const SettingsFile settings(folder.write("quorvane.ini", textOf(data, size)));
    const auto other = settings.value("other");
    require(settings.value("other") == other, "reading changes nothing");
    require(settings.save({{"hardwareChecked", true}}), "any file can be replaced");
    std::filesystem::remove(folder.path() / "quorvane.ini.damaged");
    require(settings.value("hardwareChecked") == "true", "what is written is read back");
    require(settings.value("other") == other, "writing one setting leaves the others");

    const std::string written = fileText(settings.path());
    require(settings.save({{"hardwareChecked", true}}), "what was written can be replaced");
    require(fileText(settings.path()) == written, "writing the same again changes nothing");
    require(!std::filesystem::remove(folder.path() / "quorvane.ini.damaged"),
            "what is written is not damaged");
    return 0;
}
