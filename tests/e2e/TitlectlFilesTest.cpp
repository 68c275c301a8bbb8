// titlectl between a main unit and files: import, export, backup and restore.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "LibraryFile.h"
#include "TitlectlTest.h"

namespace fs = std::filesystem;

namespace {

using library::GroupKind;
using library::UnitLibrary;

class TitlectlFilesTest : public TitlectlTest {
protected:
    std::string NewFile(const std::string& name, const std::string& text) const {
        const std::string path = folder / name;
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }

    // A run that is told `answer` when it asks.
    int RunAnswering(const std::string& answer, const std::string& arguments) {
        Process shell("/bin/sh", {"-c", "echo " + answer + " | " + CommandOf("titlectl") + " --port COM1 " + arguments},
                      NextOutputs("titlectl"));
        return End(shell);
    }
};

TEST_F(TitlectlFilesTest, ExportsAGroupToANewFile) {
    UnitLibrary library = Saved();
    library.SetTitle({GroupKind::kDisc, 1, 2}, "High \"Water\", 2");
    std::string error;
    ASSERT_TRUE(library::SaveLibrary(libraryFile, library, error)) << error;
    const UnitProcess unit = StartUnit();
    const std::string file = folder / "g\xC3\xA5 out.csv";
    EXPECT_EQ(Run({"--port", "COM1", "export", "D1", file}), kDone) << errors;
    EXPECT_EQ(ReadFile(file),
              " 0,\"Harbour in March\"\r\n"
              " 1,\"Low Water\"\r\n"
              " 2,\"High \"\"Water\"\", 2\"\r\n");
    // It is the only copy of something, perhaps.
    const int asked = unit.CountRequests("ModelQuery");
    EXPECT_EQ(Run({"--port", "COM1", "export", "D2", file}), kFile);
    EXPECT_EQ(Run({"--port", "COM1", "export", "D2", folder / "no such folder" / "out.csv"}), kFile);
    EXPECT_EQ(unit.CountRequests("ModelQuery"), asked);
    EXPECT_NE(ReadFile(file).find("Harbour in March"), std::string::npos);
    // A Disc that is not there.
    EXPECT_EQ(Run({"--port", "COM1", "export", "D500", folder / "none.csv"}), kNotWritable);
    EXPECT_FALSE(fs::exists(folder / "none.csv"));
}

TEST_F(TitlectlFilesTest, ImportsWhereThereAreTitles) {
    const UnitProcess unit = StartUnit();
    UnitLibrary expected = Saved();
    const std::string csv = NewFile("titles.CSV", " 0,\"Paper Lanterns\"\r\n1,\"Ferry, \"\"Late\"\"  \"\r\n50,nowhere\r\n");
    const std::string differences =
        "D2    1  \"The Ferry & the Notebook\" becomes \"Ferry, \"Late\"\"\n"
        "D2   50  \"nowhere\" cannot be written: the main unit has no such title\n";
    EXPECT_EQ(Run({"--port", "COM1", "import", "--dry-run", "D2", csv}), kNotWritable) << errors;
    EXPECT_EQ(output, differences);
    EXPECT_EQ(RunAnswering("n", "import D2 " + csv), kStopped) << errors;
    EXPECT_TRUE(Saved() == expected);
    EXPECT_EQ(RunAnswering("y", "import D2 " + csv), kNotWritable) << errors;
    EXPECT_EQ(output, differences + "D2    1  Ferry, \"Late\"\n");
    expected.SetTitle({GroupKind::kDisc, 2, 1}, "Ferry, \"Late\"");
    EXPECT_TRUE(Saved() == expected);

    const std::string asx = NewFile("titles.asx", "<ASX><TITLE>Night Walks</TITLE><ENTRY><TITLE>x</TITLE></ENTRY></ASX>");
    EXPECT_EQ(RunAnswering("yes", "import A7 " + asx), kNotWritable) << errors;
    EXPECT_NE(output.find("A7    1  \"x\" cannot be written: of an Album only its own title can be written"),
              std::string::npos)
        << output;
    expected.SetTitle({GroupKind::kAlbum, 7, 0}, "Night Walks");
    EXPECT_TRUE(Saved() == expected);

    // The same again has nothing to write, and a plain text has titles of no letters, which is why it asks.
    const int written = unit.CountRequests("TitleWrite");
    EXPECT_EQ(Run({"--port", "COM1", "import", "A7", NewFile("same.csv", "0,Night Walks\n")}), kDone) << errors;
    EXPECT_EQ(output, "");
    EXPECT_EQ(RunAnswering("n", "import D1 " + NewFile("prose.txt", "no tab in it\n")), kStopped) << errors;
    EXPECT_EQ(output, "D1    0  \"Harbour in March\" becomes \"\"\n");
    EXPECT_EQ(unit.CountRequests("TitleWrite"), written);

    // What cannot be read does not get as far as the line.
    const int asked = unit.CountRequests("ModelQuery");
    const std::vector<std::string> wrong = {folder / "missing.csv", folder.string(),
                                            NewFile("broken.asx", "<ASX><ENTRY><TITLE>a</ENTRY></ASX>"),
                                            NewFile("prose.csv", "nothing with a comma\n")};
    for (const std::string& file : wrong) {
        EXPECT_EQ(Run({"--port", "COM1", "import", "D1", file}), kFile) << file;
        EXPECT_NE(errors.find(file), std::string::npos) << errors;
    }
    EXPECT_EQ(unit.CountRequests("ModelQuery"), asked);
    EXPECT_TRUE(Saved() == expected);
}

TEST_F(TitlectlFilesTest, BacksUpEverything) {
    UnitLibrary library = Saved();
    library.SetTitle({GroupKind::kDisc, 2, 99}, "");
    library.SetTitle({GroupKind::kDisc, 999, 0}, "Back\\slash \"and\" more");
    std::string error;
    ASSERT_TRUE(library::SaveLibrary(libraryFile, library, error)) << error;
    const UnitProcess unit = StartUnit();
    const std::string file = folder / "backup.json";
    EXPECT_EQ(Run({"--port", "COM1", "backup", file}), kDone) << errors;
    EXPECT_EQ(output, "10 titles of 4 Discs and 2 Albums in " + file + "\n");
    UnitLibrary saved;
    EXPECT_TRUE(library::LoadLibrary(file, saved, error)) << error;
    EXPECT_TRUE(saved == library) << ReadFile(file);

    const int asked = unit.CountRequests("ModelQuery");
    EXPECT_EQ(Run({"--port", "COM1", "backup", file}), kFile);
    EXPECT_NE(errors.find("is there already"), std::string::npos) << errors;
    EXPECT_EQ(Run({"--port", "COM1", "backup", folder / "no such folder" / "x"}), kFile);
    EXPECT_EQ(unit.CountRequests("ModelQuery"), asked);
}

TEST_F(TitlectlFilesTest, MakesNoBackupOfHalfAUnit) {
    AddDiscs(100, 160);
    const std::string file = folder / "backup.json";
    const UnitProcess unit = StartUnit();
    const auto backup = Start({"--port", "COM1", "backup", file});
    ASSERT_TRUE(backup->WaitForError(secondTitle)) << backup->Errors();
    unit.Signal(SIGKILL);
    EXPECT_EQ(End(*backup), kTimeOut) << errors;
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(TitlectlFilesTest, LeavesNoHalfFileOnAFullDisk) {
    const UnitProcess unit = StartUnit();
    const std::string file = folder / "backup.json";
    // Windows writes files of its own when it starts.
    EXPECT_EQ(Run({"--help"}), kDone);
    Process shell("/bin/sh",
                  {"-c", "(trap '' XFSZ; ulimit -f 0; " + CommandOf("titlectl") + " --port COM1 backup " + file +
                             " 2>&1; echo \"ended with $?\") | cat"},
                  NextOutputs("titlectl"));
    EXPECT_EQ(End(shell), 0);
    EXPECT_NE(output.find("backup.json: cannot be written\nended with 13\n"), std::string::npos) << output;
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(TitlectlFilesTest, RestoresWhatDiffers) {
    const UnitProcess unit = StartUnit();
    const UnitLibrary before = Saved();
    UnitLibrary changed = before;
    changed.SetTitle({GroupKind::kDisc, 1, 0}, "Another \\ one");
    changed.SetTitle({GroupKind::kDisc, 2, 1}, "");
    changed.SetTitle({GroupKind::kAlbum, 999, 0}, "Restored");
    const std::string file = folder / "changed.json";
    std::string error;
    ASSERT_TRUE(library::SaveLibrary(file, changed, error)) << error;

    EXPECT_EQ(Run({"--port", "COM1", "restore", "--dry-run", file}), kDone) << errors;
    const std::string differences =
        "D1    0  \"Harbour in March\" becomes \"Another \\ one\"\n"
        "D2    1  \"The Ferry & the Notebook\" becomes \"\"\n"
        "A999  0  \"The Last of Them All, 32 Letters\" becomes \"Restored\"\n";
    EXPECT_EQ(output, differences);
    for (const std::string answer : {"n", "", "yesterday"}) {
        EXPECT_EQ(RunAnswering(answer, "restore " + file), kStopped) << errors;
        EXPECT_NE(errors.find("Write 3 titles to the main unit? (y/N)"), std::string::npos) << errors;
    }
    EXPECT_EQ(unit.CountRequests("TitleWrite"), 0);
    EXPECT_TRUE(Saved() == before);

    EXPECT_EQ(RunAnswering("y", "restore " + file), kDone) << errors;
    EXPECT_EQ(output, differences + "D1    0  Another \\ one\nD2    1  \nA999  0  Restored\n");
    EXPECT_EQ(unit.CountRequests("TitleWrite"), 3);
    EXPECT_TRUE(Saved() == changed);
    EXPECT_EQ(Run({"--port", "COM1", "restore", file}), kDone) << "there is nothing to ask about any more";
    EXPECT_EQ(output, "");
    EXPECT_EQ(unit.Complaints(), "");
}

TEST_F(TitlectlFilesTest, TellsWhatCannotBeRestored) {
    const UnitProcess unit = StartUnit();
    const std::string file =
        NewFile("backup.json",
                R"({"discs": {"1": {"title": "Harbour in March", "tracks": {"1": "Ebb", "3": "Never named"}},
                                         "12": {"title": null, "tracks": {}}, "500": {"title": "Not there"}},
                                         "albums": {"7": {"title": "Evening Walks", "tracks": {"1": "Ebb"}}}})");
    EXPECT_EQ(RunAnswering("y", "restore " + file), kNotWritable) << errors;
    EXPECT_EQ(output,
              "D1    1  \"Low Water\" becomes \"Ebb\"\n"
              "D1    3  \"Never named\" cannot be written: the main unit has no such title\n"
              "D500  0  \"Not there\" cannot be written: the main unit has no such title\n"
              "A7    1  \"Ebb\" cannot be written: of an Album only its own title can be written\n"
              "D1    1  Ebb\n");
    EXPECT_EQ(SavedTitle({GroupKind::kDisc, 1, 1}), "Ebb");
    EXPECT_EQ(unit.CountRequests("TitleWrite"), 1);

    const int asked = unit.CountRequests("ModelQuery");
    const std::vector<std::string> wrong = {
        folder / "missing.json", NewFile("half.json", R"({"discs": {"1": {"ti)"),
        NewFile("long.json", R"({"discs": {"1": {"title": ")" + std::string(33, 'x') + R"("}}})")};
    for (const std::string& one : wrong) {
        EXPECT_EQ(Run({"--port", "COM1", "restore", one}), kFile) << one;
        EXPECT_NE(errors.find(one), std::string::npos) << errors;
    }
    EXPECT_EQ(unit.CountRequests("ModelQuery"), asked);
}

}  // namespace
