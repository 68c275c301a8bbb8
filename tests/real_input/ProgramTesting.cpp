#include "ProgramTesting.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace {

bool IsOpen(const std::string& name) {
    return !VisibleWindows("^" + name + "$").empty();
}

}  // namespace

bool WaitUntilActive(const std::string& name) {
    return WaitUntil([&] { return Xdotool("getactivewindow getwindowname", true) == name + "\n"; });
}

bool WaitForWindow(const std::string& name) {
    return WaitUntil([&] { return IsOpen(name); });
}

bool WaitForNoWindow(const std::string& name) {
    return WaitUntil([&] { return !IsOpen(name); });
}

ProgramTest::ProgramTest() {
    setenv("LANG", "en_US.UTF-8", 1);
}

void ProgramTest::StartTheUnit(const std::vector<std::string>& options, const std::string& port) {
    unit.reset();
    unit.reset(new UnitProcess(StartUnit(options, port)));
}

void ProgramTest::Start(const std::string& front) {
    program = StartTested("tesselia", {});
    ASSERT_TRUE(WaitUntilActive(front)) << program->Errors();
}

void ProgramTest::End() {
    Xdotool("key alt+F4");
    ASSERT_TRUE(WaitUntilActive("Tesselia Message"));
    Xdotool("key y");
    EXPECT_EQ(program->End(kEndLimit), 0) << program->Errors();
}

std::string ProgramTest::Settings() const {
    if (!OnWindows()) {
        return ReadFile(folder / "tesselia" / "registry.ini");
    }
    // Numbers are hexadecimal there.
    std::string settings;
    std::ifstream registry(folder / "wine" / "system.reg");
    bool isOurs = false;
    for (std::string line; std::getline(registry, line);) {
        char name[32];
        unsigned number = 0;
        isOurs = line.starts_with('[') ? line.find("\\\\Tesselia") != std::string::npos : isOurs;
        if (isOurs && std::sscanf(line.c_str(), "\"%31[^\"]\"=dword:%x", name, &number) == 2) {
            settings += std::string(name) + '=' + std::to_string(static_cast<int>(number)) + '\n';
        }
    }
    return settings;
}
