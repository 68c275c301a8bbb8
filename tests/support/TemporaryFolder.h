// A folder for one test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

// Goes away with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = std::filesystem::temp_directory_path() / "tesselia-test-XXXXXX";
        if (mkdtemp(name.data()) == nullptr) {
            std::abort();
        }
        path = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return path; }

private:
    std::filesystem::path path;
};
