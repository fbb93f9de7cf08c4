#include "base/message.h"
#include "base/text.h"
#include "hash/crc32.h"
#include "hash/ini.h"
#include "hash/library.h"
#include "support/capture.h"
#include "support/fresh.h"
#include "support/tempdir.h"

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <set>
#include <string>
#include <sys/stat.h>

namespace vantorel::test {

namespace fs = std::filesystem;

namespace {

class Library : public FreshTest {
protected:
    void add(const std::string& name) const { directory.file(name, "[Description]\n"); }
    void load() const { loadhashes(directory.path()); }

    [[nodiscard]] std::string path(const std::string& name) const { return directory.file(name); }

    TempDir directory;
};

size_t bucketsfilled() {
    return static_cast<size_t>(std::ranges::count_if(iIndexSize, [](int32_t size) { return size != 0; }));
}

int32_t countof(size_t bucket) { return iIndexSize[bucket]; }

/// A folder, made below `parent`, whose path has `length` characters.
std::string folderoflength(std::string parent, size_t length) {
    while (length - parent.size() > 200)
        parent += "/" + std::string(100, 'd');
    parent += "/" + std::string(length - parent.size() - 1, 'e');
    fs::create_directories(parent);
    return parent;
}

} // namespace

// What is found

TEST_F(Library, BeforeAnyLoadEveryLookupIsEmpty) {
    EXPECT_EQ(findhashfile("0x12345678"), "");
    EXPECT_EQ(findhashfile("missassemble.ini"), "");
    EXPECT_EQ(findhashfile(""), "");
}

TEST_F(Library, AfterFreeEveryLookupIsEmpty) {
    add("0x12345678");
    add("missassemble.ini");
    load();
    freehashes();
    EXPECT_EQ(findhashfile("0x12345678"), "");
    EXPECT_EQ(findhashfile("missassemble.ini"), "");
    EXPECT_TRUE(pcVanHashDir.empty());
    EXPECT_TRUE(psVanHashFile.empty());
}

TEST_F(Library, ANullNameIsFoundNowhere) {
    add("file");
    load();
    EXPECT_EQ(findhashfile(nullptr), "");
}

TEST_F(Library, AFileIsFoundByItsName) {
    add("0x12345678");
    load();
    EXPECT_EQ(findhashfile("0x12345678"), path("0x12345678"));
    EXPECT_EQ(findhashfile("0x12345679"), "");
}

TEST_F(Library, AFileInASubdirectoryIsFoundWithItsPath) {
    add("ROMs/Kickstart/0xFE345678");
    load();
    EXPECT_EQ(findhashfile("0xfe345678"), path("ROMs/Kickstart/0xFE345678"));
}

TEST_F(Library, ANameWithoutACrcIsLookedForInBucketZeroOnly) {
    add("missassemble.ini");
    add("0x00345678");
    add("0x12345678");
    load();
    EXPECT_EQ(findhashfile("missassemble.ini"), path("missassemble.ini"));
    EXPECT_EQ(findhashfile("0x00345678"), path("0x00345678"));
    EXPECT_EQ(countof(0), 2);
    EXPECT_EQ(countof(0x12), 1);
}

TEST_F(Library, ABareZeroXFindsAFileWhoseCrcBeginsWithTheByteZero) {
    add("0x12345678");
    add("0x00345678");
    load();
    EXPECT_EQ(findhashfile("0x"), path("0x00345678"));
}

TEST_F(Library, AnUpperCaseXPutsAFileIntoBucketZero) {
    add("0X12345678");
    load();
    EXPECT_EQ(countof(0), 1);
    EXPECT_EQ(findhashfile("0x12345678"), "");
    EXPECT_EQ(findhashfile("0X12345678"), path("0X12345678"));
}

TEST_F(Library, AnUpperCaseXIsFoundByALowerCaseOneInBucketZero) {
    add("0X00345678");
    load();
    EXPECT_EQ(findhashfile("0x00345678"), path("0X00345678"));
}

TEST_F(Library, HexDigitsOfEitherCaseMatch) {
    add("0xABCDEF01");
    add("0xfedcba98");
    load();
    EXPECT_EQ(findhashfile("0xabcdef01"), path("0xABCDEF01"));
    EXPECT_EQ(findhashfile("0xFEDCBA98"), path("0xfedcba98"));
    EXPECT_EQ(countof(0xAB), 1);
    EXPECT_EQ(countof(0xFE), 1);
}

TEST_F(Library, TwoDigitsFindTheFirstFileOfTheirBucket) {
    add("deeper/0xAB000001");
    add("0xAB000002");
    add("0xAC000000");
    load();
    EXPECT_EQ(findhashfile("0xab"), path("0xAB000002"));
}

TEST_F(Library, OneDigitIsTheUpperHalfOfTheBucket) {
    add("0xA0000001");
    add("0xAB000001");
    load();
    EXPECT_EQ(findhashfile("0xA"), path("0xA0000001"));
}

TEST_F(Library, AnEmptyNameFindsTheFirstFileOfBucketZero) {
    add("0x12345678");
    add("misshints.ini");
    load();
    EXPECT_EQ(findhashfile(""), path("misshints.ini"));
}

TEST_F(Library, DigitsThatAreNoneCountAsZero) {
    add("0xzz345678");
    add("0x1");
    add("0xg5");
    load();
    EXPECT_EQ(countof(0x00), 1);
    EXPECT_EQ(countof(0x10), 1);
    EXPECT_EQ(countof(0x05), 1);
    EXPECT_EQ(findhashfile("0x1"), path("0x1"));
}

TEST_F(Library, ANameMayCarryAnySuffix) {
    add("0x12345678 Kickstart 3.1.txt");
    load();
    EXPECT_EQ(findhashfile("0x12345678"), path("0x12345678 Kickstart 3.1.txt"));
    EXPECT_EQ(findhashfile("0x12345678 kick"), path("0x12345678 Kickstart 3.1.txt"));
}

TEST_F(Library, OfTwoFilesTheOneInTheDirectoryScannedFirstWins) {
    add("deep/deeper/0x12345678");
    add("other/0x12345678.txt");
    load();
    EXPECT_EQ(findhashfile("0x12345678"), path("other/0x12345678.txt"));
}

TEST_F(Library, TheResultIsOverwrittenByTheNextCall) {
    add("0x11111111");
    add("0x22222222");
    load();
    const std::string& first = findhashfile("0x11111111");
    const std::string& second = findhashfile("0x22222222");
    EXPECT_EQ(&first, &second);
    EXPECT_EQ(first, path("0x22222222"));
}

TEST_F(Library, TheNameMayBeTheFormerResult) {
    add("0x11111111");
    load();
    const std::string& result = findhashfile("0x11111111");
    EXPECT_EQ(findhashfile(result.c_str()), "");
}

TEST_F(Library, WhatIsFoundCanBeLoadedAndWhatIsNotCannot) {
    directory.file("0x11111111", "[Description]\nTitle=Kick\n");
    load();
    EXPECT_TRUE(loadinifile(findhashfile("0x11111111")));
    EXPECT_FALSE(loadinifile(findhashfile("0x22222222")));
}

TEST_F(Library, FilesAddedAfterTheScanAreNotSeenUntilTheNext) {
    load();
    add("0x12345678");
    EXPECT_EQ(findhashfile("0x12345678"), "");
    load();
    EXPECT_EQ(findhashfile("0x12345678"), path("0x12345678"));
}

TEST_F(Library, ARelativeRootGivesRelativePaths) {
    add("Hashes/0x12345678");
    const InDirectory inside(directory);
    loadhashes("Hashes");
    EXPECT_EQ(findhashfile("0x12345678"), "Hashes/0x12345678");
}

// What is scanned

TEST_F(Library, HiddenDirectoriesAreNotScanned) {
    add(".git/0x12345678");
    load();
    EXPECT_EQ(findhashfile("0x12345678"), "");
    EXPECT_EQ(pcVanHashDir.size(), 1U);
}

TEST_F(Library, HiddenFilesAreInBucketZero) {
    add(".hidden");
    load();
    EXPECT_EQ(findhashfile(".hidden"), path(".hidden"));
    EXPECT_EQ(countof(0), 1);
}

TEST_F(Library, LinksAndPipesAreFiles) {
    directory.folder("folder");
    fs::create_symlink("folder", path("link"));
    fs::create_symlink("nowhere", path("dangling"));
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    load();
    EXPECT_EQ(psVanHashFile.size(), 3U);
    EXPECT_EQ(pcVanHashDir.size(), 2U);
}

TEST_F(Library, LinksThatRunInCirclesEnd) {
    add("a/b/0x12345678");
    fs::create_directory_symlink(directory.path(), path("a/b/top"));
    fs::create_directory_symlink(".", path("a/self"));
    load();
    EXPECT_EQ(pcVanHashDir.size(), 3U);
    EXPECT_EQ(psVanHashFile.size(), 3U);
}

TEST_F(Library, AMissingRootIsAnEmptyIndex) {
    const std::string said = captured([&] { loadhashes(path("missing")); });
    EXPECT_EQ(said, "");
    EXPECT_EQ(pcVanHashDir, std::vector<std::string>{path("missing")});
    EXPECT_TRUE(psVanHashFile.empty());
    EXPECT_EQ(findhashfile("0x12345678"), "");
}

TEST_F(Library, ARootThatIsAFileIsAnEmptyIndex) {
    add("0x12345678");
    loadhashes(path("0x12345678"));
    EXPECT_TRUE(psVanHashFile.empty());
    loadhashes("");
    EXPECT_TRUE(psVanHashFile.empty());
}

TEST_F(Library, ASecondLoadReplacesTheFirst) {
    add("one/0x11111111");
    add("two/0x22222222");
    loadhashes(path("one"));
    loadhashes(path("two"));
    EXPECT_EQ(findhashfile("0x11111111"), "");
    EXPECT_EQ(findhashfile("0x22222222"), path("two/0x22222222"));
    EXPECT_EQ(bucketsfilled(), 1U);
}

TEST_F(Library, TheRootMayBeATextOfTheIndexItself) {
    add("0x11111111");
    load();
    loadhashes(pcVanHashDir[0]);
    EXPECT_EQ(findhashfile("0x11111111"), path("0x11111111"));
}

TEST_F(Library, DirectoriesAreListedBreadthFirst) {
    add("a/b/c/0x1");
    add("d/0x2");
    load();
    ASSERT_EQ(pcVanHashDir.size(), 5U);
    EXPECT_EQ(pcVanHashDir[0], directory.path());
    EXPECT_EQ((std::set<std::string>{pcVanHashDir[1], pcVanHashDir[2]}),
              (std::set<std::string>{path("a"), path("d")}));
    EXPECT_EQ(pcVanHashDir[3], path("a/b"));
    EXPECT_EQ(pcVanHashDir[4], path("a/b/c"));
}

TEST_F(Library, FilesAreOrderedByBucketAndWithinOneAsFound) {
    for (uint32_t i = 0; i < 600; ++i)
        add(formatted("sub%u/0x%08x", i % 3, i * 2654435761U));
    load();
    ASSERT_EQ(psVanHashFile.size(), 600U);
    EXPECT_EQ(std::accumulate(iIndexSize.begin(), iIndexSize.end(), 0), 600);
    int32_t position = 0;
    for (size_t bucket = 0; bucket < 256; ++bucket) {
        ASSERT_EQ(iIndexPos[bucket], position);
        uint32_t former = 0;
        for (const int32_t end = position + iIndexSize[bucket]; position < end; ++position) {
            const auto& file = psVanHashFile[static_cast<size_t>(position)];
            EXPECT_EQ(file.cName.substr(2, 2), formatted("%02x", static_cast<unsigned>(bucket)));
            EXPECT_GE(file.iDirectory, former) << "the scan's order is lost";
            former = file.iDirectory;
        }
    }
}

TEST_F(Library, EveryEntryHasThePathOfItsFile) {
    add("a/0x12345678");
    add("b/c/readme");
    load();
    std::set<std::string> paths;
    for (const auto& file : psVanHashFile)
        paths.insert(hashfilepath(file));
    EXPECT_EQ(paths, (std::set<std::string>{path("a/0x12345678"), path("b/c/readme")}));
}

TEST_F(Library, ADirectoryWhoseCutPathNamesItsParentDoesNotRunInCircles) {
    const std::string parent = folderoflength(directory.path(), 1022);
    fs::create_directory(parent + "/sub");
    directory.file(parent.substr(directory.path().size() + 1) + "/f", "");
    load();
    EXPECT_EQ(std::ranges::count(pcVanHashDir, parent + "/"), 1);
    EXPECT_EQ(psVanHashFile.size(), 1U);
    EXPECT_EQ(findhashfile("f"), parent + "/");
}

TEST_F(Library, ADirectoryOfTheLongestPathDoesNotRunInCircles) {
    const std::string longest = folderoflength(directory.path(), 1023);
    fs::create_directory(longest + "/sub");
    load();
    EXPECT_EQ(std::ranges::count(pcVanHashDir, longest), 1);
}

TEST_F(Library, ARootLongerThanAnyPathEnds) {
    const std::string root = folderoflength(directory.path(), 1500);
    fs::create_directories(root + "/sub/sub");
    loadhashes(root);
    EXPECT_EQ(pcVanHashDir.size(), 2U);
}

TEST_F(Library, ATreeOfManyLevelsIsScanned) {
    std::string name;
    for (int depth = 0; depth < 400; ++depth)
        name += "d/";
    add(name + "0x12345678");
    load();
    EXPECT_EQ(pcVanHashDir.size(), 401U);
    EXPECT_EQ(findhashfile("0x12345678"), path(name + "0x12345678"));
}

// What is said

TEST_F(Library, NothingIsSaidAtLevel5) {
    add("sub/0x12345678");
    iLogLevel = 5;
    EXPECT_EQ(captured([&] {
                  load();
                  (void)findhashfile("0x12345678");
                  freehashes();
              }),
              "");
}

TEST_F(Library, LoadingTellsEachDirectory) {
    add("sub/0x12345678");
    iLogLevel = 6;
    EXPECT_EQ(captured([&] { load(); }), "Freeing all hash file memory\n"
                                         "ADDING 0 : " +
                                             directory.path() +
                                             "\n"
                                             "ADDING 1 : " +
                                             path("sub") + "\n");
}

TEST_F(Library, ALookupTellsWhatItTries) {
    add("0xAB000001");
    add("sub/0xAB000002");
    add("sub/0x12345678");
    load();
    iLogLevel = 6;
    EXPECT_EQ(captured([] { (void)findhashfile("0xab000002"); }), "Finding 0xab000002 from 3 entries\n"
                                                                  "Checking 1 0xAB000001\n"
                                                                  "Checking 2 0xAB000002\n"
                                                                  "found " +
                                                                      path("sub/0xAB000002") +
                                                                      " returning...\n");
}

TEST_F(Library, ALookupInVainTellsWhatItTried) {
    add("readme");
    load();
    iLogLevel = 6;
    EXPECT_EQ(captured([] { (void)findhashfile("0x00000001"); }), "Finding 0x00000001 from 1 entries\n"
                                                                  "Checking 0 readme\n");
    EXPECT_EQ(captured([] { (void)findhashfile("0x10000001"); }), "Finding 0x10000001 from 1 entries\n");
}

TEST_F(Library, FreeingTellsWhatThereWas) {
    add("a/0x1");
    add("a/0x2");
    load();
    iLogLevel = 6;
    EXPECT_EQ(captured([] { freehashes(); }), "Freeing all hash file memory\n"
                                              "Freeing 2 hash dirs\n"
                                              "Freeing 2 hash files\n");
}

TEST_F(Library, FreeingAnEmptyIndexSaysItsFirstLine) {
    iLogLevel = 6;
    EXPECT_EQ(captured([] { freehashes(); }), "Freeing all hash file memory\n");
}

} // namespace vantorel::test
