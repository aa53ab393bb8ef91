#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>

#include "platform/linux/common/SysfsText.h"
#include "tests/fuzz/Fuzzing.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

void checkText(const std::string& text, std::string_view bytes) {
    constexpr std::string_view space = " \t\r\n";
    require(bytes.find(text) != std::string_view::npos, "the text is in the file");
    require(text.find('\0') == std::string::npos, "the text ends before a NUL");
    require(text.empty() || (space.find(text.front()) == std::string_view::npos &&
                             space.find(text.back()) == std::string_view::npos),
            "there is no white space around the text");
}

void checkNumber(double number, const TemporaryFolder& folder) {
    require(std::isfinite(number), "a number is finite");
    std::array<char, 400> printed{};
    const char* end = std::to_chars(printed.begin(), printed.end(), number).ptr;
    const std::string text(printed.data(), static_cast<std::size_t>(end - printed.data()));
    require(readSystemNumber(folder.write("printed", text + "\n")) == number,
            "a number that is printed is read back");
}

} // namespace

} // namespace quorvane

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorvane;
    static const TemporaryFolder folder;
    const auto bytes = textOf(data, size);
    const auto file = folder.write("file", bytes);
    const auto text = readSystemText(file);
    require(text.has_value(), "a file can be read whatever is in it");
    checkText(*text, bytes);
    if (const auto number = readSystemNumber(file))
        checkNumber(*number, folder);
    return 0;
}
