#pragma once

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace vantry {

/// A new folder of one test, removed with all that is in it.
class PrivateFolder {
public:
    PrivateFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "ombrel-XXXXXX").native();
        if (mkdtemp(name.data()))
            path_ = name;
        else
            ADD_FAILURE() << "no temporary folder: " << name;
    }
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;
    ~PrivateFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

} // namespace vantry
