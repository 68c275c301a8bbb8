// Files of titles: up to 100 numbered titles out of a CSV, tab text or play list file, and into a CSV file.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "FileHandle.h"
#include "TitleNumbers.h"

// Knows nothing of groups and of the main unit. The number that the file gives a title is 0 for the group's own title and
// the number of the track for others.
class TitleFile {
public:
    static constexpr int kTitles = kTracks + 1;

    static constexpr int kDone = 0;
    static constexpr int kNoPath = -1;
    static constexpr int kNotOpened = -2;
    static constexpr int kOpenAlready = -3;
    static constexpr int kNotRead = -4;
    static constexpr int kRefused = -6;

    TitleFile() = default;
    virtual ~TitleFile() = default;
    TitleFile(const TitleFile&) = delete;
    TitleFile& operator=(const TitleFile&) = delete;

    void ClearTitles();
    // Forgets what was read before and reads the file, in the format of its extension: "asx" a play list, "csv" CSV,
    // anything else tab text. Gives kDone, whatever titles there are, kNoPath, kNotOpened, kNotRead, or kRefused for a play
    // list that is none.
    int ReadTitles(const char* path);
    // The same with a text that was read already, up to its first zero byte. Of the path only the extension counts.
    int TakeTitles(std::string_view path, std::string_view text);
    int CountTitles() const;
    // `text` has room for 33 bytes. Gives 1, or 0 without a title of that number.
    int GetImportTitle(int index, char* text) const;
    // Keeps a title of 0 to 99 that there is none of yet.
    void AddTitle(int number, std::string_view rawText);

    // Makes the file, in place of one of that name. Gives kDone, kNoPath, kOpenAlready or kNotOpened.
    int BeginExport(const char* path);
    // Gives 1, or 0 if the row was not written.
    int WriteTitle(int number, const char* text);
    void EndExport();
    // A row of a CSV file without its end.
    static std::string Row(int number, const char* text);

    // --- The formats; any text will do. A play list that is refused may have left titles behind.
    void ReadCsv(std::string_view text);
    void ReadTabText(std::string_view text);
    int ReadAsx(std::string_view text);

private:
    struct ImportTitle {
        char text[kTitleSize] = "";
        bool used = false;
    };

    std::array<ImportTitle, kTitles> titles;
    std::unique_ptr<FileHandle> output;
};
