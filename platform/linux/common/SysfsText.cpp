#include "platform/linux/common/SysfsText.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <string_view>

#include "platform/linux/common/FileDescriptor.h"

namespace quorvane {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view space = " \t\r\n";
    const auto first = text.find_first_not_of(space);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(space) - first + 1);
}

} // namespace

std::optional<std::string> readSystemText(const std::filesystem::path& file) {
    const auto descriptor = FileDescriptor::open(file, O_RDONLY | O_NONBLOCK);
    if (!descriptor)
        return std::nullopt;
    std::array<char, 4096> bytes{};
    ssize_t count = -1;
    do {
        count = read(descriptor.get(), bytes.data(), bytes.size());
    } while (count < 0 && errno == EINTR);
    if (count < 0)
        return std::nullopt;
    const std::string_view text(bytes.data(), static_cast<std::size_t>(count));
    return std::string(trimmed(text.substr(0, text.find('\0'))));
}

std::optional<double> readSystemNumber(const std::filesystem::path& file) {
    const auto text = readSystemText(file);
    if (!text)
        return std::nullopt;
    double value = 0;
    const char* end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, value);
    if (text->empty() || error != std::errc() || stop != end || !std::isfinite(value))
        return std::nullopt;
    return value;
}

} // namespace quorvane
