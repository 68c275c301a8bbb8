// Title files: CSV and tab text in, CSV out, and what of a text makes a title.
#include "TitleFile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "CodePage.h"
#include "TemporaryFolder.h"
#include "TitleText.h"

namespace fs = std::filesystem;

namespace {

using namespace std::string_literals;

// All titles, as in "5=abc|7=|".
std::string Titles(const TitleFile& file) {
    std::string all;
    for (int number = -1; number <= TitleFile::kTitles; ++number) {
        char text[kTitleSize];
        if (file.GetImportTitle(number, text) != 0) {
            all += std::to_string(number) + "=" + text + "|";
        }
    }
    return all;
}

std::string Csv(std::string_view text) {
    TitleFile file;
    file.ReadCsv(text);
    return Titles(file);
}

std::string Tab(std::string_view text) {
    TitleFile file;
    file.ReadTabText(text);
    return Titles(file);
}

// Double-byte characters are told apart, as for a Japanese user.
class JapaneseTest : public testing::Test {
protected:
    JapaneseTest() { kernel::SetCodePage(932); }
    ~JapaneseTest() override { kernel::SetCodePage(1252); }
};

class TitleFileTest : public testing::Test {
protected:
    // In the form in which the program knows paths.
    std::string Path(const std::string& name) const {
        std::string path = folder / name;
        for (char& letter : path) {
            letter = letter == '/' ? '\\' : letter;
        }
        return path;
    }
    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(folder / name, std::ios::binary) << bytes;
    }
    std::string Read(const std::string& name) const {
        std::ifstream file(folder / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

    const TemporaryFolder temporary;
    const fs::path folder = temporary.Path();
};

}  // namespace

TEST(Csv, FieldsWithAndWithoutQuotes) {
    EXPECT_EQ(Csv(" 5,\"abc\"\r\n"), "5=abc|");
    EXPECT_EQ(Csv("5,abc\n"), "5=abc|");
    EXPECT_EQ(Csv("7,\"a,b\"\n"), "7=a,b|");
    EXPECT_EQ(Csv("7,a,b\n8,c,\"x\ny\",z\r\n9,d"), "7=a|8=c|9=d|");
    EXPECT_EQ(Csv("7,\"a\"\"b\"\n"), "7=a\"b|");
    EXPECT_EQ(Csv("7,\"\"\n8,\n9\n"), "7=|8=|");
    EXPECT_EQ(Csv("\"7\",abc\nx,none\n"), "0=none|7=abc|");
    EXPECT_EQ(Csv("7,\"ab\"cd\n8, \"ab\"\n"), "7=abcd|8= \"ab\"|");
    EXPECT_EQ(Csv("7,\"a\nb\"\n"), "7=a b|") << "a line feed inside the quotes";
    EXPECT_EQ(Csv("7,\"never closed\n8,abc\n"), "7=never closed 8,abc |");
    EXPECT_EQ(Csv("7,\"a\"\"b"), "7=a\"b|");
    EXPECT_EQ(Csv("7,\"\"\"\""), "7=\"|");
    EXPECT_EQ(Csv("7,\""), "7=|");
    EXPECT_EQ(Csv(""), "");
    EXPECT_EQ(Csv("\n\r\n,\n"), "0=|");
}

TEST(Csv, NumbersAndRepetitions) {
    EXPECT_EQ(Csv("7,first\n7,second\n100,a\n-1,b\n99,c\n0,d\n"), "0=d|7=first|99=c|");
    EXPECT_EQ(Csv("\t +3x,a\n99999999999999999999,b\n-99999999999999999999,c\n"), "3=a|");
    EXPECT_EQ(Csv("\"  " + std::string(300, ' ') + "12\",a\n"), "12=a|");
}

TEST(Csv, CarriageReturnsGoInFrontOfASeparatorOnly) {
    EXPECT_EQ(Csv("7,abc\r\r\n8\r,d\r"), "7=abc|8=d |");
    EXPECT_EQ(Csv("7,\"abc\"\r\r\n"), "7=abc|");
    EXPECT_EQ(Csv("7,a\rb\n"), "7=a b|");
}

TEST(Csv, ATitleIsThirtyTwoPrintableBytes) {
    const std::string letters = "abcdefghijklmnopqrstuvwxyz012345";
    EXPECT_EQ(Csv("1," + letters + "X\n"), "1=" + letters + "|");
    EXPECT_EQ(Csv("1,\"" + letters + "\"\"X\"\n"), "1=" + letters + "|");
    EXPECT_EQ(Csv("1,a\x7F\x80\xFF\x01z\n"), "1=a    z|");
    EXPECT_EQ(Csv("1," + std::string(32, '"') + "\n"), "1=" + std::string(15, '"') + "|");
}

TEST(Titles, EndWhereTheirTextDoes) {
    char title[kTitleSize];
    std::memset(title, '#', sizeof title);
    CleanTitle("ab", title);
    EXPECT_STREQ(title, "ab");
    CleanTitle("", title);
    EXPECT_STREQ(title, "");
}

TEST_F(JapaneseTest, ACharacterIsOneBlankAndNeverHalved) {
    EXPECT_EQ(Csv("1,a\x83\x5C\x62\n"), "1=a b|");
    const std::string thirty(30, 'a');
    EXPECT_EQ(Csv("1," + thirty + "\x83\x41zz\n"), "1=" + thirty + " |");
    EXPECT_EQ(Csv("1," + thirty + "b\x83\x41zz\n"), "1=" + thirty + "b |");
    const std::string longest(31, 'a');
    EXPECT_EQ(Tab("1\t" + longest + "\x83"), "1=" + longest + " |") << "half a character in the last place";
    EXPECT_EQ(Csv("1," + longest + "\x83"), "1=" + longest + "|");
    EXPECT_EQ(Csv("1," + thirty + "\x83\x83\x83\x83zz\n"), "1=" + thirty + " |");
    EXPECT_EQ(Csv("1," + thirty.substr(1) + "\x83\x83zz\n"), "1=" + thirty.substr(1) + " z|")
        << "a whole one before the last";
    EXPECT_EQ(Csv("1,a\x83\n2,b\n"), "1=a 2|") << "and like a line feed";
    EXPECT_EQ(Csv("1,a\x83"), "1=a|") << "half a character is dropped at the end of a value";
    EXPECT_EQ(Tab("1\ta\x83"), "1=a |") << "and is a blank where nothing is unquoted";
    EXPECT_EQ(Csv("1,\"a\x83\"b\"\n"), "1=a b|") << "a second byte that looks like a quote";
    EXPECT_EQ(Csv("1,a\x83,b\n2,c\n"), "1=a b|2=c|") << "and like a comma";
    EXPECT_EQ(Csv("1,a\x83,,b\n2,c\n"), "1=a |2=c|") << "behind it a comma is one";
}

TEST(TabText, LinesOfNumberAndTitle) {
    EXPECT_EQ(Tab("5\tabc\r\n6\t\"abc\"\t more\n"), "5=abc|6=\"abc\"|");
    EXPECT_EQ(Tab("\r\n\n\r\r\n7\ta,b"), "7=a,b|");
    EXPECT_EQ(Tab("5\n6\t\nNumber\tTitle\n0\tlate\n"), "0=Title|5=|6=|");
    EXPECT_EQ(Tab("5,\"abc\"\n"), "5=|") << "CSV under another name";
    EXPECT_EQ(Tab("3. of 12\ta\n"), "3=a|") << "the number ends at its first byte that is none";
    EXPECT_EQ(Tab("7\tabc\r"), "7=abc |") << "no line feed behind it";
    EXPECT_EQ(Tab(""), "");
    EXPECT_EQ(Tab("\r"), "0=|");
}

TEST_F(TitleFileTest, TheNameChoosesTheFormat) {
    const std::string csv = "1,\"one\"\n";
    TitleFile file;
    for (const char* name : {"a.csv", "a.CSV", "b.asx.Csv"}) {
        Write(name, csv);
        EXPECT_EQ(file.ReadTitles(Path(name).c_str()), 0);
        EXPECT_EQ(Titles(file), "1=one|") << name;
    }
    fs::create_directory(folder / "dir.csv");
    for (const char* name : {"a.txt", "a.dat", "none", "csv", "dir.csv/none"}) {
        Write(name, csv);
        EXPECT_EQ(file.ReadTitles(Path(name).c_str()), 0);
        EXPECT_EQ(Titles(file), "1=|") << name;
    }
    Write("list.Asx", "<ASX><TITLE>T</TITLE></ASX>");
    EXPECT_EQ(file.ReadTitles(Path("list.Asx").c_str()), 0);
    EXPECT_EQ(Titles(file), "0=T|");
    Write("list.asx", csv);
    EXPECT_EQ(file.ReadTitles(Path("list.asx").c_str()), TitleFile::kRefused);

    Write("empty.csv", "");
    EXPECT_EQ(file.ReadTitles(Path("empty.csv").c_str()), 0);
    EXPECT_EQ(file.CountTitles(), 0);
    Write("zero.csv", "1,a\n2,b"s + '\0' + "c\n3,d\n");
    EXPECT_EQ(file.ReadTitles(Path("zero.csv").c_str()), 0);
    EXPECT_EQ(Titles(file), "1=a|2=b|") << "a zero byte ends the text";
    EXPECT_EQ(file.ReadTitles(nullptr), TitleFile::kNoPath);
    EXPECT_EQ(file.ReadTitles(Path("missing.csv").c_str()), TitleFile::kNotOpened);
    EXPECT_EQ(Titles(file), "1=a|2=b|") << "nothing was read";
}

// A disk that is full: what goes over the limit fails as it does there.
TEST_F(TitleFileTest, ARowThatIsNotWrittenIsToldAndTheNextIsTried) {
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlimit small{20, limit.rlim_max};
    TitleFile file;
    ASSERT_EQ(file.BeginExport(Path("full.csv").c_str()), 0);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    EXPECT_EQ(file.WriteTitle(1, "ten letters"), 1);
    EXPECT_EQ(file.WriteTitle(2, "many more letters"), 0);
    EXPECT_EQ(file.WriteTitle(3, ""), 0);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    EXPECT_EQ(file.WriteTitle(4, "d"), 1);
    std::signal(SIGXFSZ, before);
}

TEST_F(TitleFileTest, WhatIsWrittenReadsBack) {
    Write("out.csv", std::string(1000, 'x'));
    TitleFile file;
    EXPECT_EQ(file.WriteTitle(1, "a"), 0) << "nothing is open";
    EXPECT_EQ(file.BeginExport(nullptr), TitleFile::kNoPath);
    EXPECT_EQ(file.BeginExport(Path("no/such/folder/out.csv").c_str()), TitleFile::kNotOpened);
    ASSERT_EQ(file.BeginExport(Path("out.csv").c_str()), 0);
    EXPECT_EQ(Read("out.csv"), "") << "what was there is gone at once";
    EXPECT_EQ(file.BeginExport(Path("other.csv").c_str()), TitleFile::kOpenAlready);
    const std::string quotes(32, '"');
    EXPECT_EQ(file.WriteTitle(0, ""), 1);
    EXPECT_EQ(file.WriteTitle(7, "AB\"C"), 1);
    EXPECT_EQ(file.WriteTitle(12, " a, b & c "), 1);
    EXPECT_EQ(file.WriteTitle(99, quotes.c_str()), 1);
    file.EndExport();
    EXPECT_EQ(file.WriteTitle(1, "a"), 0);
    EXPECT_EQ(Read("out.csv"), " 0,\"\"\r\n 7,\"AB\"\"C\"\r\n12,\" a, b & c \"\r\n99,\"" + quotes + quotes + "\"\r\n");
    EXPECT_EQ(file.ReadTitles(Path("out.csv").c_str()), 0);
    EXPECT_EQ(Titles(file), "0=|7=AB\"C|12= a, b & c |99=" + quotes + "|");
    EXPECT_EQ(file.CountTitles(), 4);

    {
        TitleFile open;
        ASSERT_EQ(open.BeginExport(Path("kept.csv").c_str()), 0);
        EXPECT_EQ(open.WriteTitle(1, "kept"), 1);
    }
    EXPECT_EQ(Read("kept.csv"), " 1,\"kept\"\r\n") << "an end without EndExport loses nothing";
}

TEST_F(TitleFileTest, ALineIsWrittenWholeOrNotAtAll) {
    FileHandle file;
    EXPECT_EQ(file.WriteLine("a"), 0) << "nothing is open";
    ASSERT_EQ(file.OpenFile(true, Path("lines").c_str()), 1);
    EXPECT_EQ(file.WriteLine(std::string(498, 'x').c_str()), 0);
    EXPECT_EQ(file.WriteLine(std::string(497, 'y').c_str()), 1);
    ASSERT_EQ(file.OpenFile(false, Path("lines").c_str()), 1);
    EXPECT_EQ(file.WriteLine("z"), 0) << "open for reading";
    FileText text;
    EXPECT_EQ(file.ReadAll(text), 1);
    EXPECT_EQ(text.View(), std::string(497, 'y') + "\r\n");
    file.CloseFile();
    EXPECT_EQ(file.ReadAll(text), 0);
    EXPECT_EQ(text.View(), "");
    SetLastError(ERROR_SUCCESS);
    file.CloseFile();
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS}) << "on Windows the number may belong to another file by now";
}

// A list as a player of today writes it: the first line is what older ones do not have, and what is refused.
TEST_F(TitleFileTest, APlayersList) {
    std::ifstream sample(fs::path(SAMPLES_FOLDER) / "player.asx", std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(sample), {});
    TitleFile file;
    EXPECT_EQ(file.TakeTitles("player.asx", text), TitleFile::kRefused);
    EXPECT_EQ(file.TakeTitles("player.asx", text.substr(text.find("<asx"))), TitleFile::kDone);
    EXPECT_EQ(Titles(file), "0=Evening List|");
}

// Files as a spreadsheet has written them, from the same rows each time. Bytes that are no ASCII become blanks; in Shift-JIS
// read for a Japanese user each character is one, and the last one of "Rain", whose second byte looks like the beginning of
// another, takes the separator behind it along, as a reader that looks one byte back has to.
TEST_F(TitleFileTest, FilesOfASpreadsheet) {
    const std::string begin = "0=Harbour in March|1=Low Water|2=Neap, \"Spring\"|";
    const std::string plain = "0=Harbour in March|1=Low Water|2=Neap|";
    const std::string end = "6=After|10=  spaced  |11=End|";
    const struct {
        const char* name;
        UINT codePage;
        std::string titles;
    } files[] = {
        {"quoted-utf-8.csv", 1252, begin + "3=Caf            |4=         ,   |5=Rain       |" + end},
        {"unquoted-utf-8.csv", 1252, plain + "3=Caf            |4=         |5=Rain       |" + end},
        {"tab-utf-8.txt", 1252, begin + "3=Caf            |4=         ,   |5=Rain       |" + end},
        {"quoted-shift-jis.csv", 1252, begin + "3=Cafe  C   \\|4= \\ \\ \\, \\|5=Rain  A  |" + end},
        {"unquoted-shift-jis.csv", 1252, plain + "3=Cafe  C   \\|4= \\ \\ \\|5=Rain  A  |" + end},
        {"quoted-shift-jis.csv", 932, begin + "3=Cafe    |4=   , |5=Rain   \"  6\"|10=  spaced  |11=End|"},
        {"unquoted-shift-jis.csv", 932, plain + "3=Cafe    |4=   |5=Rain    6|10=  spaced  |11=End|"},
    };
    for (const auto& one : files) {
        kernel::SetCodePage(one.codePage);
        fs::copy_file(fs::path(SAMPLES_FOLDER) / one.name, folder / one.name, fs::copy_options::overwrite_existing);
        TitleFile file;
        EXPECT_EQ(file.ReadTitles(Path(one.name).c_str()), 0);
        EXPECT_EQ(Titles(file), one.titles) << one.name << ' ' << one.codePage;
    }
    kernel::SetCodePage(1252);
}
