#pragma once

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>

namespace vantry {

/// Where thousands of files are made quickly: in memory, if the system has such a folder.
[[nodiscard]] inline std::filesystem::path folderForManyFiles() {
    constexpr const char* inMemory = "/dev/shm";
    return access(inMemory, W_OK | X_OK) == 0 ? inMemory : std::filesystem::temp_directory_path();
}

/// A folder of the test's own, 0700, removed with everything in it. Its path has no links in it, as the product's home
/// folder has none; the system's folder for temporary files may be behind one.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
        std::string name = (parent / "ombrel-test-XXXXXX").native();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("cannot make " + name);
        path_ = std::filesystem::canonical(name);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

inline void writeFile(const std::filesystem::path& file, std::string_view text) {
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream << text;
    stream.close();
    if (!stream)
        throw std::runtime_error("cannot write " + file.native());
}

/// Empty when there is no such file.
[[nodiscard]] inline std::string readFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

} // namespace vantry
