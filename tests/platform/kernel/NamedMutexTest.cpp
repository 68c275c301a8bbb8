// Named mutexes between handles and between processes.
#include <sched.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <new>

#include "RuntimeFolder.h"
#include "TestSupport.h"
#include "win/resources.h"

namespace {

constexpr char kName[] = "HDD/CD test - it's a name %";

// A runtime folder of the test's own, private as the real one is.
class NamedMutex : public testing::Test {
protected:
    // The handle, with what GetLastError told.
    static HANDLE Create(LPCSTR name, bool& existed) {
        SetLastError(ERROR_GEN_FAILURE);
        HANDLE mutex = CreateMutexA(nullptr, TRUE, name);
        EXPECT_NE(mutex, nullptr);
        EXPECT_TRUE(GetLastError() == ERROR_SUCCESS || GetLastError() == ERROR_ALREADY_EXISTS);
        existed = GetLastError() == ERROR_ALREADY_EXISTS;
        return mutex;
    }

    // Whether somebody holds the name at this moment.
    static bool Exists(LPCSTR name) {
        bool existed;
        CloseHandle(Create(name, existed));
        return existed;
    }

    const TemporaryFolder folder_;
    const EnvironmentVariable runtime_{"XDG_RUNTIME_DIR", folder_.Path().c_str()};
};

TEST_F(NamedMutex, LivesAsLongAsOneHandle) {
    bool existed;
    HANDLE first = Create(kName, existed);
    EXPECT_FALSE(existed);
    HANDLE second = Create(kName, existed);
    EXPECT_TRUE(existed);
    EXPECT_TRUE(CloseHandle(first));
    EXPECT_TRUE(Exists(kName));
    EXPECT_TRUE(CloseHandle(second));
    EXPECT_FALSE(Exists(kName));
    EXPECT_FALSE(CloseHandle(second));
}

TEST_F(NamedMutex, NamesAreApart) {
    bool existed;
    HANDLE mutex = Create("a/b", existed);
    for (const char* other : {"a", "a%b", "a%2fb", "A/b", "a/b ", "../a/b"})
        EXPECT_FALSE(Exists(other)) << other;
    CloseHandle(mutex);

    HANDLE unnamed = Create(nullptr, existed);
    EXPECT_FALSE(Exists(nullptr));
    EXPECT_FALSE(Exists(""));
    CloseHandle(unnamed);
    EXPECT_EQ(CreateMutexA(nullptr, TRUE, std::string(300, 'x').c_str()), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_FILENAME_EXCED_RANGE);
}

TEST_F(NamedMutex, IsSeenByAnotherProcessAndGoesWithIt) {
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t other = fork();
    if (other == 0) {
        const bool made = CreateMutexA(nullptr, TRUE, kName) != nullptr && GetLastError() == ERROR_SUCCESS;
        const char answer = made ? 'y' : 'n';
        if (write(ready[1], &answer, 1) == 1)
            pause();
        _exit(1);
    }
    char answer = 0;
    ASSERT_EQ(read(ready[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y');
    EXPECT_TRUE(Exists(kName));

    // It ends without a chance to clean up, and its file stays.
    kill(other, SIGKILL);
    ASSERT_EQ(waitpid(other, nullptr, 0), other);
    EXPECT_FALSE(Exists(kName));
    close(ready[0]);
    close(ready[1]);
}

// What two processes share while they race for one name after the other.
struct Race {
    static constexpr int kRounds = 500;
    std::atomic<int> arrived{0};
    std::atomic<int> firsts[kRounds] = {};

    // Each round begins for both at once, as closely as the machine can do it.
    void Run() {
        HANDLE before = nullptr;  // Held until the other is through with that name as well.
        for (int round = 0; round < kRounds; ++round) {
            const std::string name = "race " + std::to_string(round);
            ++arrived;
            while (arrived < 2 * (round + 1))
                sched_yield();
            HANDLE mutex = CreateMutexA(nullptr, TRUE, name.c_str());
            firsts[round] += GetLastError() == ERROR_SUCCESS;
            if (before)
                CloseHandle(before);
            before = mutex;
        }
    }
};

TEST_F(NamedMutex, OneOfTwoIsFirstHoweverCloseTheyStart) {
    void* memory = mmap(nullptr, sizeof(Race), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    Race& race = *new (memory) Race;
    pid_t processes[2];
    for (pid_t& process : processes) {
        process = fork();
        if (process == 0) {
            alarm(60);
            race.Run();
            // The last name is held until both are done.
            ++race.arrived;
            while (race.arrived < 2 * (Race::kRounds + 1))
                sched_yield();
            _exit(0);
        }
    }
    for (const pid_t process : processes) {
        int status = -1;
        EXPECT_EQ(waitpid(process, &status, 0), process);
        EXPECT_EQ(status, 0);
    }
    for (int round = 0; round < Race::kRounds; ++round)
        EXPECT_EQ(race.firsts[round], 1) << round;
    munmap(memory, sizeof(Race));
}

TEST_F(NamedMutex, WithoutAFileThereIsStillAHandle) {
    std::filesystem::create_directory(kernel::RuntimeFolder() + "/mutex-blocked");
    bool existed;
    HANDLE mutex = Create("blocked", existed);
    EXPECT_FALSE(existed);
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST_F(NamedMutex, FolderThatOthersReachIsNotUsed) {
    const std::string own = kernel::RuntimeFolder();
    EXPECT_EQ(own, folder_.Path() / "tesselia");

    // Somebody else's rights, a link in its place, or nothing there at all: each leads to another folder.
    ASSERT_EQ(chmod(own.c_str(), 0755), 0);
    EXPECT_NE(kernel::RuntimeFolder(), own);
    std::filesystem::remove_all(own);
    std::filesystem::create_directory(folder_.Path() / "elsewhere");
    std::filesystem::create_symlink(folder_.Path() / "elsewhere", own);
    EXPECT_NE(kernel::RuntimeFolder(), own);
    const EnvironmentVariable missing("XDG_RUNTIME_DIR", (folder_.Path() / "missing").c_str());
    EXPECT_TRUE(kernel::RuntimeFolder().starts_with("/tmp/tesselia-"));
    EXPECT_FALSE(std::filesystem::exists(folder_.Path() / "missing"));
}

}  // namespace
