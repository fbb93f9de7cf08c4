#include "hash/filerange.h"

#include "rom/romtest.h"

namespace vantorel::test {

namespace {

class FileRanges : public FreshTest {};

/// What asking for a range of a file of `size` bytes says; empty when the range lies inside.
std::string refusal(int32_t start, int32_t size, size_t filesize) {
    const Bytes file(filesize);
    return captured([&] {
        const bool isgood = requirerange("Bonus1", {start, size, ""}, file);
        if (!isgood) message(kResult, "no\n");
    });
}

std::string outside(const std::string& numbers) {
    return "ERROR, Bonus1 range " + numbers + " is outside the file\nno\n";
}

} // namespace

TEST_F(FileRanges, HaveStartAndSizeAndKeepWhatFollows) {
    struct Text {
        const char* value;
        int32_t start;
        int32_t size;
        const char* sizetext;
    };
    for (const Text& row : {Text{"512,262144", 512, 262144, "262144"},
                            Text{" +7 bytes, -8 more,9", 7, -8, " -8 more,9"}, Text{",", 0, 0, ""}}) {
        const auto range = readrange("Kickstart", row.value);
        ASSERT_TRUE(range) << row.value;
        EXPECT_EQ(range->start, row.start);
        EXPECT_EQ(range->size, row.size);
        EXPECT_STREQ(range->sizetext, row.sizetext);
    }
}

TEST_F(FileRanges, WithoutACommaIsNone) {
    const std::string text = captured([] { EXPECT_FALSE(readrange("Kickstart", "512")); });
    EXPECT_TRUE(text.starts_with("ERROR")) << text;
    EXPECT_TRUE(has(text, "Kickstart")) << text;
    EXPECT_EQ(countof(text, "\n"), 1) << text;
}

TEST_F(FileRanges, InsideTheFileIsAdmitted) {
    EXPECT_EQ(refusal(0, 0, 0), "");
    EXPECT_EQ(refusal(0, 10, 10), "");
    EXPECT_EQ(refusal(10, 0, 10), "");
    EXPECT_EQ(refusal(9, 1, 10), "");
}

TEST_F(FileRanges, OutsideTheFileIsRefusedWithItsNumbers) {
    EXPECT_EQ(refusal(0, 11, 10), outside("0,11"));
    EXPECT_EQ(refusal(10, 1, 10), outside("10,1"));
    EXPECT_EQ(refusal(11, 0, 10), outside("11,0"));
    EXPECT_EQ(refusal(-1, 2, 10), outside("-1,2"));
    EXPECT_EQ(refusal(5, -1, 10), outside("5,-1"));
    EXPECT_EQ(refusal(2147483647, 2147483647, 10), outside("2147483647,2147483647"));
    EXPECT_EQ(refusal(-2147483647 - 1, -2147483647 - 1, 10), outside("-2147483648,-2147483648"));
}

TEST_F(FileRanges, RefusalsAreToldAboveLevelZero) {
    const Bytes file(10);
    const FileRange range{0, 11, "11"};
    expectthresholds([] {}, [&] { static_cast<void>(requirerange("Bonus", range, file)); },
                     {{kResult, "ERROR, Bonus range 0,11 is outside the file\n"}});
    expectthresholds([] {}, [] { static_cast<void>(readrange("Bonus", "512")); }, {{kResult, "ERROR"}});
}

} // namespace vantorel::test
