// The window tests on the layer, whose desktop has to stand before the first window.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "RunWithDesktop.h"

namespace {

// Settings and the locks of running copies go where the user has none.
class OwnFolder {
public:
    OwnFolder() : path((std::filesystem::temp_directory_path() / "tesselia-test-XXXXXX").string()) {
        if (mkdtemp(path.data()) == nullptr) {
            std::abort();
        }
        setenv("XDG_CONFIG_HOME", path.c_str(), 1);
        setenv("XDG_RUNTIME_DIR", path.c_str(), 1);
    }
    ~OwnFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    OwnFolder(const OwnFolder&) = delete;
    OwnFolder& operator=(const OwnFolder&) = delete;

private:
    std::string path;
};

int RunTests(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

}  // namespace

int main(int argc, char** argv) {
    const OwnFolder folder;
    // Who wants to watch the tests names another platform.
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    return RunWithDesktop(argc, argv, RunTests);
}
