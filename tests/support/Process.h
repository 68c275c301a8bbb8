// A program that runs beside the test.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

// Far longer than anything takes here, on a busy machine and under a sanitizer, too.
inline constexpr std::chrono::seconds kLimit{60};

// Looks at the condition every few milliseconds; false when the limit is over.
bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit = kLimit);

// All of a file, empty if it is missing.
std::string ReadFile(const std::string& path);

// How many threads the test itself has, those of a sanitizer among them. A thread that was waited for may be counted for a
// moment longer.
std::size_t CountThreads();
inline constexpr std::chrono::seconds kThreadEndLimit{10};

// Killed with its object at the latest. Its environment is the test's.
class Process {
public:
    // The output goes to the files `outputs`.out and `outputs`.err.
    Process(const std::string& program, const std::vector<std::string>& arguments, const std::string& outputs);
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    virtual ~Process();

    std::string Output() const { return ReadFile(outputs + ".out"); }
    std::string Errors() const { return ReadFile(outputs + ".err"); }

    // Waits for a text in the standard error.
    bool WaitForError(const std::string& text) const;

    void Signal(int number) const;

    // Waits for the end. The exit code; the negative number of the signal that has ended the program; kStillRunning, and the
    // program is killed, when the limit is over.
    int End(std::chrono::milliseconds limit = kLimit);
    static constexpr int kStillRunning = -1000;

    // Both are known once the program has ended: its processor time, and the time from its start to its end.
    double CpuSeconds() const { return cpuSeconds; }
    double WallSeconds() const { return wallSeconds; }

private:
    bool HasEnded();

    std::string outputs;
    std::chrono::steady_clock::time_point start;
    pid_t process = 0;  // 0 when there is none any more
    int status = 0;     // as wait4 gives it
    double cpuSeconds = 0;
    double wallSeconds = 0;
};
