// Threads, and their local storage.
#include <pthread.h>

#include <array>
#include <atomic>
#include <new>

#include "Handles.h"
#include "LastError.h"
#include "Waiting.h"

namespace kernel {
namespace {

// Numbers of our own, since a new thread's number must be known to its maker at once. Multiples of four, as on Windows.
std::atomic<DWORD> gLastThreadId{0};
thread_local DWORD tThreadId = 0;

DWORD NewThreadId() {
    return gLastThreadId.fetch_add(4, std::memory_order_relaxed) + 4;
}

constexpr DWORD kFlsSlots = 128;
// A callback may fill a slot that was emptied already; after so many rounds what it holds is given up.
constexpr int kFlsRounds = 4;

std::atomic<DWORD> gFlsCount{0};
std::array<std::atomic<PFLS_CALLBACK_FUNCTION>, kFlsSlots> gFlsCallbacks;
thread_local std::array<LPVOID, kFlsSlots> tFlsValues{};

// One pass over the slots. Gives true if a callback has run.
bool RunFlsCallbacksOnce() {
    bool any = false;
    const DWORD count = gFlsCount.load(std::memory_order_acquire);
    for (DWORD i = 0; i < count && i < kFlsSlots; ++i) {
        const PFLS_CALLBACK_FUNCTION callback = gFlsCallbacks[i].load(std::memory_order_acquire);
        LPVOID value = tFlsValues[i];
        if (!value || !callback) {
            continue;
        }
        // The callback still finds its own value, as on Windows, and the slot is empty afterwards.
        callback(value);
        if (tFlsValues[i] == value) {
            tFlsValues[i] = nullptr;
        }
        any = true;
    }
    return any;
}

class Thread final : public Waitable {
public:
    Thread(LPTHREAD_START_ROUTINE start, LPVOID parameter)
        : Waitable(kKind, false, false), start(start), parameter(parameter), id(NewThreadId()) {}

    DWORD Id() const { return id; }
    void Run() {
        tThreadId = id;
        start(parameter);
        for (int round = 0; round < kFlsRounds && RunFlsCallbacksOnce(); ++round) {}
        Signal();
    }

private:
    const LPTHREAD_START_ROUTINE start;
    const LPVOID parameter;
    const DWORD id;
};

void* RunThread(void* parameter) {
    const Ref<Thread> thread(static_cast<Thread*>(parameter));
    thread->Run();
    return nullptr;
}

// The thread takes over one reference.
bool StartDetached(Ref<Thread> thread) {
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) {
        return false;
    }
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t id;
    const bool started = pthread_create(&id, &attributes, RunThread, thread.Get()) == 0;
    pthread_attr_destroy(&attributes);
    if (started) {
        thread.Detach();
    }
    return started;
}

}  // namespace
}  // namespace kernel

HANDLE CreateThread(LPSECURITY_ATTRIBUTES security, SIZE_T, LPTHREAD_START_ROUTINE start, LPVOID parameter, DWORD flags,
                    LPDWORD threadId) {
    using namespace kernel;
    if (security || flags != 0) {
        Unsupported("a thread with flags or security attributes");
        return nullptr;
    }
    const Ref<Thread> thread(new (std::nothrow) Thread(start, parameter));
    if (!thread) {
        Fail(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    // The handle first: a thread that runs cannot be taken back.
    HANDLE handle = AddHandle(Ref<KernelObject>(Ref<Thread>(thread).Detach()));
    if (!handle) {
        return nullptr;
    }
    if (threadId) {
        *threadId = thread->Id();
    }
    if (!StartDetached(thread)) {
        CloseHandle(handle);
        Fail(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return handle;
}

DWORD GetCurrentThreadId() {
    if (kernel::tThreadId == 0) {
        kernel::tThreadId = kernel::NewThreadId();
    }
    return kernel::tThreadId;
}

DWORD FlsAlloc(PFLS_CALLBACK_FUNCTION callback) {
    using namespace kernel;
    DWORD index = gFlsCount.load();
    do {
        if (index == kFlsSlots) {
            Fail(ERROR_NOT_ENOUGH_MEMORY);
            return FLS_OUT_OF_INDEXES;
        }
    } while (!gFlsCount.compare_exchange_weak(index, index + 1));
    gFlsCallbacks[index].store(callback, std::memory_order_release);
    return index;
}

LPVOID FlsGetValue(DWORD index) {
    using namespace kernel;
    if (index >= gFlsCount.load(std::memory_order_acquire)) {
        Fail(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return tFlsValues[index];
}

BOOL FlsSetValue(DWORD index, LPVOID value) {
    using namespace kernel;
    if (index >= gFlsCount.load(std::memory_order_acquire)) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    tFlsValues[index] = value;
    return TRUE;
}
