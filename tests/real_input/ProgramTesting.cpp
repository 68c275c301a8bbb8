#include "ProgramTesting.h"

#include <cstdlib>

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
    program = std::make_unique<Process>(TESSELIA_PROGRAM, std::vector<std::string>{}, NextOutputs("tesselia"));
    ASSERT_TRUE(WaitUntilActive(front)) << program->Errors();
}

void ProgramTest::End() {
    Xdotool("key alt+F4");
    ASSERT_TRUE(WaitUntilActive("Tesselia Message"));
    Xdotool("key y");
    EXPECT_EQ(program->End(kEndLimit), 0) << program->Errors();
}

std::string ProgramTest::Settings() const {
    return ReadFile(folder / "tesselia" / "registry.ini");
}
