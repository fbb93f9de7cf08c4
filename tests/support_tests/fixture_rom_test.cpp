#include "support/fixture_rom.h"

#include <gtest/gtest.h>

namespace vantorel::test {
namespace {

FixtureRom made(std::vector<std::string> arguments) { return fixturerom(arguments, false); }

TEST(FixtureNumber, TakesDecimalHexadecimalAndSuffixes) {
    EXPECT_EQ(fixturenumber("512k"), 524288);
    EXPECT_EQ(fixturenumber("1m"), 1048576);
    EXPECT_EQ(fixturenumber("0xF80000"), 0xF80000);
    EXPECT_EQ(fixturenumber("-5"), -5);
    EXPECT_EQ(fixturenumber("0xFFFFFFFF"), -1);
    for (const char* wrong : {"", "k", "12x", "0x", "--1", "99999999999"})
        EXPECT_THROW((void)fixturenumber(wrong), UsageError) << wrong;
}

TEST(FixtureRom, MakesWhatTheBuilderMakes) {
    RomBuilder builder(262144, 0xFC0000);
    builder.header({.version = 34})
        .module({.name = "a.library",
                 .idstring = "a 1.0, (1.1.93)\r\n",
                 .size = 512,
                 .priority = -5,
                 .init = Init::Auto16,
                 .initstruct = libraryinit(),
                 .calls = 1,
                 .pointers = {{.module = "b", .offset = 16}}});
    builder.gap(16).data({.name = "b", .size = 64});
    const FixtureRom order =
        made({"--size", "256k", "--version", "34", "--module",
              "name=a.library,id=a 1.0, (1.1.93),size=512,priority=-5,init=auto16,"
              "initstruct=library,calls=1,pointer=b:0x10",
              "--gap", "16", "--data", "name=b,size=64", "--hashes", "dir", "--title", "T"});
    EXPECT_EQ(order.rom.image, builder.build().image);
    EXPECT_EQ(order.hashes, "dir");
    EXPECT_EQ(order.text.title, "T");
}

TEST(FixtureRom, LeavesOtherArguments) {
    std::vector<std::string> arguments = {"out", "--base", "0xA00000", "--split", "more"};
    EXPECT_EQ(fixturerom(arguments, true).rom.image, standardrom(524288, 0xA00000).image);
    EXPECT_EQ(arguments, (std::vector<std::string>{"out", "more"}));
}

TEST(FixtureRom, RefusesWhatItDoesNotKnow) {
    EXPECT_THROW((void)made({"--module", "colour=red"}), UsageError);
    EXPECT_THROW((void)made({"--module", "red"}), UsageError);
    EXPECT_THROW((void)made({"--module"}), UsageError);
    EXPECT_THROW((void)made({"--size"}), UsageError);
    EXPECT_THROW((void)made({"--module", "name=a,init=never"}), UsageError);
}

} // namespace
} // namespace vantorel::test
