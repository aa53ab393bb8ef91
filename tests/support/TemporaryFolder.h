#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include "base/NonCopyable.h"

namespace quorvane {

/// A new folder, removed with all that is in it at the end of the object.
class TemporaryFolder : NonCopyable {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "quorvane-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("no temporary folder");
        m_path = name;
    }

    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

    /// Writes `bytes` to `name` and makes its folders; the file's path.
    // NOLINTNEXTLINE(modernize-use-nodiscard): called for what it does as often as for the path.
    std::filesystem::path write(const std::filesystem::path& name, std::string_view bytes) const {
        std::filesystem::path file = m_path / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
        return file;
    }

private:
    std::filesystem::path m_path;
};

/// The content of a file; empty when there is none.
inline std::string fileText(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace quorvane
