#include "TitleFileDialog.h"

#include <commdlg.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr DWORD kOpenFlags = OFN_HIDEREADONLY | OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST | OFN_NOTESTFILECREATE | OFN_LONGNAMES;
constexpr DWORD kSaveFlags =
    OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY | OFN_PATHMUSTEXIST | OFN_NOTESTFILECREATE | OFN_LONGNAMES;

template <std::size_t size>
void Copy(char (&target)[size], std::string_view text) {
    std::snprintf(target, size, "%.*s", static_cast<int>(text.size()), text.data());
}

char Small(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool IsSameInSmallLetters(std::string_view one, std::string_view other) {
    bool isSame = one.size() == other.size();
    for (std::size_t at = 0; isSame && at < one.size(); ++at) {
        isSame = Small(one[at]) == Small(other[at]);
    }
    return isSame;
}

}  // namespace

int TitleFileDialog::SetPath(const char* path) {
    Copy(fullPath, path);
    Split();
    if (directory[0] == '\0') {
        GetCurrentDirectoryA(sizeof directory, directory);
        Copy(fullPath, std::string(directory) + '\\' + fileName);
    }
    return 1;
}

void TitleFileDialog::Split() {
    const std::string_view path = fullPath;
    const std::size_t slash = path.find_last_of('\\');
    const bool hasFolder = slash != std::string_view::npos;
    Copy(fileName, hasFolder ? path.substr(slash + 1) : path);
    Copy(directory, hasFolder ? path.substr(0, slash) : std::string_view());
}

int TitleFileDialog::AddFilter(const char* extension, const char* description) {
    for (int row = 0; row < kFilters; ++row) {
        if (extensions[row][0] == '\0') {
            Copy(extensions[row], extension);
            Copy(descriptions[row], description);
            return 1;
        }
    }
    return 0;
}

// Pairs of a description and a pattern, each with a zero byte behind it, and one more at the end.
void TitleFileDialog::BuildFilterText(char (&text)[kFilterTextSize]) const {
    std::string all;
    const auto add = [&all](const std::string& description, const std::string& pattern) {
        all.append(description).push_back('\0');
        all.append(pattern).push_back('\0');
    };
    for (int row = 0; row < kFilters && extensions[row][0] != '\0'; ++row) {
        const std::string pattern = std::string("*.") + extensions[row];
        add(std::string(descriptions[row]).append(" (").append(pattern).append(")"), pattern);
    }
    if (allFilesEntry) {
        add("All Files (*.*)", "*.*");
    }
    all.resize(kFilterTextSize - 2, '\0');
    std::memcpy(text, all.data(), all.size());
    text[kFilterTextSize - 2] = '\0';
    text[kFilterTextSize - 1] = '\0';
}

// Counted from 1: the row of the file's extension, one past the last for an extension without a row.
int TitleFileDialog::FirstFilter() const {
    const std::string_view name = fileName;
    if (name.empty()) {
        return 1;
    }
    const std::size_t dot = name.find_last_of('.');
    const std::string_view extension = dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
    int row = 0;
    while (row < kFilters && extensions[row][0] != '\0' && !IsSameInSmallLetters(extension, extensions[row])) {
        ++row;
    }
    return row + 1;
}

int TitleFileDialog::ShowDialog(HWND owner, int mode) {
    if (mode != kOpen && mode != kSave) {
        return 0;
    }
    char filters[kFilterTextSize];
    BuildFilterText(filters);
    char file[kPathSize];
    Copy(file, fileName);
    char title[256] = "";
    const int first = FirstFilter();
    OPENFILENAMEA chooser = {};
    chooser.lStructSize = sizeof chooser;
    chooser.hwndOwner = owner;
    chooser.lpstrFilter = filters;
    chooser.nFilterIndex = static_cast<DWORD>(first);
    chooser.lpstrFile = file;
    chooser.nMaxFile = sizeof file;
    chooser.lpstrFileTitle = title;
    chooser.nMaxFileTitle = sizeof title;
    chooser.lpstrInitialDir = directory;
    chooser.lpstrTitle = "";
    chooser.lpstrDefExt = first <= kFilters ? extensions[first - 1] : "";
    chooser.Flags = mode == kOpen ? kOpenFlags : kSaveFlags;
    if (!(mode == kOpen ? GetOpenFileNameA(&chooser) : GetSaveFileNameA(&chooser))) {
        return 0;
    }
    Copy(fullPath, file);
    Split();
    return 1;
}

void TitleFileDialog::GetPath(char* path) const {
    std::memcpy(path, fullPath, sizeof fullPath);
}
