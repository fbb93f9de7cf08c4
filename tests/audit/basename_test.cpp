#include "audit/basename.h"

#include <gtest/gtest.h>

namespace vantorel::test {

TEST(Basename, IsTheTextBehindTheLastSlash) { EXPECT_STREQ(mBasename("roms/kick/a1200.rom"), "a1200.rom"); }

TEST(Basename, IsTheTextBehindTheLastBackslash) {
    EXPECT_STREQ(mBasename("C:\\roms\\a1200.rom"), "a1200.rom");
}

TEST(Basename, TakesWhicheverSeparatorComesLast) {
    EXPECT_STREQ(mBasename("roms/kick\\a1200.rom"), "a1200.rom");
    EXPECT_STREQ(mBasename("roms\\kick/a1200.rom"), "a1200.rom");
}

TEST(Basename, OfABareNameIsTheWholeName) {
    const char* name = "a1200.rom";
    EXPECT_EQ(mBasename(name), name);
    EXPECT_STREQ(mBasename(""), "");
}

TEST(Basename, BehindATrailingSeparatorIsEmpty) {
    EXPECT_STREQ(mBasename("roms/"), "");
    EXPECT_STREQ(mBasename("roms\\"), "");
    EXPECT_STREQ(mBasename("/"), "");
}

} // namespace vantorel::test
