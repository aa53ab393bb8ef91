#include <filesystem>

#include "platform/linux/desktop/AutostartEntries.h"
#include "tests/fuzz/Fuzzing.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

/// Three folders: an entry that may be anything, one under the same name that is in effect, and the
/// same text under another name.
class Folders {
public:
    explicit Folders(std::string_view text) {
        m_root.write("own/quorvane.desktop", text);
        m_root.write("other/mine.desktop", text);
    }

    [[nodiscard]] bool isStartedBy(std::initializer_list<const char*> names) const {
        AutostartEnvironment environment{
            .folders = {}, .desktops = {"GNOME", "Ours"}, .executable = "/bin/true"};
        for (const char* name : names)
            environment.folders.push_back(m_root.path() / name);
        return startsAtLogin(environment);
    }

private:
    static inline const TemporaryFolder m_root;
    static inline const auto m_everybodys = m_root.write(
        "everybody/quorvane.desktop", "[Desktop Entry]\nType=Application\nExec=quorvane\n");
};

} // namespace

} // namespace quorvane

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorvane;
    const Folders folders(textOf(data, size));
    require(folders.isStartedBy({"everybody"}), "an entry of all users is in effect");
    const bool isStarted = folders.isStartedBy({"own"});
    require(folders.isStartedBy({"own", "everybody"}) == isStarted,
            "an entry hides one of its name, whatever is in it");
    require(isStarted || !folders.isStartedBy({"other"}),
            "an entry in effect under another name is so under the program's own");
    return 0;
}
