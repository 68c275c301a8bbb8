// The window tests on the layer, whose desktop has to stand before the first window.
#include <gtest/gtest.h>

#include <QFile>
#include <cstdlib>

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
    // Who wants to watch the tests names another platform.
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    return RunWithDesktop(argc, argv, RunTests);
}
