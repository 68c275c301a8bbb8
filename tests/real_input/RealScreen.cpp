#include "RealScreen.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>

RealScreen* theScreen = nullptr;

namespace {

constexpr int kAttempts = 3;
constexpr std::chrono::seconds kStartLimit{15};

struct Command {
    std::string output;
    int result;
};

Command Run(const std::string& command) {
    Command run{"", -1};
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr) {
        return run;
    }
    std::array<char, 256> part{};
    while (fgets(part.data(), part.size(), pipe) != nullptr) {
        run.output += part.data();
    }
    run.result = pclose(pipe);
    return run;
}

// Servers that start at the same moment may want the same display: one starts at a time, of all tests of this user.
class StartLock {
public:
    StartLock() {
        const std::string name = "tesselia-screen-" + std::to_string(getuid()) + ".lock";
        file = open((std::filesystem::temp_directory_path() / name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        flock(file, LOCK_EX);
    }
    ~StartLock() { close(file); }
    StartLock(const StartLock&) = delete;
    StartLock& operator=(const StartLock&) = delete;

private:
    int file;
};

void Die(const char* what) {
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

}  // namespace

RealScreen::RealScreen() {
    setenv("XDG_CONFIG_HOME", Folder().c_str(), 1);
    setenv("TESSELIA_RUNTIME_DIR", Folder().c_str(), 1);
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    unsetenv("WAYLAND_DISPLAY");
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (Start()) {
            return;
        }
        std::fprintf(stderr, "The screen did not start:\n%s%s", server->Errors().c_str(),
                     manager ? manager->Errors().c_str() : "");
    }
    Die("no screen");
}

bool RealScreen::Start() {
    const std::string path = Folder();
    manager.reset();
    const StartLock lock;
    // The server tells its display on standard output once it can be connected to.
    server = std::make_unique<Process>(
        "Xvfb", std::vector<std::string>{"-displayfd", "1", "-screen", "0", "1024x768x24", "-nolisten", "tcp"},
        path + "/server");
    if (!WaitUntil([&] { return server->Output().find('\n') != std::string::npos; }, kStartLimit)) {
        return false;
    }
    const std::string number = server->Output();
    setenv("DISPLAY", (":" + number.substr(0, number.find('\n'))).c_str(), 1);
    manager = std::make_unique<Process>("openbox", std::vector<std::string>{}, path + "/manager");
    return WaitUntil([] { return Shell("xprop -root _NET_SUPPORTING_WM_CHECK").find("window id") != std::string::npos; },
                     kStartLimit);
}

RealScreen::~RealScreen() {
    manager.reset();
    server.reset();
}

std::string Shell(const std::string& command) {
    return Run(command).output;
}

std::string Xdotool(const std::string& arguments, bool mayFail) {
    const Command run = Run("timeout 10 xdotool " + arguments);
    EXPECT_TRUE(mayFail || run.result == 0) << "xdotool " << arguments << ": " << run.output;
    return run.output;
}

void PointAt(HWND window, int x, int y) {
    POINT place = {x, y};
    ClientToScreen(window, &place);
    Xdotool("mousemove " + std::to_string(place.x) + " " + std::to_string(place.y));
}

std::string VisibleWindows(const std::string& name) {
    return Xdotool("search --onlyvisible --name '" + name + "'", true);
}
