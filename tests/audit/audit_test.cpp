#include "audit/audit.h"
#include "base/message.h"
#include "base/text.h"
#include "support/capture.h"
#include "support/fresh.h"
#include "support/tempdir.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>

// The expected CRCs were computed with Python's zlib.crc32.

namespace vantorel::test {

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

class Audit : public FreshTest {
protected:
    void add(const std::string& name, std::string_view text = "") const { directory.file(name, text); }
    int32_t audit() const { return auditfiles(directory.path()); }

    [[nodiscard]] std::string path(const std::string& name) const { return directory.file(name); }

    TempDir directory;
};

Names filenames() {
    Names names;
    for (const auto& file : psAuditFilesFile)
        names.push_back(file.cName);
    return names;
}

Names directorypaths() {
    Names paths;
    for (const auto& directory : psAuditFilesDir)
        paths.push_back(directory.cPath);
    return paths;
}

std::string crcof(int32_t index) {
    AuditFileData record;
    EXPECT_EQ(getauditfile(index, record), 0);
    return record.cCRC;
}

/// The lines of an insertion of `paths` one by one into a sorted run that begins at position `start`.
std::string exchanges(const Names& paths, int start) {
    std::string lines;
    Names run;
    for (const auto& path : paths) {
        run.push_back(path);
        for (size_t at = run.size() - 1; at > 0; --at)
            if (run[at] < run[at - 1]) {
                const int position = start + static_cast<int>(at);
                lines += formatted("Swapping %d with %d\n", position, position - 1);
                std::swap(run[at], run[at - 1]);
            }
    }
    return lines;
}

/// The folders of `parent` in the order in which the system lists them.
Names listed(const std::string& parent) {
    Names paths;
    for (const auto& entry : fs::directory_iterator(parent))
        if (entry.is_directory()) paths.push_back(entry.path().string());
    return paths;
}

} // namespace

// What is scanned

TEST_F(Audit, FilesOfADirectoryAreSorted) {
    add("b");
    add("a");
    add("c");
    EXPECT_EQ(audit(), 4);
    EXPECT_EQ(filenames(), (Names{"a", "b", "c"}));
}

TEST_F(Audit, TheRunsOfTwoDirectoriesFollowEachOther) {
    for (const char* name : {"one/z", "one/a", "two/m", "two/b", "q"})
        add(name);
    EXPECT_EQ(audit(), 8);
    EXPECT_EQ(filenames(), (Names{"q", "a", "z", "b", "m"}));
    EXPECT_EQ(psAuditFilesFile[2].iDirectory, 1U);
    EXPECT_EQ(psAuditFilesFile[3].iDirectory, 2U);
}

TEST_F(Audit, DirectoriesAreBreadthFirstAndSorted) {
    for (const char* name : {"b/x/f", "b/w/f", "a/y/f", "c/f"})
        add(name);
    audit();
    EXPECT_EQ(directorypaths(), (Names{directory.path(), path("a"), path("b"), path("c"), path("a/y"),
                                       path("b/w"), path("b/x")}));
    EXPECT_EQ(psAuditFilesDir[0].iParent, 0U);
    EXPECT_EQ(psAuditFilesDir[4].iParent, 1U);
    EXPECT_EQ(psAuditFilesDir[6].iParent, 2U);
}

TEST_F(Audit, TheOrderIsThatOfUnsignedBytes) {
    for (const char* name : {"\xC3\xA4", "a", "B", "_", "a b"})
        add(name);
    audit();
    EXPECT_EQ(filenames(), (Names{"B", "_", "a", "a b", "\xC3\xA4"}));
}

TEST_F(Audit, TheHashLibraryIsLeftOutAtAnyDepth) {
    add("Vantorel Hashes/0x11111111");
    add("Vantorel Hashes/deep/0x22222222");
    add("roms/more/Vantorel Hashes/0x33333333");
    add("roms/kick.rom");
    audit();
    EXPECT_EQ(filenames(), Names{"kick.rom"});
    EXPECT_EQ(directorypaths(), (Names{directory.path(), path("Vantorel Hashes"), path("roms"),
                                       path("roms/more"), path("roms/more/Vantorel Hashes")}));
}

TEST_F(Audit, TheHashLibraryAsRootIsNotScanned) {
    add("Vantorel Hashes/0x11111111");
    EXPECT_EQ(auditfiles(path("Vantorel Hashes")), 1);
    EXPECT_EQ(psAuditFilesFile.size(), 0U);
}

TEST_F(Audit, OnlyTheExactNameIsTheHashLibrary) {
    add("vantorel hashes/a");
    add("Vantorel Hashes 2/b");
    add("more/Vantorel Hashes");
    audit();
    EXPECT_EQ(filenames(), (Names{"b", "Vantorel Hashes", "a"}));
}

TEST_F(Audit, HiddenDirectoriesAreLeftOutAndHiddenFilesAreNot) {
    add(".git/a");
    add(".hidden");
    EXPECT_EQ(audit(), 2);
    EXPECT_EQ(filenames(), Names{".hidden"});
}

TEST_F(Audit, LinksThatRunInCirclesEnd) {
    add("a/b/file");
    fs::create_directory_symlink(directory.path(), path("a/b/top"));
    fs::create_directory_symlink(".", path("a/self"));
    EXPECT_EQ(audit(), 6);
    EXPECT_EQ(filenames(), (Names{"self", "file", "top"}));
}

TEST_F(Audit, ADirectoryWhoseCutPathNamesItsParentDoesNotRunInCircles) {
    std::string parent = directory.path();
    while (parent.size() < 800)
        parent += "/" + std::string(100, 'd');
    parent += "/" + std::string(1022 - parent.size() - 1, 'e');
    fs::create_directories(parent + "/sub");
    audit();
    EXPECT_EQ(std::ranges::count(directorypaths(), parent + "/"), 1);
}

TEST_F(Audit, AMissingRootHasNoFiles) {
    EXPECT_EQ(captured([&] { EXPECT_EQ(auditfiles(path("missing")), 1); }), "");
    EXPECT_EQ(directorypaths(), Names{path("missing")});
    EXPECT_TRUE(psAuditFilesFile.empty());
}

TEST_F(Audit, ARootThatIsAFileHasNoFiles) {
    add("file");
    EXPECT_EQ(auditfiles(path("file")), 1);
    EXPECT_EQ(auditfiles(""), 1);
}

TEST_F(Audit, ASecondAuditReplacesTheFirst) {
    add("one/a");
    add("two/b");
    auditfiles(path("one"));
    EXPECT_EQ(auditfiles(path("two")), 2);
    EXPECT_EQ(filenames(), Names{"b"});
}

TEST_F(Audit, TheRootMayBeATextOfTheAuditItself) {
    add("a");
    audit();
    EXPECT_EQ(auditfiles(psAuditFilesDir[0].cPath), 2);
}

TEST_F(Audit, FreeingLeavesNothing) {
    add("a");
    audit();
    freeauditfiles();
    EXPECT_TRUE(psAuditFilesDir.empty());
    EXPECT_TRUE(psAuditFilesFile.empty());
    AuditFileData record;
    EXPECT_EQ(getauditfile(0, record), 1);
}

// What is told of a file

TEST_F(Audit, AFileIsHashedWhenFirstAskedFor) {
    add("digits", "123456789");
    add("sub/alpha", "alpha");
    audit();
    EXPECT_EQ(psAuditFilesFile[0].iCRC32, 0U);
    AuditFileData record;
    EXPECT_EQ(getauditfile(1, record), 0);
    EXPECT_EQ(record.iDirectory, 1U);
    EXPECT_EQ(record.cName, "alpha");
    EXPECT_EQ(record.cCRC, "0xd0e0396a");
    EXPECT_EQ(psAuditFilesFile[0].iCRC32, 0U) << "only the file asked for is hashed";
    EXPECT_EQ(psAuditFilesFile[1].iCRC32, 0xD0E0396AU);
    EXPECT_EQ(crcof(0), "0xcbf43926");
}

TEST_F(Audit, AHashedFileIsNotReadAgain) {
    add("file", "alpha");
    audit();
    EXPECT_EQ(crcof(0), "0xd0e0396a");
    add("file", "beta");
    EXPECT_EQ(crcof(0), "0xd0e0396a");
}

TEST_F(Audit, AFileWhoseCrcIsZeroIsReadAgain) {
    add("file", "\x9D\x0A\xD9\x6D");
    audit();
    EXPECT_EQ(crcof(0), "0x00000000");
    add("file", "beta");
    EXPECT_EQ(crcof(0), "0x8f910463");
}

TEST_F(Audit, AnIndexBeyondTheCountFillsNothing) {
    add("a");
    audit();
    AuditFileData record{7, "untouched", "untouched"};
    for (const int32_t index : {1, 2, 0x7FFFFFFF, -1})
        EXPECT_EQ(getauditfile(index, record), 1) << index;
    EXPECT_EQ(record.iDirectory, 7U);
    EXPECT_EQ(record.cName, "untouched");
    EXPECT_EQ(record.cCRC, "untouched");
}

TEST_F(Audit, ANameIsCutAt127Characters) {
    const std::string name(200, 'n');
    add(name, "alpha");
    audit();
    AuditFileData record;
    EXPECT_EQ(getauditfile(0, record), 0);
    EXPECT_EQ(record.cName, std::string(127, 'n'));
    EXPECT_EQ(record.cCRC, "0xd0e0396a");
}

TEST_F(Audit, AVanishedFileIsReportedAtEveryLevel) {
    add("file", "alpha");
    audit();
    fs::remove(path("file"));
    iLogLevel = 0;
    const std::string line = "ERROR: file " + path("file") + " failed to open\n";
    EXPECT_EQ(captured([] { EXPECT_EQ(crcof(0), "0x00000000"); }), line);
    EXPECT_EQ(captured([] { (void)crcof(0); }), line) << "it is tried again";
}

TEST_F(Audit, AFileThatCameBackIsHashed) {
    add("file", "alpha");
    audit();
    fs::remove(path("file"));
    (void)captured([] { (void)crcof(0); });
    add("file", "alpha");
    EXPECT_EQ(crcof(0), "0xd0e0396a");
}

TEST_F(Audit, ALinkToADirectoryFailsToOpen) {
    directory.folder("folder");
    fs::create_directory_symlink("folder", path("link"));
    audit();
    EXPECT_EQ(captured([] { EXPECT_EQ(crcof(0), "0x00000000"); }),
              "ERROR: file " + path("link") + " failed to open\n");
}

TEST_F(Audit, APipeDoesNotWait) {
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    audit();
    EXPECT_EQ(crcof(0), "0x00000000");
}

TEST_F(Audit, AFileThatEndsEarlyIsReported) {
    const std::string target = "/sys/kernel/mm/transparent_hugepage/enabled";
    if (!fs::exists(target)) GTEST_SKIP() << "no " << target;
    fs::create_symlink(target, path("short"));
    audit();
    EXPECT_EQ(captured([] { EXPECT_EQ(crcof(0), "0x00000000"); }),
              "ERROR: file " + path("short") + " could not be read in full\n");
}

// What is told of a directory

TEST_F(Audit, ADirectoryIsToldByItsBaseName) {
    add("roms/kick/a");
    audit();
    AuditDirData record;
    EXPECT_EQ(getauditdir(2, record), 0);
    EXPECT_EQ(record.iParent, 1U);
    EXPECT_EQ(record.cName, "kick");
    EXPECT_EQ(getauditdir(0, record), 0);
    EXPECT_EQ(record.iParent, 0U);
    EXPECT_EQ(record.cName, fs::path(directory.path()).filename());
}

TEST_F(Audit, ADirectoryBeyondTheCountFillsNothing) {
    audit();
    AuditDirData record{7, "untouched"};
    for (const int32_t index : {1, 0x7FFFFFFF, -1})
        EXPECT_EQ(getauditdir(index, record), 1) << index;
    EXPECT_EQ(record.iParent, 7U);
    EXPECT_EQ(record.cName, "untouched");
}

TEST_F(Audit, ADirectoryNameIsCutAt127Characters) {
    directory.folder(std::string(200, 'n'));
    audit();
    AuditDirData record;
    EXPECT_EQ(getauditdir(1, record), 0);
    EXPECT_EQ(record.cName, std::string(127, 'n'));
}

// What is said

TEST_F(Audit, NothingIsSaidAtLevel5) {
    add("b/file", "alpha");
    add("a/file", "alpha");
    iLogLevel = 5;
    EXPECT_EQ(captured([&] {
                  audit();
                  (void)crcof(0);
                  freeauditfiles();
              }),
              "");
}

TEST_F(Audit, TheScanTellsItsRootAndEachDirectory) {
    add("sub/file");
    const InDirectory inside("/");
    iLogLevel = 6;
    const std::string root = directory.path();
    EXPECT_EQ(captured([&] { audit(); }), "Auditing files at TLD [" + root +
                                              "]\n"
                                              "CWD=/\n"
                                              "Freeing all audit memory\n"
                                              "ADDING 0 : " +
                                              root +
                                              "\n"
                                              "ADDING 1 : " +
                                              path("sub") + "\n");
}

TEST_F(Audit, TheHashLibraryIsNotToldAsAdded) {
    add("Vantorel Hashes/file");
    iLogLevel = 6;
    EXPECT_EQ(captured([&] { audit(); }).find("ADDING 1"), std::string::npos);
}

TEST_F(Audit, ExchangesOfDirectoriesAreTold) {
    for (int i = 0; i < 20; ++i)
        directory.folder(formatted("%d", (i * 7) % 20));
    const Names found = listed(directory.path());
    iLogLevel = 6;
    const std::string said = captured([&] { audit(); });
    const std::string begin = "ADDING 0 : " + directory.path() + "\n";
    const size_t from = said.find(begin) + begin.size();
    EXPECT_EQ(said.substr(from, said.find("ADDING 1") - from), exchanges(found, 1));
    EXPECT_TRUE(std::ranges::is_sorted(directorypaths()));
}

TEST_F(Audit, TheOrderIsTheSameWhetherExchangesAreToldOrNot) {
    for (int i = 0; i < 20; ++i)
        directory.folder(formatted("%d/%d", (i * 7) % 20, i));
    audit();
    const Names silent = directorypaths();
    iLogLevel = 6;
    (void)captured([&] { audit(); });
    EXPECT_EQ(directorypaths(), silent);
}

TEST_F(Audit, ExchangesOfFilesAreNotTold) {
    for (int i = 0; i < 20; ++i)
        add(formatted("%d", (i * 7) % 20));
    iLogLevel = 6;
    EXPECT_EQ(captured([&] { audit(); }).find("Swapping"), std::string::npos);
}

TEST_F(Audit, HashingTellsThePathAndTheCrc) {
    add("file", "alpha");
    audit();
    iLogLevel = 6;
    EXPECT_EQ(captured([] { (void)crcof(0); }), "CRCing... " + path("file") +
                                                    " \n"
                                                    "CRC: 0xd0e0396a\n");
    EXPECT_EQ(captured([] { (void)crcof(0); }), "CRC: 0xd0e0396a\n");
}

TEST_F(Audit, ChattyTracesAreSilentAtLevel7) {
    add("file", "alpha");
    audit();
    iLogLevel = 7;
    const std::string said = captured([] { (void)crcof(0); });
    EXPECT_EQ(said.find("GETTING"), std::string::npos);
    EXPECT_EQ(said.find("Size"), std::string::npos);
}

TEST_F(Audit, ChattyTracesTellTheRecordAndTheSize) {
    add("sub/file", "alpha");
    audit();
    iLogLevel = 8;
    EXPECT_EQ(captured([] { (void)crcof(0); }), "GETTING File #0 [file] Parent=1\n"
                                                "CRCing... " +
                                                    path("sub/file") +
                                                    " \n"
                                                    "Size:5\n"
                                                    "CRC: 0xd0e0396a\n");
}

TEST_F(Audit, FreeingTellsWhatThereWas) {
    add("sub/a");
    add("sub/b");
    add("c");
    audit();
    iLogLevel = 6;
    EXPECT_EQ(captured([] { freeauditfiles(); }), "Freeing all audit memory\n"
                                                  "Freeing 2 audited Dirs\n"
                                                  "Freeing 3 audited files\n");
    EXPECT_EQ(captured([] { freeauditfiles(); }), "Freeing all audit memory\n");
}

} // namespace vantorel::test
