#include "FileHandle.h"

#include <cstdio>
#include <cstring>
#include <new>

namespace {

constexpr std::size_t kLineSize = 500;

}  // namespace

FileHandle::~FileHandle() {
    CloseFile();
}

int FileHandle::OpenFile(bool forWriting, const char* path) {
    CloseFile();
    if (forWriting) {
        // Where that is not allowed the file is at least emptied: nothing is ever mixed with what was there.
        DeleteFileA(path);
    }
    handle = CreateFileA(path, forWriting ? GENERIC_WRITE : GENERIC_READ, 0, nullptr,
                         forWriting ? CREATE_ALWAYS : OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    writing = forWriting;
    return handle != INVALID_HANDLE_VALUE ? 1 : 0;
}

int FileHandle::WriteLine(const char* text) {
    char line[kLineSize];
    const int length = std::snprintf(line, sizeof line, "%s\r\n", text);
    if (!writing || handle == INVALID_HANDLE_VALUE || length < 0 || static_cast<std::size_t>(length) >= sizeof line) {
        return 0;
    }
    DWORD written = 0;
    return WriteFile(handle, line, static_cast<DWORD>(length), &written, nullptr) && written == static_cast<DWORD>(length)
               ? 1
               : 0;
}

int FileHandle::ReadAll(FileText& text) {
    text = {};
    const DWORD size = handle == INVALID_HANDLE_VALUE ? INVALID_FILE_SIZE : GetFileSize(handle, nullptr);
    if (size == INVALID_FILE_SIZE) {
        return 0;
    }
    std::unique_ptr<char[]> bytes(new (std::nothrow) char[static_cast<std::size_t>(size) + 1]);
    DWORD count = 0;
    if (!bytes || !ReadFile(handle, bytes.get(), size, &count, nullptr)) {
        return 0;
    }
    bytes[count] = '\0';
    text.length = std::strlen(bytes.get());
    text.bytes = std::move(bytes);
    return 1;
}

void FileHandle::CloseFile() {
    if (handle != INVALID_HANDLE_VALUE) {
        CloseHandle(handle);
        handle = INVALID_HANDLE_VALUE;
    }
}
