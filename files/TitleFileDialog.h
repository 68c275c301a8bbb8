// The platform's file chooser, for one use.
#pragma once

#include <windows.h>

// On the thread of the windows. Paths are of at most 259 bytes; longer ones are cut.
class TitleFileDialog {
public:
    static constexpr int kPathSize = MAX_PATH;

    TitleFileDialog() = default;
    virtual ~TitleFileDialog() = default;
    TitleFileDialog(const TitleFileDialog&) = delete;
    TitleFileDialog& operator=(const TitleFileDialog&) = delete;

    // What was chosen last time, or an empty path: the chooser opens there. Gives 1.
    int SetPath(const char* path);
    // A row of the file types, by extension without its dot. Gives 1, or 0 for one row too many.
    int AddFilter(const char* extension, const char* description);
    // Whether a last row shows all files.
    void SetAllFilesEntry(bool shown) { allFilesEntry = shown; }

    static constexpr int kOpen = 0;  // a file that is there
    static constexpr int kSave = 1;  // asks before one is overwritten
    // Not 0 if the user has chosen; the path is then the choice.
    int ShowDialog(HWND owner, int mode);

    // `path` has room for kPathSize bytes.
    void GetPath(char* path) const;

private:
    static constexpr int kFilters = 10;
    static constexpr int kFilterTextSize = 256;

    void Split();
    void BuildFilterText(char (&text)[kFilterTextSize]) const;
    int FirstFilter() const;

    bool allFilesEntry = true;
    char extensions[kFilters][256] = {};
    char descriptions[kFilters][20] = {};
    char fileName[256] = "";         // of fullPath what is behind the last backslash
    char directory[kPathSize] = "";  // and what is before it
    char fullPath[kPathSize] = "";
};
