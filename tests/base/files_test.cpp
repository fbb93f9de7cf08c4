#include "base/files.h"
#include "base/message.h"
#include "support/capture.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantorel::test {

namespace {

constexpr uintmax_t iFourGB = 4ULL * 1024 * 1024 * 1024;

Bytes counted(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<uint8_t>(i * 7 + 3);
    return bytes;
}

std::string sparse(const TempDir& directory, uintmax_t size) {
    std::string path = directory.file("sparse", View{});
    std::filesystem::resize_file(path, size);
    return path;
}

mode_t permissions(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

/// A file that promises a page and has a line.
constexpr const char* shortfile = "/sys/kernel/mm/transparent_hugepage/enabled";

} // namespace

TEST(ReadFile, AFileComesWhole) {
    const TempDir directory;
    const Bytes bytes = counted(100000);
    const auto contents = readfile(directory.file("rom", bytes));
    ASSERT_TRUE(contents);
    EXPECT_EQ(contents->bytes, bytes);
    EXPECT_EQ(contents->iExpected, 100000);
    EXPECT_TRUE(contents->iscomplete());
}

TEST(ReadFile, AnEmptyFileIsComplete) {
    const TempDir directory;
    const auto contents = readfile(directory.file("empty", View{}));
    ASSERT_TRUE(contents);
    EXPECT_TRUE(contents->bytes.empty());
    EXPECT_TRUE(contents->iscomplete());
}

TEST(ReadFile, AMissingFileCannotBeOpened) {
    const TempDir directory;
    EXPECT_FALSE(readfile(directory.file("missing")));
    EXPECT_FALSE(readfile(""));
}

TEST(ReadFile, ADirectoryCannotBeOpened) {
    const TempDir directory;
    EXPECT_FALSE(readfile(directory.path()));
}

TEST(ReadFile, ALinkToItselfCannotBeOpened) {
    const TempDir directory;
    std::filesystem::create_symlink("loop", directory.file("loop"));
    EXPECT_FALSE(readfile(directory.file("loop")));
}

TEST(ReadFile, APipeWithoutAWriterDoesNotWait) {
    const TempDir directory;
    ASSERT_EQ(::mkfifo(directory.file("pipe").c_str(), 0600), 0);
    const auto contents = readfile(directory.file("pipe"));
    ASSERT_TRUE(contents);
    EXPECT_TRUE(contents->bytes.empty());
}

TEST(ReadFile, AnEndlessDeviceHasNoBytes) {
    const auto contents = readfile("/dev/zero");
    ASSERT_TRUE(contents);
    EXPECT_TRUE(contents->bytes.empty());
}

TEST(ReadFile, AFileOfFourGigabytesIsNotRead) {
    const TempDir directory;
    const auto contents = readfile(sparse(directory, iFourGB));
    ASSERT_TRUE(contents);
    EXPECT_TRUE(contents->bytes.empty());
    EXPECT_EQ(contents->iExpected, static_cast<int64_t>(iFourGB));
    EXPECT_FALSE(contents->iscomplete());
}

TEST(ReadFile, AFileThatEndsBeforeItsSizeIsIncomplete) {
    const auto contents = readfile(shortfile);
    if (!contents || contents->iExpected == 0) GTEST_SKIP() << "no " << shortfile;
    EXPECT_FALSE(contents->bytes.empty());
    EXPECT_LT(static_cast<int64_t>(contents->bytes.size()), contents->iExpected);
    EXPECT_FALSE(contents->iscomplete());
}

TEST(ReadFile, DescriptorZeroCountsAsNotOpened) {
    const TempDir directory;
    const std::string path = directory.file("rom", counted(10));
    const int saved = ::dup(STDIN_FILENO);
    ::close(STDIN_FILENO);
    const bool wasread = readfile(path).has_value();
    const int next = ::open("/dev/null", O_RDONLY);
    if (saved >= 0) {
        ::dup2(saved, STDIN_FILENO);
        ::close(saved);
    }
    EXPECT_FALSE(wasread);
    EXPECT_EQ(next, STDIN_FILENO) << "the refused descriptor was left open";
}

TEST(InputFile, PiecesFollowEachOtherUpToTheEnd) {
    const TempDir directory;
    InputFile file(directory.file("rom", counted(10)));
    ASSERT_TRUE(file.isopen());
    EXPECT_EQ(file.size(), 10);
    std::array<uint8_t, 6> piece{};
    EXPECT_EQ(file.read(piece), 6U);
    EXPECT_EQ(piece.front(), 3);
    EXPECT_EQ(file.read(piece), 4U);
    EXPECT_EQ(piece.front(), 6 * 7 + 3);
    EXPECT_EQ(file.read(piece), 0U);
}

TEST(InputFile, AFileThatIsNotOpenHasNoBytes) {
    InputFile file("");
    EXPECT_FALSE(file.isopen());
    EXPECT_EQ(file.size(), 0);
    std::array<uint8_t, 6> piece{};
    EXPECT_EQ(file.read(piece), 0U);
}

TEST(WriteFile, WhatWasWrittenReadsBack) {
    const TempDir directory;
    const Bytes bytes = counted(100000);
    EXPECT_EQ(writefile(directory.file("out"), bytes), WriteResult::Written);
    EXPECT_EQ(directory.bytes("out"), bytes);
}

TEST(WriteFile, ALongerFileIsTruncated) {
    const TempDir directory;
    const std::string path = directory.file("out", counted(1000));
    EXPECT_EQ(writefile(path, counted(3)), WriteResult::Written);
    EXPECT_EQ(directory.bytes("out"), counted(3));
    EXPECT_EQ(writefile(path, {}), WriteResult::Written);
    EXPECT_EQ(directory.bytes("out"), Bytes{});
}

TEST(WriteFile, ANewFileHasPermissionBits0755) {
    const TempDir directory;
    const mode_t mask = ::umask(0);
    const WriteResult result = writefile(directory.file("out"), counted(3));
    ::umask(mask);
    EXPECT_EQ(result, WriteResult::Written);
    EXPECT_EQ(permissions(directory.file("out")), 0755U);
}

TEST(WriteFile, APathThatCannotBeMadeIsNotOpened) {
    const TempDir directory;
    EXPECT_EQ(writefile(directory.file("missing/out"), counted(3)), WriteResult::NotOpened);
    EXPECT_EQ(writefile(directory.path(), counted(3)), WriteResult::NotOpened);
    EXPECT_EQ(writefile("", counted(3)), WriteResult::NotOpened);
}

TEST(WriteFile, AFullDiskIsNotWritten) {
    EXPECT_EQ(writefile("/dev/full", counted(3)), WriteResult::NotWritten);
    EXPECT_EQ(writefile("/dev/full", {}), WriteResult::Written);
}

TEST(WriteFile, APipeWithoutAReaderCannotBeOpened) {
    const TempDir directory;
    ASSERT_EQ(::mkfifo(directory.file("pipe").c_str(), 0600), 0);
    EXPECT_EQ(writefile(directory.file("pipe"), Bytes{1}), WriteResult::NotOpened);
}

TEST(OutputFile, PiecesFollowEachOther) {
    const TempDir directory;
    OutputFile file(directory.file("out", counted(100)));
    ASSERT_TRUE(file.isopen());
    EXPECT_GE(file.descriptor(), 0);
    file.write(Bytes{1, 2});
    file.write({});
    file.write(Bytes{3});
    EXPECT_TRUE(file.close());
    EXPECT_EQ(directory.bytes("out"), (Bytes{1, 2, 3}));
}

TEST(OutputFile, IsClosedOnce) {
    const TempDir directory;
    OutputFile file(directory.file("out"));
    EXPECT_TRUE(file.close());
    EXPECT_FALSE(file.isopen());
    EXPECT_EQ(file.descriptor(), -1);
    EXPECT_FALSE(file.close());
}

TEST(OutputFile, IsClosedWithTheObject) {
    const TempDir directory;
    int number = -1;
    {
        OutputFile file(directory.file("out"));
        number = file.descriptor();
        file.write(Bytes{1, 2});
    }
    ASSERT_GE(number, 0);
    EXPECT_EQ(::fcntl(number, F_GETFD), -1);
    EXPECT_EQ(directory.bytes("out"), (Bytes{1, 2}));
}

TEST(OutputFile, ThatIsNotOpenTakesNothing) {
    const TempDir directory;
    OutputFile file(directory.path());
    EXPECT_FALSE(file.isopen());
    EXPECT_EQ(file.descriptor(), -1);
    file.write(Bytes{1, 2});
    EXPECT_FALSE(file.close());
}

TEST(OutputFile, OnAFullDiskStaysFailed) {
    OutputFile file("/dev/full");
    ASSERT_TRUE(file.isopen());
    file.write(Bytes{1});
    file.write({});
    EXPECT_FALSE(file.close());
}

TEST(OutputFile, AfterAFailureNothingMoreIsWritten) {
    // A limit on the size of files fails the second piece; the third would fit again.
    const TempDir directory;
    struct rlimit former {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const struct rlimit small { 4, former.rlim_max };
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    OutputFile file(directory.file("out"));
    file.write(Bytes{1, 2, 3});
    file.write(Bytes{4, 5, 6});
    ::setrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, handler);
    file.write(Bytes{7});
    EXPECT_FALSE(file.close());
    EXPECT_EQ(directory.bytes("out"), (Bytes{1, 2, 3, 4}));
}

TEST(SaveFile, TellsOfNothingWhenAllIsWritten) {
    const TempDir directory;
    EXPECT_EQ(captured([&] { EXPECT_EQ(savefile(directory.file("out"), counted(1000)), 0); }), "");
    EXPECT_EQ(directory.bytes("out"), counted(1000));
}

TEST(SaveFile, TellsOfEachFailureOnce) {
    EXPECT_EQ(captured([] { EXPECT_EQ(savefile("/nowhere/out", counted(3)), 1); }),
              "ERROR: failed to open output file /nowhere/out\n");
    EXPECT_EQ(captured([] { EXPECT_EQ(savefile("/dev/full", counted(3)), 1); }),
              "ERROR: failed to write output file /dev/full\n");
}

TEST(SaveFile, IsSilentAtLevelZero) {
    const int32_t former = iLogLevel;
    iLogLevel = 0;
    const std::string text = captured([] {
        savefile("/nowhere/out", counted(3));
        savefile("/dev/full", counted(3));
    });
    iLogLevel = former;
    EXPECT_EQ(text, "");
}

TEST(OpenOutput, WritesToADeviceMayWait) {
    const int descriptor = openoutput("/dev/null", 0755);
    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(::fcntl(descriptor, F_GETFL) & O_NONBLOCK, 0);
    ::close(descriptor);
}

} // namespace vantorel::test
