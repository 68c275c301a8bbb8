// The tests in front of a real screen: the screen first, then the desktop.
#include <gtest/gtest.h>

#include "RealScreen.h"
#include "RunWithDesktop.h"

namespace {

int RunTests(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

bool OnlyLists(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::string(argv[i]) == "--gtest_list_tests") {
            return true;
        }
    }
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    if (OnlyLists(argc, argv)) {
        return RunTests(argc, argv);
    }
    RealScreen screen;
    theScreen = &screen;
    return RunWithDesktop(argc, argv, RunTests);
}
