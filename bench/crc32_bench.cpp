// The CRC32 of a buffer, by the engine in use and by each other one, against zlib's, and against a mere look
// at every byte, which is the least that any checksum can take.

#include "hash/crc32.h"
#include "hash/crc32_engines.h"
#include "neighbour.h"

#include <cstring>
#include <zlib.h>

namespace vantorel::bench {
namespace {

constexpr int64_t kKickstart = 512 << 10;
constexpr int64_t kLarge = 64 << 20;

/// No byte of it is 255.
Bytes sample(int64_t size) {
    Bytes bytes(static_cast<size_t>(size));
    uint32_t state = 1;
    for (auto& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<uint8_t>((state >> 24) % 255);
    }
    return bytes;
}

/// How often a sample of this size is gone over for one time: enough to be long beside the clock's step.
int passes(int64_t size) { return size < (1 << 20) ? 16 : 1; }

/// Compares `ours(bytes)` with `neighbour(bytes)`, both of which give a number, on a buffer of the size asked
/// for.
template <typename Ours, typename Neighbour>
void compare(benchmark::State& state, Ours ours, Neighbour neighbour) {
    const int64_t size = state.range(0);
    const Bytes bytes = sample(size);
    const auto repeated = [&](auto work) {
        return [&bytes, work, count = passes(size)] {
            for (int i = 0; i < count; ++i)
                benchmark::DoNotOptimize(work(View(bytes)));
        };
    };
    Pair pair;
    for (auto _ : state)
        pair.run(state, repeated(ours), repeated(neighbour));
    pair.report(state, kMicro * passes(size));
    const double billions = static_cast<double>(size) * passes(size) / 1e9;
    state.counters["GB/s"] = billions / pair.ours();
    state.counters["neighbour_GB/s"] = billions / pair.neighbour();
    state.counters["times_as_fast"] = pair.neighbour() / pair.ours();
}

uint32_t zlibcrc32(View bytes) { return static_cast<uint32_t>(crc32_z(0, bytes.data(), bytes.size())); }

/// Looks at every byte: what memory gives.
uint32_t look(View bytes) { return std::memchr(bytes.data(), 255, bytes.size()) != nullptr; }

void against_zlib(benchmark::State& state) {
    compare(
        state, [](View bytes) { return crc32buf(bytes); }, zlibcrc32);
}

void against_reading(benchmark::State& state) {
    compare(
        state, [](View bytes) { return crc32buf(bytes); }, look);
}

void addengine(const CrcEngine& engine) {
    const auto run = [engine](benchmark::State& state) {
        compare(
            state, [engine](View bytes) { return engine.update(bytes, 0xFFFFFFFF); }, zlibcrc32);
    };
    const std::string name = std::string("engine_against_zlib/") + engine.cName;
    benchmark::RegisterBenchmark(name.c_str(), run)->Arg(kKickstart)->Arg(kLarge)->UseManualTime();
}

BENCHMARK(against_zlib)->Arg(kKickstart)->Arg(kLarge)->UseManualTime();
BENCHMARK(against_reading)->Arg(kKickstart)->Arg(kLarge)->UseManualTime();

} // namespace
} // namespace vantorel::bench

int main(int argc, char** argv) {
    for (const auto& engine : vantorel::crcengines())
        vantorel::bench::addengine(engine);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
