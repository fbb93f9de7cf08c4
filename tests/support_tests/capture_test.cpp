#include "support/capture.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <unistd.h>

namespace vantorel::test {
namespace {

TEST(Capture, CatchesStdioAndTheDescriptorInOrder) {
    Capture capture;
    printf("one ");
    fflush(stdout);
    ASSERT_EQ(write(STDOUT_FILENO, "two ", 4), 4);
    printf("three");
    EXPECT_EQ(capture.text(), "one two three");
}

TEST(Capture, KeepsNulsAndEndsWithTheFirstText) {
    Capture outer;
    {
        Capture inner;
        fwrite("a\0b", 1, 3, stdout);
        EXPECT_EQ(inner.text(), std::string("a\0b", 3));
        printf("later");
        EXPECT_EQ(inner.text(), std::string("a\0b", 3));
    }
    EXPECT_EQ(outer.text(), "later");
}

TEST(Capture, HoldsMoreThanAPipeWould) {
    EXPECT_EQ(captured([] {
                  for (int i = 0; i < 300000; ++i)
                      putchar('x');
              }),
              std::string(300000, 'x'));
}

} // namespace
} // namespace vantorel::test
