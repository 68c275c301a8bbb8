#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "TestSupport.h"

namespace {

namespace fs = std::filesystem;

class Files : public testing::Test {
protected:
    // The path of a name in the temporary folder, with backslashes.
    std::string Windows(const std::string& name) const {
        std::string path = folder.Path().string() + "/" + name;
        std::replace(path.begin(), path.end(), '/', '\\');
        return path;
    }

    static HANDLE Open(const std::string& path, DWORD access, DWORD disposition) {
        SetLastError(ERROR_SUCCESS);
        return CreateFileA(path.c_str(), access, 0, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    }

    // Opens and closes. Gives the error, or ERROR_SUCCESS.
    static DWORD TryOpen(const std::string& path, DWORD access, DWORD disposition) {
        HANDLE file = Open(path, access, disposition);
        if (file == INVALID_HANDLE_VALUE) {
            return GetLastError();
        }
        EXPECT_TRUE(CloseHandle(file));
        return ERROR_SUCCESS;
    }

    std::string Content(const std::string& name) const {
        std::ifstream file(folder.Path() / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void SetContent(const std::string& name, const std::string& content) const {
        std::ofstream(folder.Path() / name, std::ios::binary) << content;
    }

    TemporaryFolder folder;
};

TEST_F(Files, WhatIsWrittenIsReadAgain) {
    std::string data(300'000, '\0');
    for (std::size_t i = 0; i < data.size(); ++i) {
        data[i] = static_cast<char>(i * 7 + i / 256);
    }
    HANDLE file = Open(Windows("data.bin"), GENERIC_WRITE, CREATE_ALWAYS);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    DWORD count = 0;
    EXPECT_TRUE(WriteFile(file, data.data(), static_cast<DWORD>(data.size()), &count, nullptr));
    EXPECT_EQ(count, data.size());
    char byte;
    EXPECT_FALSE(ReadFile(file, &byte, 1, &count, nullptr));
    CloseHandle(file);
    EXPECT_EQ(Content("data.bin"), data);

    file = Open(Windows("data.bin"), GENERIC_READ, OPEN_EXISTING);
    DWORD high = 7;
    EXPECT_EQ(GetFileSize(file, &high), data.size());
    EXPECT_EQ(high, 0u);
    std::string read(data.size() + 10, 'x');
    EXPECT_TRUE(ReadFile(file, read.data(), static_cast<DWORD>(read.size()), &count, nullptr));
    ASSERT_EQ(count, data.size());
    EXPECT_EQ(read.substr(0, count), data);
    EXPECT_TRUE(ReadFile(file, &byte, 1, &count, nullptr));
    EXPECT_EQ(count, 0u);
    CloseHandle(file);
}

TEST_F(Files, DispositionsAndRefusals) {
    fs::create_directory(folder.Path() / "folder");
    ASSERT_EQ(mkfifo((folder.Path() / "pipe").c_str(), 0600), 0);
    struct Case {
        const char* name;
        DWORD access;
        DWORD disposition;
        DWORD error;
        const char* contentAfter;  // Of a file that held "old" before, if it was there.
    };
    const Case cases[] = {
        {"none", GENERIC_READ, OPEN_EXISTING, ERROR_FILE_NOT_FOUND, ""},
        {"none\\file", GENERIC_WRITE, CREATE_ALWAYS, ERROR_FILE_NOT_FOUND, ""},
        {"file\\file", GENERIC_READ, OPEN_EXISTING, ERROR_ACCESS_DENIED, ""},
        {"file", GENERIC_READ, OPEN_EXISTING, ERROR_SUCCESS, "old"},
        {"file", GENERIC_READ | GENERIC_WRITE, CREATE_ALWAYS, ERROR_SUCCESS, ""},
        {"new", GENERIC_WRITE, CREATE_ALWAYS, ERROR_SUCCESS, ""},
        {"folder", GENERIC_READ, OPEN_EXISTING, ERROR_ACCESS_DENIED, ""},
        {"folder", GENERIC_WRITE, CREATE_ALWAYS, ERROR_ACCESS_DENIED, ""},
        {"pipe", GENERIC_READ, OPEN_EXISTING, ERROR_ACCESS_DENIED, ""},
    };
    for (const Case& c : cases) {
        SetContent("file", "old");
        fs::remove(folder.Path() / "new");
        EXPECT_EQ(TryOpen(Windows(c.name), c.access, c.disposition), c.error) << c.name << ' ' << c.disposition;
        if (std::string(c.name) == "file") {
            EXPECT_EQ(Content("file"), c.contentAfter) << c.disposition;
        }
        EXPECT_EQ(fs::exists(folder.Path() / "new"), std::string(c.name) == "new");
    }
    EXPECT_EQ(TryOpen("", GENERIC_READ, OPEN_EXISTING), ERROR_FILE_NOT_FOUND);
}

TEST_F(Files, DeletingAndAFullDisk) {
    SetContent("file", "old");
    EXPECT_TRUE(DeleteFileA(Windows("file").c_str()));
    EXPECT_FALSE(fs::exists(folder.Path() / "file"));
    EXPECT_FALSE(DeleteFileA(Windows("file").c_str()));
    EXPECT_FALSE(DeleteFileA(folder.Path().c_str()));

    HANDLE full = Open("\\dev\\full", GENERIC_WRITE, OPEN_EXISTING);
    ASSERT_NE(full, INVALID_HANDLE_VALUE);
    DWORD written = 7;
    EXPECT_FALSE(WriteFile(full, "text", 4, &written, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_WRITE_FAULT);
    EXPECT_EQ(written, 0u);
    CloseHandle(full);
}

TEST_F(Files, TheSizeOfAHugeFileNeedsTheHighPart) {
    SetContent("huge", "");
    fs::resize_file(folder.Path() / "huge", (std::uintmax_t{3} << 32) + 5);
    HANDLE file = Open(Windows("huge"), GENERIC_READ, OPEN_EXISTING);
    DWORD high = 0;
    EXPECT_EQ(GetFileSize(file, &high), 5u);
    EXPECT_EQ(high, 3u);
    EXPECT_EQ(GetFileSize(file, nullptr), INVALID_FILE_SIZE);
    CloseHandle(file);
}

TEST_F(Files, JapaneseNamesWhoseSecondByteIsABackslash) {
    const ChosenCodePage page(932);
    const std::string name = "\x83\x5C\\\x95\x5C.txt";  // Katakana so, then the character for "table".
    fs::create_directory(folder.Path() / "\u30BD");
    EXPECT_EQ(TryOpen(Windows(name), GENERIC_WRITE, CREATE_ALWAYS), ERROR_SUCCESS);
    EXPECT_TRUE(fs::exists(folder.Path() / "\u30BD/\u8868.txt"));
    EXPECT_EQ(TryOpen(Windows("\x83\x5C/\x95\x5C.txt"), GENERIC_READ, OPEN_EXISTING), ERROR_SUCCESS);
    EXPECT_TRUE(DeleteFileA(Windows(name).c_str()));
    EXPECT_FALSE(fs::exists(folder.Path() / "\u30BD/\u8868.txt"));
}

// Goes back to the working folder from before.
class WorkingFolder {
public:
    explicit WorkingFolder(const fs::path& path) : before(fs::current_path()) { fs::current_path(path); }
    ~WorkingFolder() { fs::current_path(before); }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

private:
    const fs::path before;
};

TEST_F(Files, TheWorkingFolderHasANameInTheCodePage) {
    fs::create_directory(folder.Path() / "\u8868");
    const WorkingFolder working(folder.Path() / "\u8868");
    char buffer[260] = "untouched";
    {
        const ChosenCodePage page(932);
        const std::string expected = Windows("\x95\x5C");
        const auto size = static_cast<DWORD>(expected.size());
        EXPECT_EQ(GetCurrentDirectoryA(size, buffer), size + 1);
        EXPECT_STREQ(buffer, "untouched");
        EXPECT_EQ(GetCurrentDirectoryA(size + 1, buffer), size);
        EXPECT_EQ(buffer, expected);
    }
    // Under a page without the character the folder goes by another name, which leads to the same place.
    const ChosenCodePage page(1252);
    const DWORD length = GetCurrentDirectoryA(sizeof buffer, buffer);
    ASSERT_GT(length, 0u);
    ASSERT_LT(length, sizeof buffer);
    EXPECT_EQ(TryOpen(std::string(buffer) + "\\list.csv", GENERIC_WRITE, CREATE_ALWAYS), ERROR_SUCCESS);
    EXPECT_TRUE(fs::exists(folder.Path() / "\u8868/list.csv"));
}

}  // namespace
