// File, Import and Export: what the chooser is given, and what becomes of the titles.
#include <gtest/gtest.h>

#include <string>

#include "Harness.h"
#include "PaneTesting.h"
#include "ScriptedChooser.h"
#include "ScriptedLink.h"
#include "TitleStore.h"
#include "resource.h"

namespace {

constexpr DWORD kOpenFlags = 0x211804;
constexpr DWORD kSaveFlags = 0x210806;

std::string CurrentFolder() {
    char folder[MAX_PATH] = "";
    EXPECT_NE(GetCurrentDirectoryA(sizeof folder, folder), 0U);
    return folder;
}

// A file in the current folder, gone with the object.
class TestFile {
public:
    explicit TestFile(const std::string& ending) {
        // Other cases run at the same time.
        path = CurrentFolder() + "\\pane-files-" + std::to_string(GetTickCount()) + '-' +
               std::to_string(reinterpret_cast<ULONG_PTR>(this)) + ending;
    }
    TestFile(const std::string& ending, const std::string& text) : TestFile(ending) {
        const HANDLE file = CreateFileA(Path(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        DWORD written = 0;
        EXPECT_TRUE(WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr));
        CloseHandle(file);
    }
    ~TestFile() { DeleteFileA(Path()); }
    TestFile(const TestFile&) = delete;
    TestFile& operator=(const TestFile&) = delete;

    const char* Path() const { return path.c_str(); }
    std::string Name() const { return path.substr(path.rfind('\\') + 1); }

    // "(none)" if there is no such file.
    std::string Content() const {
        const HANDLE file = CreateFileA(Path(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            return "(none)";
        }
        char text[4096] = "";
        DWORD count = 0;
        EXPECT_TRUE(ReadFile(file, text, sizeof text, &count, nullptr));
        CloseHandle(file);
        return {text, count};
    }

private:
    std::string path;
};

}  // namespace

class PaneFilesTest : public PaneTest {
protected:
    void SetUp() override {
        PaneTest::SetUp();
        AddDisc(1, 1);
        AddDisc(2, 3);
        AddAlbum(1, 2);
        Refill(2);
        scripted::TakeChooserRequest();
    }

    void Import(const TestFile& file) {
        scripted::AnswerChooser(file.Path());
        Command(IDM_IMPORT);
    }
    void Export(const TestFile& file) {
        scripted::AnswerChooser(file.Path());
        Command(IDM_EXPORT);
    }
    bool CanUndo() const { return scripted::Store()->CanUndo() != 0; }
};

TEST_F(PaneFilesTest, ImportedTitlesAreEdits) {
    const TestFile file(".csv", " 0,\"The \"\"Second\"\"\"\r\n1,One\n3,\n2,\"Disc 2, Track 2\"\r\n50,Nowhere\r\n");
    Import(file);
    EXPECT_EQ(Rows(IDC_TRACK_LIST), "Tr|1|One\nTr|2|Disc 2, Track 2\nTr|3|\n");
    EXPECT_EQ(Rows(IDC_GROUP_LIST), "Dsc|1|Disc 1\nDsc|2|The \"Second\"\nAlb|1|Album 1\n");
    EXPECT_EQ(Selected(IDC_GROUP_LIST), 1);
    EXPECT_EQ(scripted::Store()->IsEdited(2, 0), 1);
    EXPECT_EQ(scripted::Store()->IsEdited(2, 3), 1);
    EXPECT_EQ(scripted::Store()->IsEdited(2, 2), 0) << "it stood there already";
    EXPECT_EQ(scripted::Store()->IsKnown(2, 50), 0);
    EXPECT_EQ(scripted::Take(), "") << "nothing goes to the main unit by itself";

    for (const char* rows : {"Tr|1|One\nTr|2|Disc 2, Track 2\nTr|3|Disc 2, Track 3\n",
                             "Tr|1|Disc 2, Track 1\nTr|2|Disc 2, Track 2\nTr|3|Disc 2, Track 3\n"}) {
        Command(IDM_UNDO);
        EXPECT_EQ(Rows(IDC_TRACK_LIST), rows);
    }
    Command(IDM_UNDO);
    EXPECT_EQ(Title(2, 0), "Disc 2");
    EXPECT_FALSE(CanUndo());
}

TEST_F(PaneFilesTest, EachFormatByItsExtension) {
    Import(TestFile(".TXT", "1\tTab\r\n"));
    EXPECT_EQ(Title(2, 1), "Tab");
    Import(TestFile(".Asx", "<asx><title>List</title><entry><title>Song</title></entry></asx>"));
    EXPECT_EQ(Title(2, 0), "List");
    EXPECT_EQ(Title(2, 1), "Song");
}

TEST_F(PaneFilesTest, OfAnAlbumOnlyItsOwnTitleIsTaken) {
    Select(2);
    Import(TestFile(".csv", "0,Ours\n1,Not ours\n"));
    EXPECT_EQ(Title(AlbumGroup(1), 0), "Ours");
    EXPECT_EQ(Title(AlbumGroup(1), 1), "Album 1, Track 1");
    EXPECT_EQ(Title(2, 1), "Disc 2, Track 1");
}

TEST_F(PaneFilesTest, WhatIsRefusedChangesNothing) {
    const TestFile refused(".asx", "<asx><entry><title>Song</title></entry><title>List");
    const TestFile missing(".csv");
    for (const TestFile* file : {&refused, &missing}) {
        const BoxReader box(IDS_ERROR_CAPTION);
        Import(*file);
        EXPECT_EQ(box.Texts(), Text(IDS_ERROR_IMPORT) + "\n") << file->Path();
    }
    const BoxReader noBox(IDS_ERROR_CAPTION);
    Import(TestFile(".csv", "no numbers and no titles\r\n"));
    scripted::AnswerChooser(std::nullopt);
    Command(IDM_IMPORT);
    EXPECT_EQ(noBox.Texts(), "");
    EXPECT_EQ(Title(2, 0), "Disc 2");
    EXPECT_EQ(Title(2, 1), "Disc 2, Track 1");
    EXPECT_FALSE(CanUndo());
}

TEST_F(PaneFilesTest, TheChooserBeginsWhereItWasLeft) {
    scripted::AnswerChooser(std::nullopt);
    Command(IDM_IMPORT);
    std::optional<scripted::ChooserRequest> asked = scripted::TakeChooserRequest();
    ASSERT_TRUE(asked);
    EXPECT_FALSE(asked->saves);
    EXPECT_EQ(asked->owner, Pane());
    EXPECT_EQ(asked->filters, "Csv Files (*.csv)|*.csv|Text Files (tab) (*.txt)|*.txt|Play List Files (*.asx)|*.asx");
    EXPECT_EQ(asked->firstFilter, 1U);
    EXPECT_EQ(asked->fileName, "");
    EXPECT_EQ(asked->folder, CurrentFolder());
    EXPECT_EQ(asked->extension, "csv");
    EXPECT_EQ(asked->title, "");
    EXPECT_EQ(asked->flags, kOpenFlags);

    Command(IDM_EXPORT);
    asked = scripted::TakeChooserRequest();
    ASSERT_TRUE(asked);
    EXPECT_TRUE(asked->saves);
    EXPECT_EQ(asked->filters, "Csv Files (*.csv)|*.csv");
    EXPECT_EQ(asked->flags, kSaveFlags);

    // A cancel leaves nothing behind; a choice does, even of a file that is refused, each of the commands its own.
    const struct {
        const char* ending;
        DWORD filter;
        const char* extension;
    } choices[] = {{".ASX", 3, "asx"}, {".txt", 2, "txt"}, {".dat", 4, ""}, {"", 4, ""}};
    for (const auto& choice : choices) {
        const TestFile file(choice.ending, "<asx");
        const BoxReader box(IDS_ERROR_CAPTION);
        Import(file);
        Command(IDM_IMPORT);
        asked = scripted::TakeChooserRequest();
        ASSERT_TRUE(asked);
        EXPECT_EQ(asked->fileName, file.Name());
        EXPECT_EQ(asked->folder, CurrentFolder());
        EXPECT_EQ(asked->firstFilter, choice.filter) << choice.ending;
        EXPECT_EQ(asked->extension, choice.extension);
    }
    scripted::AnswerChooser(std::nullopt);
    Command(IDM_EXPORT);
    asked = scripted::TakeChooserRequest();
    ASSERT_TRUE(asked);
    EXPECT_EQ(asked->fileName, "");
}

TEST_F(PaneFilesTest, ExportWritesTheTextsAsTheyStand) {
    scripted::Store()->EditTitle(2, 3, "Typed, \"not\" sent");
    scripted::Store()->StoreReceived(2, 99, "The last");
    scripted::Store()->StoreReceived(2, 5, nullptr);
    const TestFile file(".csv",
                        "What was there before is longer than what comes, in each and every one of its parts: gone\r\n");
    Export(file);
    EXPECT_EQ(
        file.Content(),
        " 0,\"Disc 2\"\r\n 1,\"Disc 2, Track 1\"\r\n 2,\"Disc 2, Track 2\"\r\n 3,\"Typed, \"\"not\"\" sent\"\r\n99,\"The "
        "last\"\r\n");
    EXPECT_EQ(scripted::Store()->IsEdited(2, 3), 1);
    // And back, which changes nothing.
    const std::string before = Title(2, 3);
    scripted::Store()->UndoEdit(nullptr, nullptr, nullptr);
    Import(file);
    EXPECT_EQ(Title(2, 3), before);
    EXPECT_EQ(scripted::Store()->IsEdited(2, 1), 0);
}

TEST_F(PaneFilesTest, AFileThatCannotBeMadeIsNoQuestion) {
    const BoxReader box(IDS_ERROR_CAPTION);
    scripted::AnswerChooser(CurrentFolder() + "\\no such folder\\out.csv");
    Command(IDM_EXPORT);
    EXPECT_EQ(box.Texts(), "");
    EXPECT_TRUE(scripted::TakeChooserRequest());
}

TEST_F(PaneFilesTest, AGroupWithoutATitleHasNothingToDoWithFiles) {
    // The row is still there; the main unit has just said that the title is gone.
    scripted::Store()->StoreReceived(2, 0, nullptr);
    for (const int command : {IDM_IMPORT, IDM_EXPORT}) {
        Command(static_cast<WORD>(command));
        EXPECT_FALSE(scripted::TakeChooserRequest());
    }
    scripted::Store()->ResetAll();
    Command(IDM_STOP);
    EXPECT_EQ(Rows(IDC_GROUP_LIST), "");
    for (const int command : {IDM_IMPORT, IDM_EXPORT}) {
        Command(static_cast<WORD>(command));
        EXPECT_FALSE(scripted::TakeChooserRequest());
    }
}
