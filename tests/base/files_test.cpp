#include "base/files.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

#include <array>
#include <fcntl.h>
#include <filesystem>
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

TEST(OpenOutput, WritesToADeviceMayWait) {
    const int descriptor = openoutput("/dev/null", 0755);
    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(::fcntl(descriptor, F_GETFL) & O_NONBLOCK, 0);
    ::close(descriptor);
}

} // namespace vantorel::test
