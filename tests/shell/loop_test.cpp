#include "shell/loop.h"

#include "base/message.h"
#include "hash/library.h"
#include "rom/store.h"
#include "shell/session.h"

#include <algorithm>

using namespace std::string_literals;

namespace vantorel::test {

namespace {

const std::string cPrompt = "VanCLI> ";
const std::string cTooLong = "ERROR, command buffer too small, ignoring input\n";

// A command line of `length` characters that prints what `echoed` gives.
std::string echoline(size_t length) { return "echo " + std::string(length - 5, 'x'); }
std::string echoed(size_t length) { return std::string(length - 5, 'x') + " \n"; }

class PromptLoop : public ShellTest {
protected:
    // What `countbuffer` makes of these bytes.
    static int32_t counted(const std::string& bytes) {
        ckBuffer.assign(iBufferSize, '\0');
        std::ranges::copy(bytes, ckBuffer.begin());
        return countbuffer();
    }
};

} // namespace

TEST_F(PromptLoop, EveryLineGetsAPrompt) {
    EXPECT_EQ(session("echo a\n\necho b\nexit\n"), cPrompt + "a \n" + cPrompt + cPrompt + "b \n" + cPrompt);
}

TEST_F(PromptLoop, TheEndOfTheInputEndsTheProgramInSilence) {
    EXPECT_EQ(session(""), cPrompt);
    EXPECT_EQ(session("echo a\n"), cPrompt + "a \n" + cPrompt);
}

TEST_F(PromptLoop, NothingBehindExitIsRead) { EXPECT_EQ(session("exit\necho a\n"), cPrompt); }

TEST_F(PromptLoop, ALineThatOnlyBeginsWithExitEndsTheProgramToo) {
    for (const char* line : {"exitnow", "exit now", "exit$X", "exit\"", "exit#"})
        EXPECT_EQ(session(std::string(line) + "\necho a\n"), cPrompt) << line;
}

TEST_F(PromptLoop, ExitIsOneSpellingAtTheStartOfTheLine) {
    for (const char* line : {"EXIT", "Exit", "exiT", " exit", "exi", "\"exit\"", "\texit", "ex it"})
        EXPECT_EQ(session(std::string(line) + "\necho a\n"), cPrompt + cUnknown + cPrompt + "a \n" + cPrompt)
            << line;
}

TEST_F(PromptLoop, AnAliasNeverStandsForExit) {
    EXPECT_EQ(session("alias bye exit\n$bye\necho a\n"),
              cPrompt + cPrompt + cUnknown + cPrompt + "a \n" + cPrompt);
}

TEST_F(PromptLoop, ExitPrintsNothingOfItsLine) {
    EXPECT_EQ(session("loglevel 9\nexit $X\n"), cPrompt + cPrompt);
}

TEST_F(PromptLoop, ALineOf510CharactersRuns) {
    EXPECT_EQ(session(echoline(510) + "\nexit\n"), cPrompt + echoed(510) + cPrompt);
}

TEST_F(PromptLoop, ALineOf511CharactersIsRejected) {
    EXPECT_EQ(session(echoline(511) + "\necho a\n"), cPrompt + cTooLong + cPrompt + "a \n" + cPrompt);
}

TEST_F(PromptLoop, TheRestOfALongLineIsNoCommand) {
    for (const size_t length : {511U, 512U, 1022U, 1533U, 100000U})
        EXPECT_EQ(session(std::string(length, ' ') + "echo a\necho b\n"),
                  cPrompt + cTooLong + cPrompt + "b \n" + cPrompt)
            << length;
}

TEST_F(PromptLoop, ALongLineThatBeginsWithExitDoesNotEndTheProgram) {
    EXPECT_EQ(session("exit" + std::string(507, ' ') + "\necho a\n"),
              cPrompt + cTooLong + cPrompt + "a \n" + cPrompt);
}

TEST_F(PromptLoop, ALongLineIsRejectedAtEveryLevel) {
    EXPECT_EQ(session("loglevel 0\n" + echoline(511) + "\n"), cPrompt + cPrompt + cTooLong + cPrompt);
}

TEST_F(PromptLoop, ExpansionMayMakeALineLongerThanTheBuffer) {
    std::string line = "echo ";
    std::string wanted;
    for (int i = 0; i < 100; ++i) {
        line += "$x";
        wanted += "0123456789";
    }
    EXPECT_EQ(session("alias x 0123456789\n" + line + "\n"), cPrompt + cPrompt + wanted + " \n" + cPrompt);
}

TEST_F(PromptLoop, ALastLineWithoutItsLineFeedIsRejected) {
    for (const std::string& line : {"echo a"s, "exit"s, echoline(600)})
        EXPECT_EQ(session(line), cPrompt + cTooLong + cPrompt) << line;
}

TEST_F(PromptLoop, ALineWithANulIsRejected) {
    EXPECT_EQ(session("echo a\0b\n"s), cPrompt + cTooLong + cPrompt);
    EXPECT_EQ(session("exit\0\n"s), cPrompt + cTooLong + cPrompt);
}

// The line feed of such a line was read with it, and input is discarded up to a line feed.
TEST_F(PromptLoop, TheLineBehindOneWithANulIsDiscarded) {
    EXPECT_EQ(session("echo a\0b\necho c\necho d\n"s), cPrompt + cTooLong + cPrompt + "d \n" + cPrompt);
}

TEST_F(PromptLoop, ALongLineWithANulIsDiscardedUpToItsEnd) {
    const std::string line = "echo \0"s + std::string(600, 'x');
    EXPECT_EQ(session(line + "\necho a\n"), cPrompt + cTooLong + cPrompt + "a \n" + cPrompt);
}

TEST_F(PromptLoop, ACarriageReturnIsAnOrdinaryCharacter) {
    EXPECT_EQ(session("echo a\r\n\r\n"), cPrompt + "a\r \n" + cPrompt + cUnknown + cPrompt);
}

TEST_F(PromptLoop, BytesAbove127AreOrdinaryCharacters) {
    EXPECT_EQ(session("echo \xFF\xC3\xA4\n\xFF\n"),
              cPrompt + "\xFF\xC3\xA4 \n" + cPrompt + cUnknown + cPrompt);
}

TEST_F(PromptLoop, ThePromptAppearsAtEveryLevel) {
    EXPECT_EQ(session("loglevel 0\necho a\n"), cPrompt + cPrompt + "\n" + cPrompt);
}

TEST_F(PromptLoop, TheHashLibraryIsLoadedAtTheStart) {
    directory.file("Vantorel Hashes/0x12345678", "[Description]\n");
    EXPECT_EQ(session("exit\n"), cPrompt);
    EXPECT_EQ(findhashfile("0x12345678"), "Vantorel Hashes/0x12345678");
}

TEST_F(PromptLoop, TheStartUpCommandIsALineLikeAnyOther) {
    iLogLevel = 2;
    EXPECT_EQ(session("exit\n"), "Parsed [loadhashes \"Vantorel Hashes\"]\n" + cPrompt);
}

TEST_F(PromptLoop, TheStatePersistsFromLineToLineAndBeyondTheEnd) {
    EXPECT_EQ(session("newrom 16\nromname kick\nloglevel 0\nexit\n"),
              cPrompt + cPrompt + "ROMName set to kick\n" + cPrompt + cPrompt);
    EXPECT_EQ(iMaxRom, 1);
    EXPECT_EQ(iLogLevel, 0);
}

TEST_F(PromptLoop, AnErrorNeverStopsIt) {
    EXPECT_EQ(session("nonsense\nloadrom missing\nromname x\nrom 7\nromname x\necho a\n"),
              cPrompt + cUnknown + cPrompt + "ERROR: can't open file [missing]\n" + cPrompt +
                  "ROMName set to x\n" + cPrompt + cPrompt + "ERROR, No current ROM\n" + cPrompt + "a \n" +
                  cPrompt);
}

TEST_F(PromptLoop, TheBufferHolds512Bytes) { EXPECT_EQ(iBufferSize, 512); }

TEST_F(PromptLoop, CountBufferMeasuresTheLineAndCutsItsLineFeedOff) {
    EXPECT_EQ(counted("abc\n"), 3);
    EXPECT_STREQ(ckBuffer.data(), "abc");
    EXPECT_EQ(counted("\n"), 0);
    EXPECT_EQ(counted("a\nb\n"), 1);
    EXPECT_EQ(counted(std::string(510, 'x') + "\n"), 510);
}

TEST_F(PromptLoop, CountBufferGivesTheBufferSizeForALineWithoutALineFeed) {
    EXPECT_EQ(counted("abc"), 512);
    EXPECT_EQ(counted(""), 512);
    EXPECT_EQ(counted("abc\0\n"s), 512);
    EXPECT_EQ(counted(std::string(511, 'x')), 512);
    EXPECT_EQ(counted(std::string(512, 'x')), 512);
}

} // namespace vantorel::test
