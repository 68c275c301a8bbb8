// Files of titles: reading and writing as a whole.
#include "TitleFile.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>

#include "TitleText.h"

namespace {

// Behind the last dot of the name, in small letters.
std::string ExtensionOf(std::string_view path) {
    const std::size_t name = path.find_last_of('\\') + 1;
    const std::size_t dot = path.find_last_of('.');
    std::string extension;
    if (dot != std::string_view::npos && dot >= name) {
        extension = path.substr(dot + 1);
    }
    for (char& letter : extension) {
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return extension;
}

}  // namespace

void TitleFile::ClearTitles() {
    titles.fill({});
}

int TitleFile::ReadTitles(const char* path) {
    if (path == nullptr) {
        return kNoPath;
    }
    FileHandle file;
    if (file.OpenFile(false, path) == 0) {
        return kNotOpened;
    }
    FileText text;
    if (file.ReadAll(text) == 0) {
        return kNotRead;
    }
    file.CloseFile();
    return TakeTitles(path, text.View());
}

int TitleFile::TakeTitles(std::string_view path, std::string_view text) {
    const std::string_view used = text.substr(0, text.find('\0'));
    ClearTitles();
    const std::string extension = ExtensionOf(path);
    if (extension == "asx") {
        return ReadAsx(used) != 0 ? kDone : kRefused;
    }
    if (extension == "csv") {
        ReadCsv(used);
    } else {
        ReadTabText(used);
    }
    return kDone;
}

int TitleFile::CountTitles() const {
    return static_cast<int>(
        std::count_if(titles.begin(), titles.end(), [](const ImportTitle& title) { return title.used; }));
}

int TitleFile::GetImportTitle(int index, char* text) const {
    if (index < 0 || index >= kTitles || !titles[static_cast<std::size_t>(index)].used) {
        return 0;
    }
    std::memcpy(text, titles[static_cast<std::size_t>(index)].text, kTitleSize);
    return 1;
}

void TitleFile::AddTitle(int number, std::string_view rawText) {
    if (number < 0 || number >= kTitles || titles[static_cast<std::size_t>(number)].used) {
        return;
    }
    ImportTitle& title = titles[static_cast<std::size_t>(number)];
    CleanTitle(rawText, title.text);
    title.used = true;
}

int TitleFile::BeginExport(const char* path) {
    if (path == nullptr) {
        return kNoPath;
    }
    if (output) {
        return kOpenAlready;
    }
    output.reset(new (std::nothrow) FileHandle);
    if (!output || output->OpenFile(true, path) == 0) {
        output.reset();
        return kNotOpened;
    }
    return kDone;
}

int TitleFile::WriteTitle(int number, const char* text) {
    return output ? output->WriteLine(Row(number, text).c_str()) : 0;
}

// As in  7,"a title with ""quotes"""
std::string TitleFile::Row(int number, const char* text) {
    char head[16];
    std::snprintf(head, sizeof head, "%2d,", number);
    std::string row = std::string(head) + '"';
    for (const char* letter = text; letter < text + kTitleLength && *letter != '\0'; ++letter) {
        row.append(*letter == '"' ? 2U : 1U, *letter);
    }
    return row + '"';
}

void TitleFile::EndExport() {
    output.reset();
}
