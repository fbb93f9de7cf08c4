// The paths of the files that are saved; the commands that set them have tests of their own.

#include "base/settings.h"

#include "support/fresh.h"

namespace vantorel::test {
namespace {

class SavePath : public FreshTest {};

TEST_F(SavePath, WithoutASaveDirectoryItIsTheName) {
    EXPECT_EQ(savepath("kick.rom"), "kick.rom");
    EXPECT_EQ(savepath("a/kick.rom"), "a/kick.rom");
}

TEST_F(SavePath, TheSaveDirectoryStandsBeforeTheName) {
    cSaveDir = "out/";
    EXPECT_EQ(savepath("kick.rom"), "out/kick.rom");
    EXPECT_EQ(savepath("/kick.rom"), "out//kick.rom");
}

TEST_F(SavePath, CharactersBeyondThe1023rdAreCutOff) {
    cSaveDir = std::string(1020, 'd') + "/";
    EXPECT_EQ(savepath("ab"), cSaveDir + "ab");
    EXPECT_EQ(savepath("abc"), cSaveDir + "ab");
}

} // namespace
} // namespace vantorel::test
