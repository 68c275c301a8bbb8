// What several tests of the kernel need.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include "CodePage.h"
#include "TemporaryFolder.h"
#include "win/kernel.h"

// Gives true as soon as the condition holds, false if it does not within ten seconds.
template <class Condition>
bool WaitUntil(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

// Sets an environment variable for as long as it lives.
class EnvironmentVariable {
public:
    EnvironmentVariable(const char* name, const char* value) : name(name) {
        if (const char* before = std::getenv(name)) {
            old = before;
            had = true;
        }
        setenv(name, value, 1);
    }
    ~EnvironmentVariable() {
        if (had) {
            setenv(name, old.c_str(), 1);
        } else {
            unsetenv(name);
        }
    }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    const char* name;
    std::string old;
    bool had = false;
};

// Chooses a code page for as long as it lives.
class ChosenCodePage {
public:
    explicit ChosenCodePage(unsigned page) : before(kernel::CodePage()) { kernel::SetCodePage(page); }
    ~ChosenCodePage() { kernel::SetCodePage(before); }
    ChosenCodePage(const ChosenCodePage&) = delete;
    ChosenCodePage& operator=(const ChosenCodePage&) = delete;

private:
    const unsigned before;
};
