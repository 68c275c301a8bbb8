#include <gtest/gtest.h>
#include <windows.h>

#include "Run.h"
#include "ThreadTools.h"

namespace {

TEST(Threads, HaveAnIdALastErrorAndAnEndThatStays) {
    RunProgram([] {
        const Event leave(false);
        SetLastError(ERROR_ALREADY_EXISTS);
        DWORD id = 0;
        DWORD error = ERROR_GEN_FAILURE;
        bool ended = false;
        const Thread thread([&] {
            id = GetCurrentThreadId();
            error = GetLastError();
            SetLastError(ERROR_WRITE_FAULT);
            WaitForSingleObject(leave.handle, INFINITE);
            ended = true;
        });
        EXPECT_EQ(WaitForSingleObject(thread.handle, 0), WAIT_TIMEOUT);
        SetEvent(leave.handle);
        EXPECT_EQ(WaitForSingleObject(thread.handle, INFINITE), WAIT_OBJECT_0);
        EXPECT_TRUE(ended);
        EXPECT_EQ(WaitForSingleObject(thread.handle, 0), WAIT_OBJECT_0);
        EXPECT_EQ(id, thread.id);
        EXPECT_NE(id, GetCurrentThreadId());
        EXPECT_EQ(error, ERROR_SUCCESS);
        EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    });
}

// What a thread leaves in the slot; the callback puts the next one there.
struct Left {
    Left* next;
};

Shared<int> gCallbacks = 0;
DWORD gSlot = 0;

void WINAPI TakeWhatIsLeft(LPVOID value) {
    EXPECT_EQ(FlsGetValue(gSlot), value);
    Sleep(1);
    gCallbacks.Add(1);
    if (Left* next = static_cast<Left*>(value)->next) {
        FlsSetValue(gSlot, next);
    }
}

TEST(Threads, TheSlotIsOnePerThreadAndItsCallbackRunsBeforeTheEndIsSeen) {
    static const DWORD slot = FlsAlloc(TakeWhatIsLeft);
    gSlot = slot;
    RunProgram([] {
        gCallbacks = 0;
        static Left chain[] = {{&chain[1]}, {&chain[2]}, {&chain[3]}, {&chain[4]}, {nullptr}};
        Count set;
        const Event go(true);
        const auto use = [&](Left* left) {
            EXPECT_EQ(FlsGetValue(gSlot), nullptr);
            EXPECT_TRUE(FlsSetValue(gSlot, left));
            set.Add();
            WaitForSingleObject(go.handle, INFINITE);
            EXPECT_EQ(FlsGetValue(gSlot), left);
        };
        {
            const Thread five([&] { use(&chain[0]); });
            const Thread two([&] { use(&chain[3]); });
            const Thread none([] {});
            EXPECT_TRUE(set.Reaches(2));
            SetEvent(go.handle);
        }
        // Four times at most, and for the other thread twice.
        EXPECT_EQ(gCallbacks, 4 + 2);
        use(&chain[4]);
    });
    EXPECT_EQ(gCallbacks, 4 + 2 + 1);
}

TEST(Memory, BlocksAreZeroedWhereAskedAndNeverNone) {
    auto* block = static_cast<unsigned char*>(LocalAlloc(LPTR, 100));
    ASSERT_NE(block, nullptr);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(block[i], 0);
    }
    EXPECT_EQ(LocalFree(block), nullptr);
    HLOCAL empty = LocalAlloc(LMEM_FIXED, 0);
    EXPECT_NE(empty, nullptr);
    EXPECT_EQ(LocalFree(empty), nullptr);
    EXPECT_EQ(LocalFree(nullptr), nullptr);
}

}  // namespace
