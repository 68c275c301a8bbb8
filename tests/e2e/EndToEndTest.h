// What every test of whole programs stands on: a configuration of its own, and a main unit with a small library.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "Process.h"
#include "TemporaryFolder.h"
#include "UnitLibrary.h"

// The program mainunit at the end of a pseudo terminal, ready when the constructor is through.
class UnitProcess : public Process {
public:
    UnitProcess(const std::vector<std::string>& arguments, const std::string& outputs);

    // The requests and replies so far, a line each.
    std::string Dialogue() const { return Errors(); }
    // How many requests of a kind there are in the dialogue, such as "TitleRead".
    int CountRequests(const std::string& kind) const;
    // The lines about bytes that no client may send: broken frames, bytes outside of frames, frames out of order.
    std::string Complaints() const;
};

// A pseudo terminal whose other end the test has in its hands.
class Terminal {
public:
    Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal() { Unplug(); }

    const std::string& Path() const { return path; }
    void Send(const std::string& bytes) const;
    // What the client has sent since the last call; waits for `length` bytes at most for the limit.
    std::string Receive(std::size_t length) const;
    // From now on the device is gone for whoever has it open.
    void Unplug();

private:
    int file = -1;
    std::string path;
};

// TESSELIA_WINDOWS_BUILD names a folder with Windows programs, which are tested in place of those of this build.
bool OnWindows();

class EndToEndTest : public testing::Test {
protected:
    // A library with Discs 1, 2 and 12, the last without a title, and Albums 7 and 999. No port name leads anywhere.
    EndToEndTest();
    // What the units have seen and all files are kept in the folder that TESSELIA_RECORDS names, in one for each case.
    ~EndToEndTest() override;

    void LinkPort(const std::string& port, const std::string& device) const;

    // Discs with titles of their own, before the unit starts. A list of sixty takes some eight seconds.
    void AddDiscs(int first, int last) const;

    // Without line time; the pauses of the link are its own.
    UnitProcess StartUnit(const std::vector<std::string>& options = {}, const std::string& port = "COM1");

    // What the unit has saved.
    library::UnitLibrary Saved() const;

    // Starts "tesselia" or "titlectl".
    std::unique_ptr<Process> StartTested(const std::string& program, const std::vector<std::string>& arguments);
    // What a shell calls it by.
    static std::string CommandOf(const std::string& program);

    std::string NextOutputs(const std::string& program);

    const TemporaryFolder temporary;
    const std::filesystem::path folder = temporary.Path();
    const std::string libraryFile = folder / "library.json";

private:
    int runs = 0;
};
