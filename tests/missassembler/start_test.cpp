// What every listing and search begins with: the table is loaded once, the label tables are emptied.

#include "missassembler/start.h"

#include "missassembler/labels.h"
#include "missassembler/misstest.h"

#include <filesystem>

namespace vantorel::test {
namespace {

class StartTest : public RomTest {
protected:
    static constexpr const char* cTwoLines = "[mnemonics]\n0100111001110001=NOP\n0100111001110101=RTS\n";

    // Makes the table file, which the library then knows.
    void writetable(const std::string& text) const {
        static_cast<void>(hashes.write("missassemble.ini", text));
        index();
    }

    // What starting prints at verbosity 2, and what it returns.
    static std::string started(int expected) {
        return at(2, [&] { EXPECT_EQ(initmissassembler(), expected); });
    }

    static void addlabels() {
        silently([] {
            addmisslabel("walk", 4, MissType::cNone, 1);
            addlabel(0, 0xF80000, "Sstop");
        });
    }

    static void expectlabels(int count) {
        EXPECT_EQ(psLabels.size(), static_cast<size_t>(count));
        EXPECT_EQ(iMissLabelCnt, count);
        EXPECT_EQ(sLabels.size(), static_cast<size_t>(count));
    }
};

TEST_F(StartTest, MessagesHaveTheirThresholds) {
    const Action start = [] { static_cast<void>(initmissassembler()); };
    expectthresholds([] {}, start, {{0, "No missassembler file\n"}});
    expectthresholds([&] { writetable("[s22]\n1=B\n"); }, start, {{1, "No mnemonics\n"}});
    expectthresholds([&] { writetable(cTwoLines); }, start, {{1, "2 mnemonics loaded\n"}});
    expectthresholds(
        [&] {
            writetable(cTwoLines);
            static_cast<void>(initmissassembler());
        },
        start, {{1, "2 mnemonics already loaded\n"}});
}

TEST_F(StartTest, ATableIsLoadedOnce) {
    writetable(cTwoLines);
    EXPECT_EQ(started(0), "2 mnemonics loaded\n");
    writetable("[mnemonics]\n0100111001110001=NOP\n");
    EXPECT_EQ(started(0), "2 mnemonics already loaded\n");
    silently([] { freehashes(); });
    std::filesystem::remove(hashes.path() + "/missassemble.ini");
    EXPECT_EQ(started(0), "2 mnemonics already loaded\n");
    EXPECT_EQ(sMnemonic.names().find(0x4E75)->text, "RTS");
}

TEST_F(StartTest, TheCountIsThatOfTheLinesRead) {
    writetable("[mnemonics]\n0100111001110001=NOP\n\n0100111001110101=RTS\n\n");
    EXPECT_EQ(started(0), "1 mnemonics loaded\n");
    EXPECT_EQ(started(0), "1 mnemonics already loaded\n");
}

TEST_F(StartTest, AFileThatIsNotThereIsLookedForEachTime) {
    index();
    EXPECT_EQ(started(1), "No missassembler file\n");
    EXPECT_EQ(started(1), "No missassembler file\n");
    writetable(cTwoLines);
    EXPECT_EQ(started(0), "2 mnemonics loaded\n");
}

TEST_F(StartTest, AFileThatCannotBeReadIsNone) {
    writetable(cTwoLines);
    std::filesystem::remove(hashes.path() + "/missassemble.ini");
    EXPECT_EQ(started(1), "No missassembler file\n") << "the library's index still has its name";
}

TEST_F(StartTest, AFileOutsideTheLibraryIsNotFound) {
    const InDirectory inside(dir);
    static_cast<void>(dir.file("missassemble.ini", cTwoLines));
    index();
    EXPECT_EQ(started(1), "No missassembler file\n");
}

TEST_F(StartTest, TheFileMayLieAnywhereInTheLibrary) {
    static_cast<void>(dir.file("hashes/tools/deep/MissAssemble.INI", cTwoLines));
    index();
    EXPECT_EQ(started(0), "2 mnemonics loaded\n");
}

TEST_F(StartTest, AFileWithoutTheSectionIsKeptAllTheSame) {
    writetable("[s22]\n1=B\n");
    EXPECT_EQ(started(1), "No mnemonics\n");
    writetable(cTwoLines);
    EXPECT_EQ(started(1), "No mnemonics\n") << "the file was loaded before";
    EXPECT_EQ(sMnemonic.names().iMnemonicCnt(), 0);
}

TEST_F(StartTest, ASectionWithoutAnEntryIsLoadedEachTime) {
    writetable("[mnemonics]\n\n0100111001110001=NOP\n");
    addlabels();
    EXPECT_EQ(started(0), "0 mnemonics loaded\n");
    expectlabels(0);
    EXPECT_EQ(started(0), "0 mnemonics loaded\n");
}

TEST_F(StartTest, LabelsAreEmptiedEachTimeThatItIsReady) {
    writetable(cTwoLines);
    for (int i = 0; i < 2; ++i) {
        addlabels();
        expectlabels(1);
        static_cast<void>(started(0));
        expectlabels(0);
    }
}

TEST_F(StartTest, LabelsStayWhenThereIsNoTable) {
    index();
    addlabels();
    EXPECT_EQ(started(1), "No missassembler file\n");
    expectlabels(1);
    writetable("[s22]\n1=B\n");
    EXPECT_EQ(started(1), "No mnemonics\n");
    expectlabels(1);
}

} // namespace
} // namespace vantorel::test
