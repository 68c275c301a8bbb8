#include "LibraryFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "LibraryText.h"
#include "TemporaryFolder.h"

namespace library {
namespace {

namespace fs = std::filesystem;

class LibraryFileTest : public testing::Test {
protected:
    const TemporaryFolder temporary;
    const fs::path folder = temporary.Path();
    std::string error;
};

UnitLibrary SmallLibrary() {
    UnitLibrary library;
    library.SetTitle({GroupKind::kDisc, 12, 0}, R"(Ten "quoted", & more \ \\)");
    library.SetTitle({GroupKind::kDisc, 12, 10}, "");
    library.SetTitle({GroupKind::kDisc, 12, 9}, std::string(32, '~'));
    library.Add({GroupKind::kDisc, 999, 99});
    library.SetTitle({GroupKind::kAlbum, 1, 0}, "Album");
    return library;
}

TEST(UnitLibrary, KeepsExistenceAndTitleApart) {
    UnitLibrary library;
    EXPECT_TRUE(library.Add({GroupKind::kDisc, 5, 2}));
    EXPECT_TRUE(library.Exists({GroupKind::kDisc, 5, 0})) << "a track brings its disc";
    EXPECT_FALSE(library.Exists({GroupKind::kAlbum, 5, 0}));
    EXPECT_EQ(library.Title({GroupKind::kDisc, 5, 2}), nullptr);
    EXPECT_TRUE(library.SetTitle({GroupKind::kDisc, 5, 2}, " two  "));
    EXPECT_EQ(*library.Title({GroupKind::kDisc, 5, 2}), " two");
    EXPECT_TRUE(library.SetTitle({GroupKind::kDisc, 5, 0}, std::string(32, ' ')));
    EXPECT_EQ(*library.Title({GroupKind::kDisc, 5, 0}), "");
    EXPECT_TRUE(library.Add({GroupKind::kDisc, 5, 2}));
    EXPECT_EQ(*library.Title({GroupKind::kDisc, 5, 2}), " two") << "what exists keeps its title";
}

TEST(UnitLibrary, KeepsItsLimits) {
    UnitLibrary library;
    for (const Entry& entry : {Entry{GroupKind::kDisc, 0, 0}, Entry{GroupKind::kDisc, 1000, 0},
                               Entry{GroupKind::kDisc, 1, -1}, Entry{GroupKind::kDisc, 1, 100}}) {
        EXPECT_FALSE(library.Add(entry)) << NameOf(entry);
        EXPECT_FALSE(library.SetTitle(entry, "x")) << NameOf(entry);
    }
    for (const std::string& text : {std::string(33, 'x'), std::string("tab\t"), std::string("\x7F"), std::string("\xE9")}) {
        EXPECT_FALSE(library.SetTitle({GroupKind::kDisc, 1, 0}, text));
    }
    EXPECT_EQ(library, UnitLibrary());
}

TEST_F(LibraryFileTest, ComesBackAsItWas) {
    const std::string path = folder / "library.json";
    ASSERT_TRUE(SaveLibrary(path, SmallLibrary(), error)) << error;
    UnitLibrary loaded;
    ASSERT_TRUE(LoadLibrary(path, loaded, error)) << error;
    EXPECT_EQ(loaded, SmallLibrary());
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1) << "no temporary file stays";
}

TEST_F(LibraryFileTest, ReplacesTheTargetOfALinkAndKeepsItsPermissions) {
    const fs::path target = folder / "target.json";
    const fs::path link = folder / "link.json";
    std::ofstream(target) << "old";
    fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(target, link);
    ASSERT_TRUE(SaveLibrary(link, SmallLibrary(), error)) << error;
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    UnitLibrary loaded;
    EXPECT_TRUE(LoadLibrary(target, loaded, error)) << error;
}

TEST_F(LibraryFileTest, LeavesTheOldFileWhenItCannotSave) {
    // A folder cannot be replaced by a file, whoever runs the test.
    const fs::path taken = folder / "taken";
    fs::create_directory(taken);
    EXPECT_FALSE(SaveLibrary(taken, SmallLibrary(), error));
    EXPECT_NE(error.find("taken: "), std::string::npos) << error;
    EXPECT_TRUE(fs::is_directory(taken));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
    EXPECT_FALSE(SaveLibrary(folder / "missing" / "library.json", SmallLibrary(), error));

    UnitLibrary library;
    EXPECT_FALSE(LoadLibrary(folder / "nothing.json", library, error));
    EXPECT_NE(error.find("nothing.json: No such file"), std::string::npos) << error;
}

TEST(LibraryFile, SaysWhatIsWrong) {
    const struct {
        const char* text;
        const char* error;
    } cases[] = {
        {"", "parse error"},
        {"{\"discs\": {", "line 1"},
        {"{} x", "parse error"},
        {"[]", "library is no object"},
        {R"({"disks": {}})", "unknown name \"disks\""},
        {R"({"discs": []})", "discs is no object"},
        {R"({"discs": {"0": {}}})", "discs has \"0\""},
        {R"({"discs": {"1000": {}}})", "discs has \"1000\""},
        {R"({"discs": {"01": {}}})", "discs has \"01\""},
        {R"({"discs": {"": {}}})", "discs has \"\""},
        {R"({"discs": {"7": {}, "7": {}}})", "\"7\" stands twice"},
        {R"({"discs": {"7": {"title": "a", "title": "b"}}})", "\"title\" stands twice"},
        {R"({"discs": {"7": 7}})", "Disc 7 is no object"},
        {R"({"discs": {"7": {"name": "a"}}})", "Disc 7 has the unknown name \"name\""},
        {R"({"discs": {"7": {"title": 7}}})", "Disc 7 has a title that is neither"},
        {R"({"discs": {"7": {"title": "123456789012345678901234567890123"}}})", "Disc 7 has a title that is longer"},
        {R"({"discs": {"7": {"title": "caf\u00e9"}}})", "Disc 7 has a title that is longer than 32 characters or not"},
        {R"({"albums": {"7": {"tracks": []}}})", "Album 7 tracks is no object"},
        {R"({"albums": {"7": {"tracks": {"100": null}}}})", "Album 7 tracks has \"100\""},
        {R"({"albums": {"7": {"tracks": {"3": "\n"}}}})", "Album 7 track 3 has a title"},
    };
    for (const auto& one : cases) {
        UnitLibrary library = SmallLibrary();
        std::string error;
        EXPECT_FALSE(ParseLibrary(one.text, library, error)) << one.text;
        EXPECT_NE(error.find(one.error), std::string::npos) << one.text << ": " << error;
        EXPECT_EQ(library, SmallLibrary());
    }
}

TEST(SampleLibrary, HoldsEveryCaseThatAClientMeets) {
    UnitLibrary library;
    std::string error;
    ASSERT_TRUE(LoadLibrary(SAMPLE_LIBRARY, library, error)) << error;
    bool isUnnamed = false;
    bool isFull = false;
    bool isEmpty = false;
    std::size_t mostTracks = 0;
    for (const auto& [number, disc] : library.GroupsOf(GroupKind::kDisc)) {
        isUnnamed = isUnnamed || !disc.title;
        isFull = isFull || (disc.title && disc.title->size() == kLongestTitle);
        isEmpty = isEmpty || (disc.title && disc.title->empty());
        mostTracks = std::max(mostTracks, disc.tracks.size());
    }
    EXPECT_TRUE(isUnnamed && isFull && isEmpty);
    EXPECT_EQ(mostTracks, 99U);
}

}  // namespace
}  // namespace library
