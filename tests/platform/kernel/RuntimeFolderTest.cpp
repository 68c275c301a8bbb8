// The folder in which copies of the program find each other.
#include "RuntimeFolder.h"

#include <sys/stat.h>

#include "TestSupport.h"

namespace {

using kernel::RuntimeFolder;

TEST(RuntimeFolderTest, IsTheSameInEveryEnvironment) {
    const TemporaryFolder other;
    const std::string without = RuntimeFolder();
    const EnvironmentVariable session("XDG_RUNTIME_DIR", other.Path().c_str());
    EXPECT_EQ(RuntimeFolder(), without);
    EXPECT_TRUE(without.starts_with("/tmp/tesselia-")) << without;
}

TEST(RuntimeFolderTest, IsNotOneThatOthersReach) {
    const TemporaryFolder above;
    const std::string path = above.Path() / "run";
    const EnvironmentVariable chosen("TESSELIA_RUNTIME_DIR", path.c_str());
    EXPECT_EQ(RuntimeFolder(), path);
    ASSERT_EQ(chmod(path.c_str(), 0755), 0);
    EXPECT_EQ(RuntimeFolder(), "");
    std::filesystem::remove(path);
    std::filesystem::create_directory_symlink(above.Path(), path);
    EXPECT_EQ(RuntimeFolder(), "");
}

}  // namespace
