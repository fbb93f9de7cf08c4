// The index of a hash library of 100,000 files in 1,000 folders: built beside `find`, which lists the same
// tree, and asked beside stat(2), which asks the system about a file whose folder is known already.

#include "base/text.h"
#include "hash/library.h"
#include "neighbour.h"
#include "support/tempdir.h"

#include <sys/stat.h>

namespace vantorel::bench {
namespace {

constexpr uint32_t kFolders = 1000;
constexpr uint32_t kFiles = 100000;

/// The names of the files: CRCs that spread over all buckets, none twice.
std::string filename(uint32_t number) { return hexlong(number * 2654435761U); }

std::string filepath(const test::TempDir& directory, uint32_t number) {
    return directory.path() + formatted("/set%03u/", number % kFolders) + filename(number);
}

/// The tree, made when first asked for and gone with the process.
const test::TempDir& tree() {
    static const test::TempDir directory;
    static const bool ismade = [] {
        for (uint32_t folder = 0; folder < kFolders; ++folder)
            directory.folder(formatted("set%03u", folder));
        for (uint32_t file = 0; file < kFiles; ++file)
            close(open(filepath(directory, file).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
        return true;
    }();
    benchmark::DoNotOptimize(ismade);
    return directory;
}

void loadhashes_against_find(benchmark::State& state) {
    const std::string root = tree().path();
    runprogram({"find", root});
    Pair pair;
    for (auto _ : state)
        pair.run(
            state, [&] { loadhashes(root); },
            [&] {
                runprogram({"find", root});
            });
    pair.report(state, kMilli);
    state.counters["files"] = static_cast<double>(psVanHashFile.size());
    freehashes();
}

/// One time is that of `kLookups` lookups, and as many calls of stat.
void findhashfile_against_stat(benchmark::State& state) {
    constexpr uint32_t kLookups = 1000;
    std::vector<std::string> names;
    std::vector<std::string> paths;
    for (uint32_t i = 0; i < kLookups; ++i) {
        names.push_back(filename(i * (kFiles / kLookups)));
        paths.push_back(filepath(tree(), i * (kFiles / kLookups)));
    }
    loadhashes(tree().path());
    Pair pair;
    for (auto _ : state)
        pair.run(
            state,
            [&] {
                for (const auto& name : names)
                    benchmark::DoNotOptimize(findhashfile(name.c_str()).size());
            },
            [&] {
                struct stat status {};
                for (const auto& path : paths)
                    benchmark::DoNotOptimize(stat(path.c_str(), &status));
            });
    pair.report(state, kMicro * kLookups);
    freehashes();
}

/// The names that take longest, since their whole bucket is looked through: those that are not there.
void findhashfile_in_vain(benchmark::State& state) {
    loadhashes(tree().path());
    uint32_t crc = 1;
    for (auto _ : state) {
        const std::string name = formatted("0x%08xx", crc);
        crc += 0x01000000;
        state.SetIterationTime(seconds([&] { benchmark::DoNotOptimize(findhashfile(name.c_str()).size()); }));
    }
    freehashes();
}

BENCHMARK(loadhashes_against_find)->UseManualTime()->Iterations(rounds(31))->Unit(benchmark::kMillisecond);
BENCHMARK(findhashfile_against_stat)->UseManualTime()->Iterations(rounds(101))->Unit(benchmark::kMicrosecond);
BENCHMARK(findhashfile_in_vain)->UseManualTime()->Iterations(rounds(10000))->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace vantorel::bench

BENCHMARK_MAIN();
