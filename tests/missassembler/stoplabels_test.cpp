// The stops of the one-pass listing: their order, and when they come and go.

#include "missassembler/labels.h"

#include "missassembler/bounds.h"
#include "missassembler/misstest.h"
#include "missassembler/start.h"

namespace vantorel::test {
namespace {

class StopLabels : public RomTest {
protected:
    // The texts of the stops in the order in which the listing takes them.
    static std::string order() {
        std::string texts;
        for (const StopLabel& label : sLabels)
            texts += label.cLabel;
        return texts;
    }
};

TEST_F(StopLabels, TheLowestAddressComesFirst) {
    for (const uint32_t address : {0xF80004U, 0xF80000U, 0xF80008U, 0x10U, 0xFFFFFFFFU, 0xF80002U})
        addlabel(0, address, hex32(address) + " ");
    EXPECT_EQ(order(), "0x00000010 0x00f80000 0x00f80002 0x00f80004 0x00f80008 0xffffffff ");
}

TEST_F(StopLabels, AtOneAddressTheFirstAddedComesFirst) {
    addlabel(0, 8, "d");
    addlabel(0, 4, "a");
    addlabel(0, 8, "e");
    addlabel(0, 4, "b");
    addlabel(0, 8, "f");
    addlabel(0, 4, "c");
    EXPECT_EQ(order(), "abcdef");
}

TEST_F(StopLabels, TextsAreCopiedWhole) {
    std::string text = "lA label, 50% of it:\n";
    addlabel(0, 4, text);
    text = "changed";
    addlabel(0, 6, "");
    addlabel(0, 8, "H" + std::string(300, 'x'));
    EXPECT_EQ(order(), "lA label, 50% of it:\nH" + std::string(300, 'x'));
    EXPECT_EQ(sLabels.size(), 3U);
}

TEST_F(StopLabels, EachAddressIsShownToTheBounds) {
    iMissMin = 0x2000;
    iMissMax = 0x3000;
    iMissMinLimit = 0x1000;
    iMissMaxLimit = 0x4000;
    addlabel(0, 0x3456, "l");
    addlabel(0, 0x1234, "l");
    addlabel(0, 0x4001, "l");
    addlabel(0, 0x0FFF, "l");
    EXPECT_EQ(iMissMin, 0x1234U);
    EXPECT_EQ(iMissMax, 0x3456U);
    EXPECT_EQ(sLabels.size(), 4U) << "those beyond the limits are stops all the same";
}

TEST_F(StopLabels, TheTraceTellsAddressAndText) {
    const auto add = [] { addlabel(0, 0xF8ABCD, "sNAME:\n"); };
    EXPECT_EQ(at(6, add), "ADDLABEL @00f8abcd:sNAME:\n\n");
    EXPECT_EQ(at(6, [] { addlabel(0, 0, "x%d"); }), "ADDLABEL @00000000:x%d\n");
    expectthresholds([] {}, add, {{5, "ADDLABEL @00f8abcd:sNAME:\n\n"}});
}

TEST_F(StopLabels, FreeingThemLeavesTheRecordsOfTheWalk) {
    addlabel(0, 4, "a");
    addmisslabel("walk", 4, 'W', 1);
    freestoplabels();
    EXPECT_TRUE(sLabels.empty());
    EXPECT_EQ(psLabels.size(), 1U);
}

TEST_F(StopLabels, EveryListingBeginsWithoutAny) {
    installtable("[mnemonics]\n0000000000000000=X\n\n");
    addlabel(0, 4, "a");
    EXPECT_EQ(initmissassembler(), 0);
    EXPECT_TRUE(sLabels.empty());
}

TEST_F(StopLabels, AStartThatFailsLeavesThem) {
    addlabel(0, 4, "a");
    silently([] { EXPECT_EQ(initmissassembler(), 1); });
    installtable("[other]\n1=X\n");
    silently([] { EXPECT_EQ(initmissassembler(), 1); });
    EXPECT_EQ(order(), "a");
}

} // namespace
} // namespace vantorel::test
