// Files, and the calls that they share with serial ports.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include "Handles.h"
#include "LastError.h"
#include "Paths.h"
#include "PortNames.h"
#include "Serial.h"

namespace kernel {
namespace {

class File final : public Stream {
public:
    static constexpr Kind kKind = Kind::kFile;

    explicit File(int file) : Stream(kKind), file(file) {}
    ~File() override { close(file); }

    BOOL Read(void* buffer, DWORD count, DWORD& read) override {
        read = 0;
        while (read < count) {
            const ssize_t got = ::read(file, static_cast<char*>(buffer) + read, count - read);
            if (got == 0) {
                break;
            }
            if (got > 0) {
                read += static_cast<DWORD>(got);
            } else if (errno != EINTR) {
                return Fail(ERROR_READ_FAULT);
            }
        }
        return TRUE;
    }

    BOOL Write(const void* buffer, DWORD count, DWORD& written) override {
        written = 0;
        while (written < count) {
            const ssize_t put = ::write(file, static_cast<const char*>(buffer) + written, count - written);
            if (put >= 0) {
                written += static_cast<DWORD>(put);
            } else if (errno != EINTR) {
                return Fail(ERROR_WRITE_FAULT);
            }
        }
        return TRUE;
    }

    std::optional<std::uint64_t> Size() const {
        struct stat status;
        if (fstat(file, &status) != 0) {
            return std::nullopt;
        }
        return static_cast<std::uint64_t>(status.st_size);
    }

private:
    const int file;
};

int OpenFlags(DWORD access, DWORD disposition) {
    int flags = O_RDONLY;
    if ((access & GENERIC_WRITE) != 0) {
        flags = (access & GENERIC_READ) != 0 ? O_RDWR : O_WRONLY;
    }
    if (disposition == CREATE_ALWAYS) {
        flags |= O_CREAT | O_TRUNC;
    }
    // Without O_NONBLOCK the opening of a pipe would wait for its other end; files do not mind.
    return flags | O_NOCTTY | O_NONBLOCK | O_CLOEXEC;
}

Ref<KernelObject> OpenFile(LPCSTR name, DWORD access, DWORD disposition) {
    const std::string path = LinuxPath(name);
    int file;
    do {
        file = open(path.c_str(), OpenFlags(access, disposition), 0666);
    } while (file < 0 && errno == EINTR);
    if (file < 0) {
        Fail(errno == ENOENT ? ERROR_FILE_NOT_FOUND : ERROR_ACCESS_DENIED);
        return {};
    }
    struct stat status;
    if (fstat(file, &status) == 0 && !S_ISDIR(status.st_mode) && !S_ISFIFO(status.st_mode)) {
        if (auto* object = new (std::nothrow) File(file)) {
            return Ref<KernelObject>(object);
        }
    }
    close(file);
    Fail(ERROR_ACCESS_DENIED);
    return {};
}

}  // namespace
}  // namespace kernel

HANDLE CreateFileA(LPCSTR name, DWORD access, DWORD, LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD attributes,
                   HANDLE templateFile) {
    using namespace kernel;
    if (security || templateFile || (attributes & ~FILE_ATTRIBUTE_NORMAL) != 0 ||
        (access & ~(GENERIC_READ | GENERIC_WRITE)) != 0 || (disposition != CREATE_ALWAYS && disposition != OPEN_EXISTING)) {
        Unsupported("a file with unusual access, flags, security attributes or a template");
        return INVALID_HANDLE_VALUE;
    }
    Ref<KernelObject> object;
    if (const int port = PortNumber(name)) {
        if (disposition == OPEN_EXISTING) {  // As on Windows: a port cannot be created.
            object = Ref<KernelObject>(Port::Open(port).Detach());
        }
    } else {
        object = OpenFile(name, access, disposition);
    }
    if (!object) {
        return INVALID_HANDLE_VALUE;
    }
    HANDLE handle = AddHandle(std::move(object));
    return handle ? handle : INVALID_HANDLE_VALUE;
}

BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD count, LPDWORD read, LPOVERLAPPED overlapped) {
    if (overlapped) {
        return kernel::Unsupported("overlapped reading");
    }
    DWORD bytes = 0;
    const auto stream = kernel::FindHandle<kernel::Stream>(file);
    const BOOL result = stream ? stream->Read(buffer, count, bytes) : FALSE;
    if (read) {
        *read = bytes;
    }
    return result;
}

BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD count, LPDWORD written, LPOVERLAPPED overlapped) {
    if (overlapped) {
        return kernel::Unsupported("overlapped writing");
    }
    DWORD bytes = 0;
    const auto stream = kernel::FindHandle<kernel::Stream>(file);
    const BOOL result = stream ? stream->Write(buffer, count, bytes) : FALSE;
    if (written) {
        *written = bytes;
    }
    return result;
}

DWORD GetFileSize(HANDLE file, LPDWORD high) {
    using namespace kernel;
    const auto object = FindHandle<File>(file);
    const std::optional<std::uint64_t> size = object ? object->Size() : std::nullopt;
    if (!size) {
        return INVALID_FILE_SIZE;
    }
    if (high) {
        *high = static_cast<DWORD>(*size >> 32);
    } else if (*size >> 32 != 0) {
        return INVALID_FILE_SIZE;
    }
    return static_cast<DWORD>(*size);
}

BOOL DeleteFileA(LPCSTR name) {
    return unlink(kernel::LinuxPath(name).c_str()) == 0;
}

DWORD GetCurrentDirectoryA(DWORD size, LPSTR buffer) {
    using namespace kernel;
    const std::unique_ptr<char, void (*)(void*)> folder(getcwd(nullptr, 0), std::free);
    if (!folder) {
        return 0;
    }
    // A folder that the code page cannot name has this other name for as long as the process does not leave it.
    const std::string path = WindowsPath(folder.get()).value_or("\\proc\\self\\cwd");
    if (!buffer || size <= path.size()) {
        return static_cast<DWORD>(path.size() + 1);
    }
    std::memcpy(buffer, path.c_str(), path.size() + 1);
    return static_cast<DWORD>(path.size());
}
