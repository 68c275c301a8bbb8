// CreateMutexA: a name that processes of one user can tell to be taken.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <new>
#include <string>
#include <thread>

#include "CodePage.h"
#include "Handles.h"
#include "LastError.h"
#include "RuntimeFolder.h"
#include "win/resources.h"

namespace kernel {
namespace {

// A file in the runtime folder stands for the name. Everybody who holds a handle holds a shared lock on one of its bytes,
// and whoever comes asks, under an exclusive lock on another, if somebody does. The locks belong to the open file, so they
// also tell two handles of one process apart, and they go with the process however it ends. The empty file stays.
constexpr off_t kEntryByte = 0;
constexpr off_t kHolderByte = 1;

struct flock LockOf(off_t byte, short type) {
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    return lock;
}

// The entry is held for an instant alone. Should its holder be stopped in it, we go on without it after a while.
void Enter(int file) {
    constexpr int kTries = 5000;
    for (int i = 0; i < kTries; ++i) {
        struct flock lock = LockOf(kEntryByte, F_WRLCK);
        if (fcntl(file, F_OFD_SETLK, &lock) == 0 || (errno != EAGAIN && errno != EACCES && errno != EINTR)) {
            return;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
}

// Takes part in holding the name. Tells if somebody held it already.
bool Hold(int file) {
    Enter(file);
    struct flock question = LockOf(kHolderByte, F_WRLCK);
    const bool held = fcntl(file, F_OFD_GETLK, &question) == 0 && question.l_type != F_UNLCK;
    struct flock share = LockOf(kHolderByte, F_RDLCK);
    fcntl(file, F_OFD_SETLK, &share);
    struct flock leave = LockOf(kEntryByte, F_UNLCK);
    fcntl(file, F_OFD_SETLK, &leave);
    return held;
}

// Letters and digits as they are, all else in hexadecimal: one file name for each name.
std::string FileNameOf(LPCSTR name) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string fileName = "mutex-";
    for (const char c : ToUtf8(name)) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        if (plain) {
            fileName += c;
        } else {
            fileName += '%';
            fileName += kDigits[byte >> 4];
            fileName += kDigits[byte & 15];
        }
    }
    return fileName;
}

class NamedMutex final : public KernelObject {
public:
    // Without a file it is a mutex that nobody else knows.
    explicit NamedMutex(int file) : KernelObject(Kind::kMutex), file_(file) {}
    ~NamedMutex() override {
        if (file_ >= 0) {
            close(file_);
        }
    }

private:
    const int file_;
};

}  // namespace
}  // namespace kernel

HANDLE CreateMutexA(LPSECURITY_ATTRIBUTES, BOOL, LPCSTR name) {
    using namespace kernel;
    constexpr std::size_t kMaxFileName = 255;
    int file = -1;
    bool held = false;
    if (name && *name) {
        const std::string fileName = FileNameOf(name);
        if (fileName.size() > kMaxFileName) {
            Fail(ERROR_FILENAME_EXCED_RANGE);
            return nullptr;
        }
        // Without a place for the file there is no way to tell, and a program that runs twice is better than none.
        const std::string folder = RuntimeFolder();
        if (!folder.empty()) {
            file = open((folder + "/" + fileName).c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
        }
        held = file >= 0 && Hold(file);
    }
    auto* mutex = new (std::nothrow) NamedMutex(file);
    if (!mutex && file >= 0) {
        close(file);
    }
    const HANDLE handle = AddHandle(Ref<KernelObject>(mutex));
    if (handle) {
        SetLastError(held ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    }
    return handle;
}
