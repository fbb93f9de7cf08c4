// Files that hold several ROMs.

#include "rom/container.h"
#include "rom/load.h"
#include "rom/romtest.h"

namespace vantorel::test {
namespace {

using namespace std::string_literals;

// Said of every slot whose image no hash file knows.
constexpr const char* kUnknown = "Unable to find hash\n";

class ContainerTest : public RomTest {
protected:
    // Four different images in a file, each behind 100 bytes of nothing.
    ContainerTest() {
        for (int32_t number = 0; number < 4; ++number) {
            const int32_t size = 4096 << number;
            const int32_t offset = file.empty() ? 100 : static_cast<int32_t>(file.size()) + 100;
            images.push_back(RomBuilder(size, 0xF80000).fill(static_cast<uint8_t>(number)).build().image);
            places.push_back({.key = "", .offset = offset, .size = size});
            file = joined(file, container({{100, images.back()}}));
        }
    }

    [[nodiscard]] Range range(const std::string& key, size_t number) const {
        return {key, places[number].offset, places[number].size};
    }

    std::string load(const ContainerText& text, int32_t level = 1) const {
        ContainerText plain = text;
        plain.format = "Plain";
        hashes.container(file, plain);
        return loadknown(level);
    }

    // With these lines as [Components].
    std::string loadlines(const std::string& filetype, const std::string& lines, int32_t level = 1) const {
        hashes.write(hex32(crc32of(file)),
                     "[Description]\nFormat=Plain\nFileType=" + filetype + "\n[Components]\n" + lines);
        return loadknown(level);
    }

    std::string loadknown(int32_t level) const {
        index();
        dir.file("container", file);
        silently([] { newrom(0, 0); });
        return at(level, [&] { loadrom(dir.file("container"), 0); });
    }

    std::vector<Bytes> images;
    std::vector<Range> places;
    Bytes file;
};

TEST_F(ContainerTest, KickstartAndExtendedLoadTheWholeFile) {
    for (const char* type : {"Kickstart", "Extended"}) {
        freshstate();
        EXPECT_EQ(load({.filetype = type}), "WARNING: No ROMBase\n")
            << "its own hash file is that of the slot";
        EXPECT_EQ(slotat(0).pcROM, file);
        EXPECT_EQ(iMaxRom, 1);
    }
}

TEST_F(ContainerTest, AMissingFileTypeLoadsTheWholeFile) {
    EXPECT_EQ(load({}), "Undefined FileType, loading " + std::to_string(file.size()) +
                            " of raw data\nWARNING: No ROMBase\n");
    EXPECT_EQ(slotat(0).pcROM, file);
}

TEST_F(ContainerTest, KickItAndKickstartDisksHoldOneRom) {
    for (const char* type : {"KickItKickstart", "Kickstart-Disk"}) {
        freshstate();
        EXPECT_EQ(load({.filetype = type, .ranges = {range("Kickstart", 1), range("Bonus", 2)}}), kUnknown);
        EXPECT_EQ(iMaxRom, 1);
        EXPECT_EQ(slotat(0).pcROM, images[1]);
        EXPECT_EQ(slotat(0).iCRC32, crc32of(images[1]));
    }
}

TEST_F(ContainerTest, ASuperKickstartFillsFourSlots) {
    const std::string text = load(
        {.filetype = "SuperKickstart",
         .ranges = {range("Bonus2", 3), range("Kickstart2", 2), range("Bonus1", 1), range("Kickstart1", 0)}},
        1);
    EXPECT_EQ(text, kUnknown + ""s + kUnknown + kUnknown + kUnknown) << "no messages of its own";
    ASSERT_EQ(iMaxRom, 4);
    for (size_t number = 0; number < 4; ++number) {
        EXPECT_EQ(slotat(static_cast<int32_t>(number)).pcROM, images[number])
            << "whatever the order of the lines";
        EXPECT_EQ(slotat(static_cast<int32_t>(number)).pcTitle, Text("Unnamed"));
    }
}

TEST_F(ContainerTest, MissingKeysOfASuperKickstartAreSkipped) {
    load({.filetype = "SuperKickstart", .ranges = {range("Kickstart1", 0), range("Bonus2", 3)}});
    ASSERT_EQ(iMaxRom, 2);
    EXPECT_EQ(slotat(0).pcROM, images[0]);
    EXPECT_EQ(slotat(1).pcROM, images[3]);
}

TEST_F(ContainerTest, WithoutItsFirstKeyTheSlotStaysEmpty) {
    load({.filetype = "SuperKickstart", .ranges = {range("Kickstart2", 2)}});
    ASSERT_EQ(iMaxRom, 2);
    EXPECT_EQ(slotat(0).iSize(), 0);
    EXPECT_EQ(slotat(1).pcROM, images[2]);
}

TEST_F(ContainerTest, ExtendedKickstartFillsTwoSlots) {
    load({.filetype = "Extended/Kickstart", .ranges = {range("Extended", 2), range("Kickstart", 0)}});
    ASSERT_EQ(iMaxRom, 2);
    EXPECT_EQ(slotat(0).pcROM, images[0]);
    EXPECT_EQ(slotat(1).pcROM, images[2]);
}

TEST_F(ContainerTest, KickstartBonusFillsTwoSlots) {
    load({.filetype = "Kickstart/Bonus", .ranges = {range("Kickstart", 1), range("Bonus", 3)}});
    ASSERT_EQ(iMaxRom, 2);
    EXPECT_EQ(slotat(0).pcROM, images[1]);
    EXPECT_EQ(slotat(1).pcROM, images[3]);
}

TEST_F(ContainerTest, WithoutAnyKeyNothingIsLoaded) {
    for (const char* type :
         {"KickItKickstart", "Kickstart-Disk", "SuperKickstart", "Extended/Kickstart", "Kickstart/Bonus"}) {
        freshstate();
        EXPECT_EQ(load({.filetype = type}, 1), "") << type;
        EXPECT_EQ(iMaxRom, 1);
        EXPECT_EQ(slotat(0).iSize(), 0);
    }
}

TEST_F(ContainerTest, NewSlotsAreNotMadeCurrent) {
    iCurrentROM = 0;
    load({.filetype = "Kickstart/Bonus", .ranges = {range("Kickstart", 1), range("Bonus", 3)}});
    EXPECT_EQ(iCurrentROM, 0);
}

TEST_F(ContainerTest, NewSlotsHaveTheLengthOfTheirRangeAndAreFilledWithFF) {
    // The range is an image burnt twice: its slot keeps the length, and the rest of it the fill.
    const Bytes small = standardrom(262144).image;
    file = container({{0, images[0]}, {8192, overburnt(small)}});
    EXPECT_EQ(
        load({.filetype = "Kickstart/Bonus", .ranges = {{"Kickstart", 0, 4096}, {"Bonus", 8192, 524288}}}),
        kUnknown + "Overburnt 256k ROM, loading the first half\n"s + kUnknown);
    EXPECT_EQ(slotat(1).iSize(), 524288);
    EXPECT_EQ(slotat(1).iUsed, 262144);
    EXPECT_EQ(slotat(1).pcROM, joined(small, Bytes(262144, 0xFF)));
}

TEST_F(ContainerTest, PartsAreIdentifiedByTheirOwnHashFiles) {
    const BuiltRom rom = RomBuilder(4096, 0xF80000).fill(0).build();
    ASSERT_EQ(rom.image, images[0]);
    hashes.add(rom, {.title = "Inner"});
    load({.filetype = "KickItKickstart", .ranges = {range("Kickstart", 0)}});
    EXPECT_EQ(slotat(0).pcTitle, Text("Inner"));
}

TEST_F(ContainerTest, ExpansionRomsAreNotLoaded) {
    EXPECT_EQ(load({.filetype = "Expansion"}), "Device - dunno how to handle that yet\n");
    EXPECT_EQ(slotat(0).iSize(), 0);
}

TEST_F(ContainerTest, OtherTypesAreNotLoaded) {
    for (const char* type : {"Device", "kickstart", "Kickstart ", "KICKSTART", "Loadable Library",
                             "Library Archive", "Kickstart-disk", "superkickstart"}) {
        freshstate();
        EXPECT_EQ(load({.filetype = type}), "Unknown FileType ["s + type + "]\n");
        EXPECT_EQ(slotat(0).iSize(), 0);
        EXPECT_EQ(iMaxRom, 1);
    }
    EXPECT_EQ(loadlines("", ""), "Unknown FileType []\n");
}

TEST_F(ContainerTest, MessagesHaveTheirThresholds) {
    const auto expect = [&](const std::string& type, const std::string& lines,
                            const std::vector<Shown>& shown) {
        hashes.write(hex32(crc32of(file)), "[Description]\nFormat=Plain\n" + type + "[Components]\n" + lines);
        dir.file("container", file);
        expectthresholds(
            [&] {
                index();
                newrom(0, 0);
            },
            [&] { loadrom(dir.file("container"), 0); }, shown);
    };
    const std::string ranges = "Kickstart=100,24\nExtended=200,32 bytes\nBonus=0,9999999\n";
    expect("FileType=KickItKickstart\n", ranges, {{5, "KICK: from 100 to 24 [24]\n"}});
    expect("FileType=Kickstart-Disk\n", ranges, {{5, "KICK: from 100 to 24 [24]\n"}});
    expect("FileType=Extended/Kickstart\n", ranges,
           {{5, "KICK: from 100 to 24 [24]\n"}, {5, "EXTENDED: from 200 to 32 [32 bytes]\n"}});
    expect("FileType=Kickstart/Bonus\n", ranges,
           {{5, "KICK: from 100 to 24 [24]\n"},
            {5, "BONUS: from 0 to 9999999 [9999999]\n"},
            {0, "ERROR, Bonus range 0,9999999 is outside the file\n"}});
    expect("FileType=Expansion\n", "", {{0, "Device - dunno how to handle that yet\n"}});
    expect("FileType=Device\n", "", {{0, "Unknown FileType [Device]\n"}});
    expect("", "", {{0, "Undefined FileType, loading " + std::to_string(file.size()) + " of raw data\n"}});
}

TEST_F(ContainerTest, ARangeOutsideTheFileIsLeftOutAndTheRestGoesOn) {
    const auto size = static_cast<int32_t>(file.size());
    const std::vector<std::pair<std::string, std::string>> ranges = {
        {"0," + std::to_string(size + 1), "0," + std::to_string(size + 1)},
        {std::to_string(size) + ",1", std::to_string(size) + ",1"},
        {"-1,8", "-1,8"},
        {"8,-1", "8,-1"},
        {"2147483647,2147483647", "2147483647,2147483647"},
        {"99999999999,8", "2147483647,8"},
        {"-99999999999,-99999999999", "-2147483648,-2147483648"},
    };
    for (const auto& [written, told] : ranges) {
        freshstate();
        EXPECT_EQ(loadlines("SuperKickstart",
                            "Kickstart1=" + written + "\nBonus1=" + written + "\nKickstart2=100,64\n"),
                  "ERROR, Kickstart1 range " + told + " is outside the file\nERROR, Bonus1 range " + told +
                      " is outside the file\n" + kUnknown);
        ASSERT_EQ(iMaxRom, 2) << "no slot for what is left out";
        EXPECT_EQ(slotat(0).iSize(), 0);
        EXPECT_EQ(slotat(1).pcROM, Bytes(file.begin() + 100, file.begin() + 164));
    }
}

TEST_F(ContainerTest, ARangeMayEndWithTheFile) {
    const auto size = static_cast<int32_t>(file.size());
    loadlines("KickItKickstart", "Kickstart=" + std::to_string(size - 64) + ",64\n");
    EXPECT_EQ(slotat(0).pcROM, Bytes(file.end() - 64, file.end()));
}

TEST_F(ContainerTest, AValueWithoutACommaLoadsNothing) {
    const std::string text = loadlines("KickItKickstart", "Kickstart=100\n", 6);
    EXPECT_TRUE(has(text, "ERROR, Kickstart range 100 has no size\n"));
    EXPECT_FALSE(has(text, "KICK:"));
    EXPECT_EQ(slotat(0).iUsed, 0);
}

TEST_F(ContainerTest, TheLengthIsWhatFollowsTheFirstComma) {
    const std::string text = loadlines("KickItKickstart", "kickstart=100, 64,32\n", 6);
    EXPECT_TRUE(has(text, "KICK: from 100 to 64 [ 64,32]\n"));
    EXPECT_EQ(slotat(0).iUsed, 64);
}

TEST_F(ContainerTest, WithAllSlotsInUseTheFurtherPartsAreLeftOut) {
    silently([] {
        for (int i = 0; i < 20; ++i)
            newrom(16, static_cast<uint8_t>(i));
    });
    hashes.container(file, {.filetype = "SuperKickstart",
                            .format = "Plain",
                            .ranges = {range("Kickstart1", 0), range("Bonus1", 1), range("Bonus2", 2)}});
    index();
    dir.file("container", file);
    EXPECT_EQ(at(1, [&] { loadrom(dir.file("container"), 5); }),
              kUnknown + "Sorry, 20 ROMs maximum\nNo such ROM\nSorry, 20 ROMs maximum\nNo such ROM\n"s);
    EXPECT_EQ(slotat(5).pcROM, images[0]);
    EXPECT_EQ(slotat(19).pcROM, Bytes(16, 19));
}

TEST_F(ContainerTest, ContainersCutAtEveryLengthOfTheirHashFileAreSurvived) {
    const std::string whole = containerhash({.filetype = "SuperKickstart",
                                             .format = "Plain",
                                             .ranges = {range("Kickstart1", 0), range("Bonus1", 1)}});
    const std::string name = hashes.write(hex32(crc32of(file)), whole);
    dir.file("container", file);
    for (size_t length = 0; length <= whole.size(); ++length) {
        hashes.write(name, whole.substr(0, length));
        freshstate();
        index();
        silently([&] { loadrom(dir.file("container"), newrom(0, 0)); });
        ASSERT_GE(iMaxRom, 1);
    }
    EXPECT_EQ(iMaxRom, 2);
    EXPECT_EQ(slotat(1).pcROM, images[1]);
}

} // namespace
} // namespace vantorel::test
