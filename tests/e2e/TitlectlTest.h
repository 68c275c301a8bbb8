// titlectl at a main unit, a whole run a call.
#pragma once

#include <string>
#include <vector>

#include "EndToEndTest.h"

class TitlectlTest : public EndToEndTest {
protected:
    static constexpr int kDone = 0;
    static constexpr int kUsage = 1;
    static constexpr int kNoUnit = 2;
    static constexpr int kMenuMode = 4;
    static constexpr int kTrayOpen = 5;
    static constexpr int kNoData = 6;
    static constexpr int kTimeOut = 7;
    static constexpr int kRefused = 8;
    static constexpr int kNotStopped = 9;
    static constexpr int kNotWritable = 10;
    static constexpr int kDiffers = 11;
    static constexpr int kFile = 13;
    static constexpr int kStopped = 130;

    std::unique_ptr<Process> Start(const std::vector<std::string>& arguments) { return StartTested("titlectl", arguments); }

    // A whole run; its exit code.
    int Run(const std::vector<std::string>& arguments) { return End(*Start(arguments)); }

    int End(Process& process, std::chrono::milliseconds limit = kLimit) {
        const int code = process.End(limit);
        output = process.Output();
        if (OnWindows()) {
            std::erase(output, '\r');
        }
        errors = process.Errors();
        return code;
    }

    std::string SavedTitle(const library::Entry& entry) const {
        const library::UnitLibrary library = Saved();
        const std::string* title = library.Title(entry);
        return title != nullptr ? *title : "(none)";
    }

    // A line of the progress.
    const std::string secondTitle = OnWindows() ? "  D2 0\r\n" : "  D2 0\n";
    std::string output;
    std::string errors;
};
