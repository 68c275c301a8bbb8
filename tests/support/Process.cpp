#include "Process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kLookPeriod{5};
constexpr mode_t kFileMode = 0600;

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const auto end = Clock::now() + limit;
    while (!condition()) {
        if (Clock::now() >= end) {
            return false;
        }
        std::this_thread::sleep_for(kLookPeriod);
    }
    return true;
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::size_t CountThreads() {
    const std::filesystem::directory_iterator threads("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(threads), end(threads)));
}

Process::Process(const std::string& program, const std::vector<std::string>& arguments, const std::string& outputs)
    : outputs(outputs), start(Clock::now()) {
    std::vector<std::string> copies = arguments;
    copies.insert(copies.begin(), program);
    std::vector<char*> words;
    for (std::string& copy : copies) {
        words.push_back(copy.data());
    }
    words.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, (outputs + ".out").c_str(), kFlags, kFileMode);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, (outputs + ".err").c_str(), kFlags, kFileMode);
    EXPECT_EQ(posix_spawnp(&process, program.c_str(), &actions, nullptr, words.data(), environ), 0) << program;
    posix_spawn_file_actions_destroy(&actions);
}

Process::~Process() {
    if (process > 0) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
}

bool Process::WaitForError(const std::string& text) const {
    return WaitUntil([&] { return Errors().find(text) != std::string::npos; });
}

void Process::Signal(int number) const {
    ASSERT_GT(process, 0);
    EXPECT_EQ(kill(process, number), 0);
}

bool Process::HasEnded() {
    rusage usage{};
    if (process > 0 && wait4(process, &status, WNOHANG, &usage) == process) {
        process = 0;
        cpuSeconds = Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
        wallSeconds = std::chrono::duration<double>(Clock::now() - start).count();
    }
    return process <= 0;
}

int Process::End(std::chrono::milliseconds limit) {
    if (!WaitUntil([this] { return HasEnded(); }, limit)) {
        Signal(SIGKILL);
        WaitUntil([this] { return HasEnded(); });
        return kStillRunning;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}
