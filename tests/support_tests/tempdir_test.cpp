#include "support/tempdir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

namespace vantorel::test {
namespace {

TEST(TempDir, WritesAndReadsFilesInFolders) {
    TempDir dir;
    EXPECT_EQ(dir.file("a/b/c.bin", Bytes{0, 255, 0}), dir.path() + "/a/b/c.bin");
    EXPECT_EQ(dir.bytes("a/b/c.bin"), (Bytes{0, 255, 0}));
    dir.file("text", "line\n");
    EXPECT_EQ(dir.text("text"), "line\n");
    EXPECT_FALSE(dir.exists("nothing"));
    EXPECT_THROW((void)dir.text("nothing"), std::system_error);
}

TEST(TempDir, TakesItsTreeAway) {
    std::optional<TempDir> dir(std::in_place);
    const std::string path = dir->path();
    dir->file("a/b/c", "x");
    dir.reset();
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(InDirectory, ComesBack) {
    const auto before = std::filesystem::current_path();
    TempDir dir;
    {
        InDirectory inside(dir);
        EXPECT_EQ(std::filesystem::current_path(), std::filesystem::canonical(dir.path()));
    }
    EXPECT_EQ(std::filesystem::current_path(), before);
}

} // namespace
} // namespace vantorel::test
