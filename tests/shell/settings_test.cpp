#include "base/settings.h"

#include "base/message.h"
#include "shell/commands.h"
#include "shell/loop.h"
#include "shell/session.h"
#include "support/capture.h"

#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace vantorel::test {

namespace {

class LogFileCommand : public ShellTest {};
class SaveDirCommand : public ShellTest {};
class LogLevelCommand : public ShellTest {};
class IdiotModeCommand : public ShellTest {};

} // namespace

TEST_F(LogFileCommand, EverythingBehindTheAnnouncementGoesIntoTheFile) {
    EXPECT_EQ(session("logfile out.txt\necho logged\nexit\n"), "VanCLI> freopen() - out.txt\n");
    EXPECT_EQ(directory.text("out.txt"), "OK\nVanCLI> logged \nVanCLI> ");
}

TEST_F(LogFileCommand, TheFileIsOverwrittenInSpiteOfAppend) {
    directory.file("out.txt", "a text much longer than anything that the session prints into this log file");
    EXPECT_EQ(session("logfile out.txt append\nexit\n"), "VanCLI> freopen() - out.txt\n");
    EXPECT_EQ(directory.text("out.txt"), "OK\nVanCLI> ");
}

TEST_F(LogFileCommand, ASecondOneTakesOver) {
    static_cast<void>(session("logfile a.txt\nlogfile b.txt\nexit\n"));
    EXPECT_EQ(directory.text("a.txt"), "OK\nVanCLI> freopen() - b.txt\n");
    EXPECT_EQ(directory.text("b.txt"), "OK\nVanCLI> ");
}

TEST_F(LogFileCommand, BothMessagesAppearAtEveryLevel) {
    EXPECT_EQ(printedat(0, "logfile out.txt"), "freopen() - out.txt\n");
    EXPECT_EQ(directory.text("out.txt"), "OK\n");
}

TEST_F(LogFileCommand, TheNameIsToldAtLevelTwo) {
    EXPECT_EQ(printedat(2, "logfile out.txt append"),
              "Parsed [logfile out.txt append]\nLogfile is now out.txt\nfreopen() - out.txt\n");
    EXPECT_EQ(printedat(1, "logfile out.txt"), "freopen() - out.txt\n");
}

TEST_F(LogFileCommand, TheLogInUseIsEmptiedAndGoesOn) {
    EXPECT_EQ(session("logfile out.txt\necho first\nlogfile out.txt\necho second\nexit\n"),
              "VanCLI> freopen() - out.txt\n");
    EXPECT_EQ(directory.text("out.txt"), "OK\nVanCLI> second \nVanCLI> ");
}

TEST_F(LogFileCommand, AReaderOfTheLogThatLeavesDoesNotEndTheSession) {
    ASSERT_EQ(::mkfifo(directory.file("pipe").c_str(), 0600), 0);
    EXPECT_EQ(printed("logfile pipe"), "freopen() - pipe\nERROR: failed to open output file pipe\n");
    const int reader = ::open(directory.file("pipe").c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    const auto former = std::signal(SIGPIPE, SIG_IGN); // as the program does when it starts
    Capture console;
    script("logfile pipe");
    ::close(reader);
    script("echo unheard");
    script("logfile out.txt");
    script("echo heard");
    console.text();
    std::signal(SIGPIPE, former);
    EXPECT_TRUE(directory.text("out.txt").ends_with("heard \n"));
}

TEST_F(LogFileCommand, OneThatCannotBeOpenedLeavesTheOutputAsItWas) {
    EXPECT_EQ(session("logfile nowhere/out.txt\necho still here\nexit\n"),
              "VanCLI> freopen() - nowhere/out.txt\n"
              "ERROR: failed to open output file nowhere/out.txt\n"
              "VanCLI> still here \nVanCLI> ");
    EXPECT_EQ(printedat(0, "logfile nowhere/out.txt"), "freopen() - nowhere/out.txt\n");
    EXPECT_EQ(printed("logfile ."), "freopen() - .\nERROR: failed to open output file .\n");
}

TEST_F(LogFileCommand, TheResultTellsWhetherItIsInUse) {
    int result = -1;
    static_cast<void>(captured([&] { result = logfile("out.txt"); }));
    EXPECT_EQ(result, 0);
    static_cast<void>(captured([&] { result = logfile("nowhere/out.txt"); }));
    EXPECT_EQ(result, 1);
}

TEST_F(SaveDirCommand, ASlashIsAppended) {
    directory.folder("out");
    EXPECT_EQ(printed("savedir out"), "");
    EXPECT_EQ(cSaveDir, "out/");
}

TEST_F(SaveDirCommand, ASlashIsAppendedToOneThatIsThereAlready) {
    type("savedir /tmp/");
    EXPECT_EQ(cSaveDir, "/tmp//");
}

TEST_F(SaveDirCommand, AValidDirectoryIsConfirmedAtLevelTwo) {
    directory.folder("my files");
    EXPECT_EQ(printedat(2, "savedir 'my files'"), "Parsed [savedir 'my files']\nValid dir [my files]\n");
}

TEST_F(SaveDirCommand, WhatIsNoDirectoryIsRefused) {
    directory.folder("out");
    directory.file("file", "text");
    type("savedir out");
    EXPECT_EQ(printed("savedir file"), "Invalid directory [file]\n");
    EXPECT_EQ(printed("savedir missing"), "Invalid directory [missing]\n");
    EXPECT_EQ(printedat(0, "savedir missing"), "");
    EXPECT_EQ(cSaveDir, "out/");
}

// Only the one bit of the mode counts, and a socket has it.
TEST_F(SaveDirCommand, TheDirectoryBitDecides) {
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::string("socket").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(printed("savedir socket"), "");
    EXPECT_EQ(cSaveDir, "socket/");
    ::close(descriptor);
}

TEST_F(SaveDirCommand, ALongPathIsCutAt1023Characters) {
    const std::string tail(1021, '/');
    ASSERT_EQ(captured([&] { savedir("/." + tail); }), "");
    EXPECT_EQ(cSaveDir, "/." + tail);
    ASSERT_EQ(captured([&] { savedir("/" + tail); }), "");
    EXPECT_EQ(cSaveDir, "/" + tail + "/");
}

TEST_F(SaveDirCommand, TheResultTellsWhetherItIsInUse) {
    int result = -1;
    static_cast<void>(captured([&] { result = savedir("/"); }));
    EXPECT_EQ(result, 0);
    static_cast<void>(captured([&] { result = savedir("missing"); }));
    EXPECT_EQ(result, 1);
}

TEST_F(SaveDirCommand, AResetKeepsIt) {
    type("savedir /");
    type("reset");
    EXPECT_EQ(cSaveDir, "//");
}

TEST_F(LogLevelCommand, IsShownWithoutAnArgument) {
    EXPECT_EQ(printed("loglevel"), "LogLevel = 1\n");
    EXPECT_EQ(printedat(0, "loglevel"), "");
}

TEST_F(LogLevelCommand, IsSetInSilence) {
    EXPECT_EQ(printed("loglevel 9"), "");
    EXPECT_EQ(iLogLevel, 9);
    type("loglevel 0");
    EXPECT_EQ(iLogLevel, 0);
    type("loglevel 2147483647");
    EXPECT_EQ(iLogLevel, 2147483647);
}

TEST_F(LogLevelCommand, AWordThatIsNoNumberIsIgnored) {
    for (const char* word : {"high", "-1", "+1", "0x2", "2x"})
        EXPECT_EQ(printed(std::string("loglevel ") + word), "") << word;
    EXPECT_EQ(iLogLevel, 1);
}

TEST_F(LogLevelCommand, ANumberThatDoesNotFitIsRefused) {
    EXPECT_TRUE(isoneerror(printed("loglevel 99999999999")));
    EXPECT_TRUE(isoneerror(printed("loglevel 2147483648")));
    EXPECT_EQ(printedat(0, "loglevel 99999999999"), "");
    EXPECT_EQ(iLogLevel, 1);
}

TEST_F(LogLevelCommand, AResetKeepsIt) {
    type("loglevel 3");
    type("reset");
    EXPECT_EQ(iLogLevel, 3);
}

TEST_F(IdiotModeCommand, IsAnnouncedAndStaysOn) {
    const std::string announcement =
        "Idiot mode active, debug messages on and I'll let you do illogical things\n";
    EXPECT_EQ(printed("idiotmode"), announcement);
    EXPECT_EQ(iDiotMode, 1);
    EXPECT_EQ(printed("idiotmode"), announcement);
    EXPECT_EQ(iDiotMode, 1);
    EXPECT_EQ(iLogLevel, 1) << "no messages are switched on";
}

TEST_F(IdiotModeCommand, IsSetInSilenceAtLevelZero) {
    EXPECT_EQ(printedat(0, "idiotmode"), "");
    EXPECT_EQ(iDiotMode, 1);
}

} // namespace vantorel::test
