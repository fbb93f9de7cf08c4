// Components of an analysed image recognised by the hash library.

#include "rom/analyse.h"
#include "rom/romtest.h"

#include <filesystem>

namespace vantorel::test {
namespace {

constexpr const char* kKey = "exec_40.10_(15.7.93)";

class LibraryMatchTest : public RomTest {
protected:
    // exec at 124 with its tag at 128; a second ROM stands by, since an analysis compares only then.
    BuiltRom built =
        RomBuilder(8192, 0xF80000)
            .gap(100)
            .module({.name = "exec.library", .idstring = "exec 40.10 (15.7.93)\r\n", .size = 1024})
            .build();
    BuiltModule exec = built.modules[0];

    void load() const {
        index();
        loaded(built.image);
        silently([] { newrom(64, 0); });
    }

    // Analyses slot 0 and gives what was said from the hash-library step on.
    static std::string analyse(int32_t level = 2) {
        const std::string text = at(level, [] { analyserom(0); });
        const size_t start = text.find("Match any unknown components by hash alone\n");
        return start != std::string::npos ? text.substr(start) : "";
    }

    // A file that describes exec under another CRC32.
    std::string impostor(const std::string& crc) const {
        return hashes.write(crc + "." + kKey, componenthash(exec));
    }

    std::string relocs() const { return std::to_string(exec.relocs.size()); }
};

TEST_F(LibraryMatchTest, TheComponentTakesWhatTheFileTells) {
    const std::string name = hashes.component(exec);
    load();
    analyse();
    const Component& component = componentat(0, 0);
    EXPECT_EQ(component.iStart, 124);
    EXPECT_EQ(component.iSize, 1024);
    EXPECT_EQ(component.iROMTag, 128);
    EXPECT_EQ(component.ipRelocs, exec.relocs);
    EXPECT_EQ(component.pcHash, Text(name));
    EXPECT_EQ(component.pcExtract, exec.extract);
    EXPECT_EQ(component.iCRC32, exec.extractcrc);
}

TEST_F(LibraryMatchTest, TheConsoleOfAMatch) {
    hashes.component(exec);
    load();
    EXPECT_EQ(analyse(), "Match any unknown components by hash alone\n"
                         "Checking component 0 exec 40.10 (15.7.93) (exec_40.10_(15.7.93))\n"
                         "Start=124 Size=1024\n"
                         "Relocs=" +
                             relocs() +
                             " in section 2 starts at line=13\n"
                             "[MATCH] We will keep this\n"
                             "Skipping complete component 1 Checksum\n"
                             "Skipping complete component 2 Size\n"
                             "Skipping complete component 3 Vectors\n"
                             "Seeing if we can allocate the space between component 0 and 1\n");
}

TEST_F(LibraryMatchTest, AnotherNameIsDiscardedAndBothAreShown) {
    const std::string other = impostor("0x12345678");
    load();
    EXPECT_TRUE(
        has(analyse(), "[NOMATCH] We will discard this\n\"" + exec.hash() + "\" != \"" + other + "\"\n"));
    EXPECT_EQ(componentat(0, 0).iStart, 128);
    EXPECT_EQ(componentat(0, 0).pcHash, std::nullopt);
    EXPECT_EQ(componentat(0, 0).iRelocs(), 0);
    EXPECT_EQ(componentat(0, 0).pcExtract, std::nullopt);
}

TEST_F(LibraryMatchTest, OneOtherByteIsDiscarded) {
    hashes.component(exec);
    built.image[static_cast<size_t>(exec.end()) - 3] ^= 0x20;
    load();
    EXPECT_TRUE(has(analyse(), "[NOMATCH] We will discard this\n"));
}

TEST_F(LibraryMatchTest, ACandidateThatDoesNotFitIsIgnored) {
    for (const int32_t size : {8192 - 124 + 1, 2147483647, -1}) {
        freshstate();
        BuiltModule large = exec;
        large.size = size;
        hashes.component(large);
        load();
        EXPECT_TRUE(has(analyse(), "Start=124 Size=" + std::to_string(size) + "\nRelocs=" + relocs() +
                                       " in section 2 starts at line=13\n[WONTFIT] We will ignore this\n"));
        EXPECT_EQ(componentat(0, 0).pcHash, std::nullopt);
    }
}

TEST_F(LibraryMatchTest, ACandidateThatBeginsBeforeTheImageIsIgnored) {
    BuiltModule early = exec;
    early.tag = 129;
    hashes.component(early);
    load();
    EXPECT_TRUE(has(analyse(), "Start=-1 Size=1024\n"));
    EXPECT_TRUE(has(analyse(), "[WONTFIT] We will ignore this\n"));
}

TEST_F(LibraryMatchTest, ADanglingLinkCannotBeOpened) {
    const std::string name = std::string("0x12345678.") + kKey;
    std::filesystem::create_symlink("nowhere", hashes.path() + "/" + name);
    load();
    EXPECT_TRUE(has(analyse(1), "ERROR: Couldn't open hash file " + hashes.path() + "/" + name + "\n"));
}

TEST_F(LibraryMatchTest, AFileOfAFolderIsOpenedThere) {
    const HashBuilder deep(hashes.path() + "/lib/exec");
    deep.component(exec);
    load();
    EXPECT_TRUE(has(analyse(), "[MATCH] We will keep this\n"));
}

TEST_F(LibraryMatchTest, CandidatesAreTriedInIndexOrderUpToTheFirstMatch) {
    const uint32_t top = exec.loadablecrc >> 24;
    ASSERT_TRUE(top > 0 && top < 0xFF) << "the order of this test";
    const std::string first = impostor("0x00000000");
    const std::string right = hashes.component(exec);
    const std::string last = impostor("0xffffffff");
    load();
    const std::string text = analyse(6);
    ASSERT_TRUE(has(text, "[CANDIDATE] " + first + "\n"));
    ASSERT_TRUE(has(text, "[CANDIDATE] " + right + "\n"));
    EXPECT_FALSE(has(text, last)) << "nothing is looked at behind the match";
    EXPECT_LT(text.find("[CANDIDATE] " + first), text.find("[NOMATCH]"));
    EXPECT_LT(text.find("[NOMATCH]"), text.find("[CANDIDATE] " + right));
    EXPECT_LT(text.find("[CANDIDATE] " + right), text.find("[MATCH]"));
}

TEST_F(LibraryMatchTest, EveryFileLookedAtIsTraced) {
    hashes.write("0x01.other", "");
    hashes.write("0x02.prefixed." + std::string(kKey) + ".old", "");
    load();
    const std::string text = analyse(6);
    EXPECT_TRUE(has(text, "Checking 0 0x01.other\nChecking 1 0x02.prefixed." + std::string(kKey) +
                              ".old\n[CANDIDATE] 0x02.prefixed." + kKey + ".old\n"));
}

TEST_F(LibraryMatchTest, TheKeyHeedsCase) {
    hashes.write("0x12345678.EXEC_40.10_(15.7.93)", componenthash(exec));
    load();
    EXPECT_FALSE(has(analyse(6), "[CANDIDATE]"));
}

TEST_F(LibraryMatchTest, BlanksAndSlashesOfTheKeyAreUnderscores) {
    built =
        RomBuilder(8192, 0xF80000).module({.name = "x", .idstring = "a b/c\\d  e\r\n", .size = 512}).build();
    hashes.component(built.modules[0]);
    load();
    const std::string text = analyse();
    EXPECT_TRUE(has(text, "Checking component 0 a b/c\\d  e (a_b_c_d__e)\n")) << text;
    EXPECT_TRUE(has(text, "[MATCH] We will keep this\n"));
}

TEST_F(LibraryMatchTest, AnEmptyFileDescribesNothing) {
    hashes.write(std::string("0x12345678.") + kKey, "");
    load();
    // No Size, no ROMTAG, no relocs: no bytes at the tag.
    EXPECT_TRUE(has(analyse(), "Start=128 Size=0\n[NOMATCH] We will discard this\n"));
}

TEST_F(LibraryMatchTest, RelocsOutsideTheComponentAreDropped) {
    BuiltModule damaged = exec;
    damaged.relocs.insert(damaged.relocs.end(), {1021, 1024, 2147483647});
    ASSERT_EQ(damaged.hash(), exec.hash());
    hashes.component(damaged);
    load();
    const std::string text = analyse(1);
    for (const char* reloc : {"1021", "1024", "2147483647"})
        EXPECT_TRUE(has(text, "ERROR: Reloc " + std::string(reloc) + " is outside its component\n")) << text;
    EXPECT_EQ(componentat(0, 0).ipRelocs, exec.relocs);
}

TEST_F(LibraryMatchTest, ComponentsInsideTheMatchedOneAreDeleted) {
    built = RomBuilder(8192, 0xF80000)
                .module({.name = "exec.library", .idstring = "exec 40.10 (15.7.93)\r\n", .size = 1024})
                .module({.name = "dos.library", .idstring = "dos 40.3\r\n", .size = 512})
                .build();
    exec = built.modules[0];
    // Both as one, without relocs: the bytes as they stand.
    BuiltModule one = exec;
    one.size += 512;
    one.relocs.clear();
    one.extract = Bytes(built.image.begin() + one.start, built.image.begin() + one.end());
    one.loadablecrc = crc32of(loadableform(one.extract, {}, "Library"));
    hashes.component(one);
    load();
    EXPECT_TRUE(has(analyse(), "[MATCH] We will keep this\n"
                               "Deleting redundant/hidden component\n"
                               "Next component [dos.library] should be deleted\n"
                               "Skipping complete component 1 Checksum\n"));
    EXPECT_EQ(slotat(0).iComponents(), 4);
}

TEST_F(LibraryMatchTest, OneRomAloneIsNotCompared) {
    hashes.component(exec);
    index();
    loaded(built.image);
    EXPECT_EQ(analyse(), "");
    EXPECT_EQ(componentat(0, 0).pcHash, std::nullopt);
}

TEST_F(LibraryMatchTest, ALibraryThatMatchesGivesItsGapToItsNeighbour) {
    built = RomBuilder(8192, 0xF80000)
                .module({.name = "exec.library", .idstring = "exec 40.10 (15.7.93)\r\n", .size = 1024})
                .gap(32)
                .module({.name = "dos.library", .idstring = "dos 40.3\r\n", .size = 512})
                .build();
    exec = built.modules[0];
    hashes.component(exec);
    load();
    analyse();
    // exec ends at 1048; dos was found at its tag, 4 bytes behind its start at 1080.
    EXPECT_EQ(componentat(0, 1).iStart, 1048);
    EXPECT_EQ(componentat(0, 1).iFixedStart, 1048);
    EXPECT_EQ(componentat(0, 1).iROMTag, 1084);
    EXPECT_EQ(componentat(0, 1).iEnd(), built.modules[1].end());
}

TEST_F(LibraryMatchTest, MessagesHaveTheirThresholds) {
    impostor("0x00000000");
    hashes.write(std::string("0x01000000.") + kKey, "[Description]\nSize=99999\n");
    const std::string dangling = std::string("0x02000000.") + kKey;
    std::filesystem::create_symlink("nowhere", hashes.path() + "/" + dangling);
    const std::string right = hashes.component(exec);
    expectthresholds([&] { load(); }, [] { analyserom(0); },
                     {{0, "Match any unknown components by hash alone\n"},
                      {1, "Checking component 0 exec 40.10 (15.7.93) "},
                      {1, "(exec_40.10_(15.7.93))\n"},
                      {5, "Checking 0 0x00000000.exec_40.10_(15.7.93)\n"},
                      {5, "[CANDIDATE] " + right + "\n"},
                      {0, "ERROR: Couldn't open hash file " + hashes.path() + "/" + dangling + "\n"},
                      {1, "Start=124 Size=1024\n"},
                      {1, "Relocs=" + relocs() + " in section 2 starts at line=13\n"},
                      {1, "[MATCH] We will keep this\n"},
                      {1, "[NOMATCH] We will discard this\n"},
                      {1, "\"" + right + "\" != \"0x00000000." + kKey + "\"\n"},
                      {1, "[WONTFIT] We will ignore this\n"},
                      {1, "Skipping complete component 1 Checksum\n"}});
}

TEST_F(LibraryMatchTest, MoreTrialsThanRealLibrariesNeedAreLeftOff) {
    // Each claims the whole megabyte, so that a few hundred are too much.
    built = RomBuilder(1048576, 0xF80000)
                .module({.name = "exec.library", .idstring = "exec 40.10 (15.7.93)\r\n", .size = 1024})
                .build();
    const std::string claim =
        "[Description]\nSize=1048576\nROMTAG=" + std::to_string(built.modules[0].romtag()) + "\n";
    for (int i = 0; i < 260; ++i)
        hashes.write(hex32(static_cast<uint32_t>(i) * 0x01000000u + 1) + "." + kKey + std::to_string(i),
                     claim);
    load();
    const std::string error = "ERROR: There is too much to try in the hash library, leaving off\n";
    EXPECT_EQ(countof(analyse(1), error), 1);
    EXPECT_FALSE(has(at(0, [] { analyserom(0); }), "ERROR"));
}

} // namespace
} // namespace vantorel::test
