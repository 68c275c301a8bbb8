// Threads, events and locks that end with their scope.
#pragma once

#include <windows.h>

#include <functional>
#include <utility>

#include "Shared.h"

struct Event {
    explicit Event(bool manualReset, bool signalled = false)
        : handle(CreateEventA(nullptr, manualReset, signalled, nullptr)) {}
    ~Event() { CloseHandle(handle); }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    const HANDLE handle;
};

struct Lock {
    Lock() { InitializeCriticalSection(&section); }
    ~Lock() {
        if (!forgotten) {
            DeleteCriticalSection(&section);
        }
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    // A run that has failed leaves its locks held.
    void Forget() { forgotten = true; }

    CRITICAL_SECTION section;
    bool forgotten = false;
};

// A thread that is waited for at the end of its scope.
class Thread {
public:
    explicit Thread(std::function<void()> newWork) : work(std::move(newWork)) {
        handle = CreateThread(
            nullptr, 0,
            [](LPVOID self) -> DWORD {
                static_cast<Thread*>(self)->work();
                return 0;
            },
            this, 0, &id);
    }
    ~Thread() {
        WaitForSingleObject(handle, INFINITE);
        CloseHandle(handle);
    }
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    HANDLE handle;
    DWORD id = 0;

private:
    std::function<void()> work;
};

// A number that threads count up, and one thread waits for.
class Count {
public:
    void Add() {
        value.Add(1);
        SetEvent(changed.handle);
    }
    int Value() const { return value; }
    // False where it takes more than ten seconds.
    bool Reaches(int number) const {
        while (value < number) {
            if (WaitForSingleObject(changed.handle, 10'000) != WAIT_OBJECT_0) {
                return false;
            }
        }
        return true;
    }

private:
    Shared<int> value = 0;
    Event changed{false};
};
