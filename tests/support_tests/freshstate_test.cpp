#include "support/fresh.h"

#include "base/message.h"
#include "base/settings.h"
#include "hash/library.h"
#include "rom/store.h"
#include "shell/alias.h"
#include "support/capture.h"
#include "support/tempdir.h"

namespace vantorel::test {
namespace {

TEST(FreshState, ForgetsEverythingInSilence) {
    TempDir dir;
    dir.file("0x12345678", "[Description]\n");
    Capture quiet;
    iLogLevel = 0;
    iCurrentROM = newrom(16, 0);
    loadhashes(dir.path());
    alias("name", "value");
    cSaveDir = "somewhere/";
    (void)quiet.text();
    EXPECT_EQ(captured(freshstate), "");
    EXPECT_EQ(iMaxRom, 0);
    EXPECT_EQ(iCurrentROM, -1);
    EXPECT_TRUE(psVanHashFile.empty());
    EXPECT_TRUE(pcAliasname.empty());
    EXPECT_EQ(cSaveDir, "");
    EXPECT_EQ(iLogLevel, 1);
}

} // namespace
} // namespace vantorel::test
