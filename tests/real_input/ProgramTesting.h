// The program itself, in front of the real screen.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "EndToEndTest.h"
#include "RealScreen.h"

inline constexpr std::chrono::seconds kEndLimit{6};

inline constexpr char kTitle[] = "ORVANE HDD/CD recorder - Tesselia";

// The visible window of exactly that name has the keys.
bool WaitUntilActive(const std::string& name);
bool WaitForWindow(const std::string& name);
bool WaitForNoWindow(const std::string& name);

// No port leads anywhere unless the test says so.
class ProgramTest : public EndToEndTest {
protected:
    ProgramTest();

    // In place of the one before.
    void StartTheUnit(const std::vector<std::string>& options = {}, const std::string& port = "COM1");
    // Starts the program and waits until the window of that name is in front: its own, or a box.
    void Start(const std::string& front = kTitle);
    // Has it closed by the user, who says yes, and expects it to be gone within a few seconds.
    void End();

    // What holds them, a line for each.
    std::string Settings() const;

    std::unique_ptr<UnitProcess> unit;
    std::unique_ptr<Process> program;
};
