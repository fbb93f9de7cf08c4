// A full disk saved as an archive, by a whole session of the program, beside `unadf`, which extracts the same
// files; and the saving alone, beside a plain write of as many bytes to a file, in this process.

#include "adf/disk.h"
#include "adf/savezip.h"
#include "base/files.h"
#include "neighbour.h"
#include "support/diskbuilder.h"
#include "support/noise.h"
#include "support/tempdir.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace vantorel::bench {
namespace {

constexpr int kRounds = 201;

using test::FileSystem;

/// A disk of `count` files of `size` bytes in ten directories.
Bytes diskof(FileSystem system, int count, size_t size) {
    test::DiskBuilder disk(system, "Full");
    test::Noise noise(1);
    for (int file = 0; file < count; ++file) {
        Bytes bytes(size);
        for (uint8_t& byte : bytes)
            byte = static_cast<uint8_t>(noise());
        disk.addfile("Dir" + std::to_string(file % 10) + "/File" + std::to_string(file), bytes,
                     {12965, 1, 2});
    }
    return disk.image();
}

struct Contents {
    FileSystem system;
    int files;
    size_t size; // bytes of each
};

// As much as fits on a disk: of large files, of small ones, and of files of one block.
constexpr Contents kLargeOfs = {FileSystem::Ofs, 20, 40000};
constexpr Contents kLargeFfs = {FileSystem::Ffs, 20, 42000};
constexpr Contents kSmallOfs = {FileSystem::Ofs, 280, 2400};
constexpr Contents kSmallFfs = {FileSystem::Ffs, 280, 2500};
constexpr Contents kTinyFfs = {FileSystem::Ffs, 850, 500};

void session_against_unadf(benchmark::State& state, const Contents& contents) {
    const test::TempDir folder;
    // No hash library lies here; unadf does not look for one either.
    const test::InDirectory inside(folder);
    folder.folder("extracted");
    folder.file("disk.adf", diskof(contents.system, contents.files, contents.size));
    const std::string script = folder.file("script", "loadadf disk.adf\nadfsavezip disk.zip\nexit\n");
    Pair pair;
    for (auto _ : state)
        pair.run(
            state, [&] { runprogram({VANTOREL_PROGRAM}, script.c_str()); },
            [] {
                runprogram({"unadf", "disk.adf", "-d", "extracted"});
            });
    pair.report(state, kMilli);
    state.counters["files"] = contents.files;
    state.counters["KiB"] = static_cast<double>(std::filesystem::file_size("disk.zip")) / 1024;
}

void adfsavezip_against_writing(benchmark::State& state, const Contents& contents) {
    const test::TempDir folder;
    const test::InDirectory inside(folder);
    if (loadadfimage(diskof(contents.system, contents.files, contents.size)) != "Full")
        state.SkipWithError("the disk was not loaded");
    adfsavezip("disk.zip");
    const Bytes archive = folder.bytes("disk.zip");
    Pair pair;
    for (auto _ : state)
        pair.run(
            state, [] { adfsavezip("disk.zip"); },
            [&] { benchmark::DoNotOptimize(writefile("copy.zip", archive)); });
    pair.report(state, kMicro);
    state.counters["files"] = contents.files;
    state.counters["KiB"] = static_cast<double>(archive.size()) / 1024;
}

void someruns(benchmark::internal::Benchmark* bench) {
    bench->UseManualTime()->Iterations(rounds(kRounds))->Unit(benchmark::kMicrosecond);
}

#define VANTOREL_CONTENTS(contents)                                                                          \
    BENCHMARK_CAPTURE(session_against_unadf, contents, k##contents)->Apply(someruns);                        \
    BENCHMARK_CAPTURE(adfsavezip_against_writing, contents, k##contents)->Apply(someruns)

VANTOREL_CONTENTS(LargeOfs);
VANTOREL_CONTENTS(LargeFfs);
VANTOREL_CONTENTS(SmallOfs);
VANTOREL_CONTENTS(SmallFfs);
VANTOREL_CONTENTS(TinyFfs);

} // namespace
} // namespace vantorel::bench

// Each entry is told of at every level, and unadf speaks on standard error too: figures alone are shown.
int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (std::system("command -v unadf >/dev/null") != 0) {
        std::fprintf(stderr, "unadf is not installed\n");
        return 1;
    }
    std::ofstream figures("/dev/fd/" + std::to_string(::dup(STDOUT_FILENO)));
    for (std::FILE* stream : {stdout, stderr})
        if (std::freopen("/dev/null", "w", stream) == nullptr) return 1;
    benchmark::ConsoleReporter reporter(benchmark::ConsoleReporter::OO_None);
    reporter.SetOutputStream(&figures);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
