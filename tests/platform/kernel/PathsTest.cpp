// Paths in the form of Windows, and the aliases of those that have none.
#include "Paths.h"

#include <gtest/gtest.h>

#include "TestSupport.h"

namespace {

using kernel::LinuxPath;
using kernel::WindowsPathOrAlias;

TEST(Paths, APathThatCanBeSaidIsItself) {
    const ChosenCodePage page(1252);
    EXPECT_EQ(WindowsPathOrAlias("/home/x/caf\u00E9.csv", 260), "\\home\\x\\caf\xE9.csv");
    EXPECT_EQ(LinuxPath("\\home\\x\\caf\xE9.csv"), "/home/x/caf\u00E9.csv");
    EXPECT_EQ(WindowsPathOrAlias("/12345678", 10), "\\12345678");
}

TEST(Paths, AnyOtherHasAnAliasThatKeepsItsExtension) {
    const ChosenCodePage page(1252);
    for (const std::string path : {"/home/\u8868.csv", "/home/back\\slash.csv", "/home/a/longer/name.csv"}) {
        const auto alias = WindowsPathOrAlias(path, 20);
        ASSERT_TRUE(alias) << path;
        EXPECT_LT(alias->size(), 20u);
        EXPECT_TRUE(alias->ends_with(".csv")) << *alias;
        EXPECT_EQ(LinuxPath(*alias), path);
        // It stays the same, so that many choices of one file need no more room than one.
        EXPECT_EQ(WindowsPathOrAlias(path, 20), alias);
    }
    EXPECT_NE(WindowsPathOrAlias("/home/\u8868.csv", 20), WindowsPathOrAlias("/home/\u8868.txt", 20));
    EXPECT_EQ(WindowsPathOrAlias("/home/\u8868.csv", 5), std::nullopt);
    for (const std::string path : {"/home/\u8868/no extension", "/home/a.b/\u8868", "/home/a.\u8868"}) {
        const auto alias = WindowsPathOrAlias(path, 260);
        ASSERT_TRUE(alias) << path;
        EXPECT_EQ(alias->find('.'), std::string::npos);
        EXPECT_EQ(LinuxPath(*alias), path);
    }
    EXPECT_EQ(LinuxPath("\\~files~\\99999.csv"), "/~files~/99999.csv");
}

}  // namespace
