// Threads, and their local storage.
#include <pthread.h>

#include <atomic>
#include <new>

#include "Handles.h"
#include "LastError.h"
#include "Waiting.h"

namespace kernel {
namespace {

// Numbers of our own, since a new thread's number must be known to its maker at once. Multiples of four, as on Windows.
std::atomic<DWORD> lastThreadId{0};
thread_local DWORD threadId = 0;

DWORD NewThreadId() {
    return lastThreadId.fetch_add(4, std::memory_order_relaxed) + 4;
}

// After so many rounds what the callback puts into the slot is given up.
constexpr int kFlsRounds = 4;

std::atomic<PFLS_CALLBACK_FUNCTION> flsCallback{nullptr};
thread_local LPVOID flsValue = nullptr;

void RunFlsCallback() {
    for (int round = 0; round < kFlsRounds && flsValue; ++round) {
        // The callback still finds its own value, as on Windows, and the slot is empty afterwards.
        LPVOID value = flsValue;
        flsCallback.load()(value);
        if (flsValue == value) {
            flsValue = nullptr;
        }
    }
}

class Thread final : public Waitable {
public:
    Thread(LPTHREAD_START_ROUTINE start, LPVOID parameter)
        : Waitable(kKind, false, false), start(start), parameter(parameter), id(NewThreadId()) {}

    DWORD Id() const { return id; }
    void Run() {
        threadId = id;
        start(parameter);
        RunFlsCallback();
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
    if (kernel::threadId == 0) {
        kernel::threadId = kernel::NewThreadId();
    }
    return kernel::threadId;
}

DWORD FlsAlloc(PFLS_CALLBACK_FUNCTION callback) {
    if (kernel::flsCallback.exchange(callback)) {
        kernel::Unsupported("a second slot of thread-local storage");
    }
    return 0;
}

LPVOID FlsGetValue(DWORD) {
    return kernel::flsValue;
}

BOOL FlsSetValue(DWORD, LPVOID value) {
    kernel::flsValue = value;
    return TRUE;
}
