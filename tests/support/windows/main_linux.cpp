// The window tests on the layer, whose desktop has to stand before the first window.
#include <gtest/gtest.h>

#include <QFile>
#include <cstdlib>
#include <fstream>

#include "Harness.h"
#include "RegistryFile.h"
#include "RunWithDesktop.h"
#include "TemporaryFolder.h"

namespace {

int RunTests(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

}  // namespace

void ClearRegistry(const char*) {
    const QString path = qEnvironmentVariable("XDG_CONFIG_HOME") + "/tesselia/registry.ini";
    QFile::remove(path);
    desktop::UserRegistry() = desktop::RegistryFile(path);
}

int main(int argc, char** argv) {
    // Settings and the locks of running copies go where the user has none.
    const TemporaryFolder folder;
    setenv("XDG_CONFIG_HOME", folder.Path().c_str(), 1);
    setenv("TESSELIA_RUNTIME_DIR", folder.Path().c_str(), 1);
    // Two screens, of which the primary one does not begin at 0,0. Who wants to watch the tests names another platform.
    const std::string screens = folder.Path() / "screens.json";
    std::ofstream(screens) << R"({"screens": [)"
                           << R"({"name": "1", "x": 1024, "y": 200, "width": 1024, "height": 768, "dpr": 1},)"
                           << R"({"name": "2", "x": 0, "y": 0, "width": 1024, "height": 768, "dpr": 1}]})";
    setenv("QT_QPA_PLATFORM", ("offscreen:configfile=" + screens).c_str(), 0);
    return RunWithDesktop(argc, argv, RunTests);
}
