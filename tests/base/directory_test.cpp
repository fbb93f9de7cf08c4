// One directory of the host, listed for a walk.

#include "base/directory.h"

#include "base/text.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

namespace vantorel::test {
namespace {

struct Scanned {
    std::vector<std::string> directories; // sorted, as the system has an order of its own
    std::vector<std::string> files;
};

Scanned scanned(size_t index, const std::string& path) {
    Scanned found;
    scandirectory(
        index, path, [&](const std::string& directory) { found.directories.push_back(directory); },
        [&](const char* name) { found.files.emplace_back(name); });
    std::ranges::sort(found.directories);
    std::ranges::sort(found.files);
    return found;
}

TEST(ScanDirectory, DirectoriesComeAsPathsAndFilesAsNames) {
    const TempDir directory;
    static_cast<void>(directory.file("one", ""));
    static_cast<void>(directory.file(".two", ""));
    for (const char* name : {"/a", "/b", "/.hidden"})
        std::filesystem::create_directory(directory.path() + name);
    static_cast<void>(directory.file("a/below", ""));
    const Scanned found = scanned(1, directory.path());
    EXPECT_EQ(found.directories,
              (std::vector<std::string>{directory.path() + "/a", directory.path() + "/b"}));
    EXPECT_EQ(found.files, (std::vector<std::string>{".two", "one"}));
}

TEST(ScanDirectory, ALinkToADirectoryIsNone) {
    const TempDir directory;
    std::filesystem::create_directory_symlink(".", directory.path() + "/round");
    const Scanned found = scanned(0, directory.path());
    EXPECT_TRUE(found.directories.empty());
    EXPECT_EQ(found.files, std::vector<std::string>{"round"});
}

TEST(ScanDirectory, WhatCannotBeOpenedIsEmpty) {
    const TempDir directory;
    const Scanned found = scanned(0, directory.path() + "/missing");
    EXPECT_TRUE(found.directories.empty());
    EXPECT_TRUE(found.files.empty());
}

TEST(ScanDirectory, OnlyTheRootMayHaveAPathAsLongAsPathsGet) {
    const TempDir directory;
    static_cast<void>(directory.file("one", ""));
    std::string path = directory.path();
    path.append(iPathMax - path.size(), '/');
    EXPECT_EQ(scanned(0, path).files, std::vector<std::string>{"one"});
    EXPECT_TRUE(scanned(1, path).files.empty());
    path.pop_back();
    EXPECT_EQ(scanned(1, path).files, std::vector<std::string>{"one"});
}

} // namespace
} // namespace vantorel::test
