// Relocs found by comparing copies of components: the deep analysis beside the plain one, which compares
// every place with every other, and a component looked for in twenty ROMs beside a mere look at the copies'
// bytes.

#include "analysis/analysecomponent.h"
#include "analysis/deepanalyse.h"
#include "analysis/plainanalysis.h"
#include "base/message.h"
#include "neighbour.h"
#include "support/capture.h"
#include "support/freshstate.h"
#include "support/noise.h"

#include <algorithm>
#include <cstring>

namespace vantorel::bench {
namespace {

constexpr int32_t kSize = 64 * 1024;
constexpr int32_t kLeast = iChunkLeast;

/// Bytes at random that hold no address of the ROMs made here.
Bytes noisebytes(int32_t count, uint32_t seed) {
    Bytes bytes(static_cast<size_t>(count));
    test::Noise noise(seed);
    for (uint8_t& byte : bytes)
        byte = static_cast<uint8_t>(noise() | 1);
    return bytes;
}

int32_t slotof(Bytes image, uint32_t base) {
    const int32_t rom = newrom(0, 0);
    KickstartRom& slot = *findslot(rom);
    slot.pcROM = std::move(image);
    slot.iROMBase = base;
    return rom;
}

/// A component with an address in every 50th long.
Bytes module(uint32_t seed, uint32_t base) {
    Bytes bytes = noisebytes(kSize, seed);
    for (size_t at = 0; at + 4 <= bytes.size(); at += 200)
        setlong(&bytes[at], base + static_cast<uint32_t>(at));
    return bytes;
}

void makepair(Bytes first, Bytes second) {
    test::freshstate();
    slotof(std::move(first), 0xF80000);
    slotof(std::move(second), 0xFC0000);
    for (const int32_t rom : {0, 1}) {
        Component record;
        record.iSize = record.iFixedEnd = findslot(rom)->iSize();
        findslot(rom)->psComponents.push_back(record);
    }
}

/// Two components without a word in common but by chance.
void nothingshared() { makepair(module(1, 0xF80000), module(2, 0xFC0000)); }

/// Copies of one component that differ in every 100th word.
void hundredthworddiffers() {
    Bytes second = module(1, 0xFC0000);
    for (size_t at = 100; at + 2 <= second.size(); at += 200)
        second[at] ^= 2;
    makepair(module(1, 0xF80000), std::move(second));
}

/// Every word the same but for a few in one of the copies, so that nearly every place has to be measured. The
/// plain analysis would take minutes over 64 KiB of them.
void onewordeverywhere() {
    constexpr size_t size = 8192;
    Bytes first(size, 0x11);
    for (size_t at = 62; at < size; at += 64)
        first[at] = 0x22;
    makepair(std::move(first), Bytes(size, 0x11));
}

void deep_against_plain(benchmark::State& state, void (*make)()) {
    make();
    iLogLevel = 1;
    const std::string expected = test::plaindeepanalysis(0, 0, 1, 0, kLeast);
    if (test::captured([] { deepanalysecomponent(0, 0, 1, 0, kLeast); }) != expected)
        state.SkipWithError("the analyses differ");
    Pair pair;
    for (auto _ : state)
        pair.run(
            state, [] { deepanalysecomponent(0, 0, 1, 0, kLeast); },
            [] { fputs(test::plaindeepanalysis(0, 0, 1, 0, kLeast).c_str(), stdout); });
    pair.report(state, kMilli);
    test::freshstate();
}

void fewrounds(benchmark::internal::Benchmark* bench) {
    bench->UseManualTime()->Iterations(rounds(3))->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(deep_against_plain, nothing_shared, nothingshared)->Apply(fewrounds);
BENCHMARK_CAPTURE(deep_against_plain, hundredth_word_differs, hundredthworddiffers)->Apply(fewrounds);
BENCHMARK_CAPTURE(deep_against_plain, one_word_everywhere, onewordeverywhere)->Apply(fewrounds);

constexpr int32_t kComponents = 40;
constexpr int32_t kComponentSize = 12 * 1024;

/// A ROM of forty components, each with an address in every 50th long.
void makerom(uint32_t base) {
    Bytes image = noisebytes(kComponents * kComponentSize, 7);
    for (size_t at = 0; at + 4 <= image.size(); at += 200)
        setlong(&image[at], base + static_cast<uint32_t>(at));
    KickstartRom& slot = *findslot(slotof(std::move(image), base));
    for (int32_t number = 0; number < kComponents; ++number) {
        Component record;
        record.iStart = record.iFixedStart = record.iROMTag = number * kComponentSize;
        record.iSize = kComponentSize;
        record.iFixedEnd = record.iStart + kComponentSize;
        record.pcLibString = formatted("component %d.1 (1.1.93)", number);
        slot.psComponents.push_back(record);
    }
}

/// How many of the copies of component 20 differ from the first.
int differingcopies() {
    int count = 0;
    const auto start = static_cast<size_t>(20 * kComponentSize);
    const uint8_t* first = findslot(0)->pcROM.data() + start;
    for (int32_t rom = 1; rom < iMaxRom; ++rom) {
        const uint8_t* copy = findslot(rom)->pcROM.data() + start;
        // The addresses differ, so that memcmp would stop at once: piece by piece it sees all bytes.
        for (size_t at = 0; at < static_cast<size_t>(kComponentSize); at += 200)
            count += std::memcmp(first + at, copy + at, std::min<size_t>(200, kComponentSize - at)) != 0;
    }
    return count;
}

void copies_against_memcmp(benchmark::State& state, VerifiedRelocs verified) {
    test::freshstate();
    for (uint32_t rom = 0; rom < static_cast<uint32_t>(iRomSlots); ++rom)
        makerom(0xF80000 - rom * 0x100000);
    iLogLevel = 1;
    Pair pair;
    for (auto _ : state) {
        findrecord(0, 20)->ipRelocs.clear();
        pair.run(
            state, [&] { analysecomponent(0, 20, verified); },
            [] { benchmark::DoNotOptimize(differingcopies()); });
    }
    pair.report(state, kMilli);
    if (verified == VerifiedRelocs::Add && findrecord(0, 20)->iRelocs() < kComponentSize / 200)
        state.SkipWithError("relocs are missing");
    test::freshstate();
}

void manyrounds(benchmark::internal::Benchmark* bench) {
    bench->UseManualTime()->Iterations(rounds(101))->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(copies_against_memcmp, tell, VerifiedRelocs::Tell)->Apply(manyrounds);
BENCHMARK_CAPTURE(copies_against_memcmp, add, VerifiedRelocs::Add)->Apply(manyrounds);

} // namespace
} // namespace vantorel::bench

int main(int argc, char** argv) { return vantorel::bench::runsilenced(argc, argv); }
