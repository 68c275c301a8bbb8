#include "win/kernel.h"

#include "TestSupport.h"

namespace {

HANDLE HandleOf(std::uintptr_t value) {
    return reinterpret_cast<HANDLE>(value);
}

DWORD WINAPI WaitAndSet(LPVOID parameter) {
    const auto* events = static_cast<const HANDLE*>(parameter);
    const HANDLE after = events[1];
    WaitForSingleObject(events[0], INFINITE);
    SetEvent(after);
    return 0;
}

TEST(Handles, ValuesThatAreNoHandlesAreRefused) {
    HANDLE event = CreateEventA(nullptr, TRUE, TRUE, nullptr);
    ASSERT_NE(event, nullptr);
    const auto value = reinterpret_cast<std::uintptr_t>(event);
    for (HANDLE bad : {HANDLE{}, INVALID_HANDLE_VALUE, HandleOf(value + 1), HandleOf(value ^ 0x10000), HandleOf(0x7FFFFFFC),
                       HandleOf(value | (std::uintptr_t{1} << 40))}) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(CloseHandle(bad));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        EXPECT_FALSE(SetEvent(bad));
        EXPECT_EQ(WaitForSingleObject(bad, 0), WAIT_FAILED);
        char byte;
        EXPECT_FALSE(ReadFile(bad, &byte, 1, nullptr, nullptr));
        EXPECT_FALSE(ClearCommError(bad, nullptr, nullptr));
    }
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Handles, AHandleOfAnotherKindIsRefused) {
    HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    DWORD written = 7;
    EXPECT_FALSE(WriteFile(event, "x", 1, &written, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(written, 0u);
    DCB state;
    EXPECT_FALSE(GetCommState(event, &state));
    EXPECT_EQ(GetFileSize(event, nullptr), INVALID_FILE_SIZE);
    CloseHandle(event);

    HANDLE file = CreateFileA("\\dev\\null", GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_FALSE(SetEvent(file));
    EXPECT_EQ(WaitForSingleObject(file, 0), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    CloseHandle(file);
}

TEST(Handles, AStaleHandleNeverReachesTheNextObject) {
    HANDLE stale = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    ASSERT_TRUE(CloseHandle(stale));
    EXPECT_FALSE(CloseHandle(stale));
    for (int i = 0; i < 5000; ++i) {
        HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
        ASSERT_NE(event, nullptr);
        ASSERT_NE(event, stale);
        ASSERT_FALSE(SetEvent(stale));
        ASSERT_TRUE(CloseHandle(event));
    }
}

TEST(Handles, AThreadGoesOnWithoutItsHandle) {
    HANDLE events[] = {CreateEventA(nullptr, FALSE, FALSE, nullptr), CreateEventA(nullptr, FALSE, FALSE, nullptr)};
    HANDLE thread = CreateThread(nullptr, 0, WaitAndSet, events, 0, nullptr);
    ASSERT_TRUE(CloseHandle(thread));
    EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_FAILED);
    SetEvent(events[0]);
    EXPECT_EQ(WaitForSingleObject(events[1], 10'000), WAIT_OBJECT_0);
    CloseHandle(events[0]);
    CloseHandle(events[1]);
}

}  // namespace
