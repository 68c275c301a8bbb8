// One open file.
#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <string_view>

// What a file holds, up to its end or to its first zero byte; there is a terminator behind it.
struct FileText {
    std::unique_ptr<char[]> bytes;
    std::size_t length = 0;

    std::string_view View() const { return {bytes.get(), length}; }
};

class FileHandle {
public:
    FileHandle() = default;
    virtual ~FileHandle();
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    // Opens a file that is there for reading, or makes a new one for writing, in place of one of that name. Gives 1 or 0.
    int OpenFile(bool forWriting, const char* path);
    // A line of at most 497 bytes with carriage return and line feed. Gives 1, or 0 if it was not written whole.
    int WriteLine(const char* text);
    // Reads the whole file with one read. Gives 1, or 0 with `text` empty.
    int ReadAll(FileText& text);
    void CloseFile();

private:
    HANDLE handle = INVALID_HANDLE_VALUE;
    bool writing = false;
};
