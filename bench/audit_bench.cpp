// The hashing of an audited tree of 2,000 files of 512 KiB, as the first reference to a file by its CRC does
// it, beside `cat` of the same files; and the memory that it takes at most.

#include "audit/audit.h"
#include "base/text.h"
#include "neighbour.h"
#include "support/tempdir.h"

#include <fstream>

namespace vantorel::bench {
namespace {

constexpr uint32_t kFiles = 2000;
constexpr size_t kSize = 512 << 10;

std::vector<std::string> maketree(const test::TempDir& directory) {
    Bytes bytes(kSize);
    std::vector<std::string> paths;
    for (uint32_t file = 0; file < kFiles; ++file) {
        for (size_t at = 0; at < kSize; at += 64)
            bytes[at] = static_cast<uint8_t>((file + at) * 2654435761U >> 24);
        paths.push_back(directory.file(formatted("set%u/rom%04u", file % 10, file), bytes));
    }
    return paths;
}

/// The most memory that the process has held since `forgetpeak`, in MiB.
double peak() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.starts_with("VmHWM:")) return std::stod(line.substr(6)) / 1024;
    return 0;
}

void forgetpeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

void hashall() {
    AuditFileData record;
    for (int32_t index = 0; getauditfile(index, record) == 0; ++index)
        benchmark::DoNotOptimize(record.cCRC.data());
}

void audit_against_cat(benchmark::State& state) {
    const test::TempDir directory;
    std::vector<std::string> cat = maketree(directory);
    cat.insert(cat.begin(), "cat");
    runprogram(cat);
    forgetpeak();
    const double before = peak();
    Pair pair;
    for (auto _ : state) {
        // The audit anew: a file already hashed is not read again.
        auditfiles(directory.path());
        pair.run(state, hashall, [&] { runprogram(cat); });
    }
    pair.report(state, kMilli);
    state.counters["files"] = static_cast<double>(psAuditFilesFile.size());
    state.counters["peak_growth_MiB"] = peak() - before;
    freeauditfiles();
}

BENCHMARK(audit_against_cat)->UseManualTime()->Iterations(rounds(21))->Unit(benchmark::kMillisecond);

} // namespace
} // namespace vantorel::bench

BENCHMARK_MAIN();
