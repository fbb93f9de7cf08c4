// analyserom from end to end, character for character.

#include "rom/analyse.h"
#include "rom/listing.h"
#include "rom/romtest.h"

namespace vantorel::test {
namespace {

class AnalyseTest : public RomTest {
protected:
    // exec at 24 to 1048 with its tag at 28, 16 bytes of fill, dos at 1064 to 1576 with its tag at 1068.
    AnalyseTest() {
        RomBuilder builder(8192, 0xF80000);
        builder.module({.name = "exec.library", .idstring = "exec 40.10 (15.7.93)\r\n", .size = 1024});
        builder.gap(16).module({.name = "dos.library", .idstring = "dos 40.3 (1.4.93)\r\n", .size = 512});
        built = builder.build();
        crc = hex32(built.crc);
        sum = formatted("%08x", longat(built.image, 8168).value());
    }

    BuiltRom built;
    std::string crc;
    std::string sum;
};

TEST_F(AnalyseTest, TellsWhatItFinds) {
    loaded(built.image);
    EXPECT_EQ(at(1, [] { EXPECT_EQ(analyserom(0), 0); }),
              "Freeing psComponents [(nil)]\n"
              "Analyse  0 ROMBase:00000000 CRC32:" +
                  crc +
                  " (8192 of 8192/8k)\n"
                  "File size=002000, Ident=1114, Entry=00f800d2, Ver=40.68, ExecVer=40.10\n"
                  "ROMTAG (0x00f80000) found at 28, skipping to 1048\n"
                  "ROMTAG (0x00f80000) found at 1068, skipping to 1576\n"
                  "There are 2 ROMTAGs\n"
                  "IntSize=002000, Checksum=" +
                  sum + "/" + sum +
                  "\n"
                  "Extra component: Checksum\n"
                  "Extra component: Size\n"
                  "Extra component: Vectors\n"
                  "Please load additional ROMs or ROM components to compare with\n");
}

TEST_F(AnalyseTest, TellsItsStepsAtLevelTwo) {
    loaded(built.image);
    const std::string text = maskpointers(at(2, [] { analyserom(0); }));
    const std::string size = std::to_string(5 * sizeof(Component));
    EXPECT_EQ(text, "Freeing psComponents [*]\n"
                    "Analyse  0 ROMBase:00000000 CRC32:" +
                        crc +
                        " (8192 of 8192/8k)\n"
                        "File size=002000, Ident=1114, Entry=00f800d2, Ver=40.68, ExecVer=40.10\n"
                        "ROMTAG (0x00f80000) found at 28, skipping to 1048\n"
                        "ROMTAG (0x00f80000) found at 1068, skipping to 1576\n"
                        "There are 2 ROMTAGs\n"
                        "cChecksumData function Calculated=" +
                        sum + " Stored=" + sum +
                        " Size=8192 @*\n"
                        "Virtual component: Checksum\n"
                        "Virtual component: Size\n"
                        "IntSize=002000, Checksum=" +
                        sum + "/" + sum +
                        "\n"
                        "Virtual component: Vectors\n"
                        "Allocating space for 5 components (" +
                        size +
                        " bytes)\n"
                        "Extra component: Checksum\n"
                        "Extra component: Size\n"
                        "Extra component: Vectors\n"
                        "Please load additional ROMs or ROM components to compare with\n"
                        "Seeing if we can allocate the space between component 0 and 1\n"
                        "Seeing if we can allocate the space between component 1 and 2\n");
}

TEST_F(AnalyseTest, LeavesAMapThatRomLists) {
    loaded(built.image);
    silently([] { analyserom(0); });
    // exec: 1048 - 28 = 1020 bytes from its tag on; 8168 - 1576 = 6592 bytes are left behind dos.
    EXPECT_EQ(at(1, [] { rom(0); }),
              "ROM  0 ROMBase:00f80000 CRC32:" + crc +
                  " (8192 of 8192/8k)\n"
                  "Unnamed\n"
                  "-- (Unallocated) 28\n"
                  " 0 exec.library                        0?:28:1020?      0 0x00000000 Library:(null)\n"
                  "   exec 40.10 (15.7.93)\n"
                  "-- (Unallocated) 20\n"
                  " 1 dos.library                         0?:1068:508?       0 0x00000000 Library:(null)\n"
                  "   dos 40.3 (1.4.93)\n"
                  "-- (Unallocated) 6592\n"
                  " 2 Checksum                         8168:4         0 0x00000000 Checksum:0x" +
                  sum +
                  "\n"
                  " 3 Size                             8172:4         0 0x00000000 Size:0x00002000\n"
                  " 4 Vectors                          8176:16        0 0x00000000 "
                  "Vectors:0x00180019001a001b001c001d001e001f\n");
}

TEST_F(AnalyseTest, LeavesModulesThatAreListed) {
    loaded(built.image);
    silently([] { analyserom(0); });
    const std::string text = at(0, [] { modules(0); });
    // The tags stand at 28 = 0x1C and 1068 = 0x42C.
    EXPECT_EQ(text.substr(text.find("\n\n") + 2), "00001C exec 40.10 (15.7.93)\n00042C dos 40.3 (1.4.93)\n");
}

TEST_F(AnalyseTest, ForgetsTheFormerMap) {
    hashes.add(built);
    index();
    loaded(built.image);
    ASSERT_EQ(slotat(0).iComponents(), 6) << "header, modules, checksum, size, vectors";
    const std::string console = at(0, [] { analyserom(0); });
    EXPECT_TRUE(has(console, "Freeing component 5\n"));
    EXPECT_EQ(slotat(0).iComponents(), 5);
    EXPECT_EQ(componentat(0, 0).pcHash, std::nullopt);
    EXPECT_EQ(slotat(0).pcTitle, Text("Standard")) << "only the map goes";
}

TEST_F(AnalyseTest, TwiceGivesTheSameMap) {
    loaded(built.image);
    silently([] { analyserom(0); });
    const std::string listing = at(1, [] { rom(0); });
    silently([] { analyserom(0); });
    EXPECT_EQ(at(1, [] { rom(0); }), listing);
}

TEST_F(AnalyseTest, OfNoSlotDoesNothing) {
    EXPECT_EQ(at(10, [] { EXPECT_EQ(analyserom(0), 0); }), "");
    loaded(built.image);
    EXPECT_EQ(at(10,
                 [] {
                     for (const int32_t rom : {-1, 1, 20, 2147483647})
                         EXPECT_EQ(analyserom(rom), 0);
                 }),
              "");
}

TEST_F(AnalyseTest, OfFewerThan24UsedBytesIsRefusedWithOneLine) {
    for (int32_t size = 0; size <= 30; ++size) {
        freshstate();
        const Bytes image(static_cast<size_t>(size), 0x11);
        loaded(image);
        const std::string console = at(1, [] { EXPECT_EQ(analyserom(0), 0); });
        if (size < 24) {
            EXPECT_TRUE(console.starts_with("ERROR")) << size << ": " << console;
            EXPECT_EQ(countof(console, "\n"), 1);
            EXPECT_EQ(at(0, [] { analyserom(0); }), "");
        } else {
            EXPECT_TRUE(has(console, "There are 0 ROMTAGs\n")) << size;
        }
    }
}

TEST_F(AnalyseTest, FewUsedBytesInALargeSlotAreRefusedToo) {
    silently([] { newrom(524288, 0); });
    silently([] { loadromdata(0, Bytes(23, 0x11)); });
    EXPECT_TRUE(at(1, [] { analyserom(0); }).starts_with("ERROR"));
}

TEST_F(AnalyseTest, FindsTheStandardRomAgain) {
    for (const int32_t size : {262144, 524288, 1048576}) {
        freshstate();
        const BuiltRom standard = standardrom(size);
        loaded(standard.image);
        silently([] { analyserom(0); });
        EXPECT_EQ(slotat(0).iROMBase, standard.base);
        size_t next = 0;
        for (const BuiltModule& module : standard.modules) {
            if (module.tag < 0) continue;
            while (next < slotat(0).psComponents.size() && slotat(0).psComponents[next].iROMTag < 0)
                ++next;
            ASSERT_LT(next, slotat(0).psComponents.size());
            const Component& component = slotat(0).psComponents[next++];
            EXPECT_EQ(component.pcName, Text(module.name));
            EXPECT_EQ(component.pcLibString, Text(module.idstring));
            EXPECT_EQ(component.iROMTag, module.romtag());
            EXPECT_EQ(component.iEnd(), module.end());
        }
    }
}

} // namespace
} // namespace vantorel::test
