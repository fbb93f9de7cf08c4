// A search through 512 KiB for a pattern that is not there: beside memmem, which has the same bytes to look
// through.

#include "base/message.h"
#include "base/text.h"
#include "neighbour.h"
#include "rom/store.h"
#include "shell/find.h"
#include "support/freshstate.h"
#include "support/noise.h"

#include <cstring>

namespace vantorel::bench {
namespace {

constexpr int32_t kSize = 512 * 1024;
constexpr int kRounds = 301;

Bytes noisebytes(size_t count, uint32_t seed) {
    Bytes bytes(count);
    test::Noise noise(seed);
    for (uint8_t& byte : bytes)
        byte = static_cast<uint8_t>(noise());
    return bytes;
}

/// Offset of `pattern` in `image`, null when it is not there.
uint8_t* place(Bytes& image, View pattern) {
    return static_cast<uint8_t*>(memmem(image.data(), image.size(), pattern.data(), pattern.size()));
}

/// What is looked for, and where in vain.
struct Search {
    Bytes image;
    Bytes pattern;
};

using MakeSearch = Search (*)(size_t length);

Search inrandom(size_t length) {
    Search search{noisebytes(kSize, 1), noisebytes(length, 2)};
    while (uint8_t* found = place(search.image, search.pattern))
        ++found[length - 1];
    return search;
}

Search inzeros(size_t length) { return {Bytes(kSize), noisebytes(length, 2)}; }

/// The pattern's first byte, as far before its last one as in the pattern, every `apart` bytes; nothing but
/// them differs from zeros.
Search falsepairs(size_t length, size_t apart) {
    Search search{Bytes(kSize), Bytes(length, 0xA5)};
    for (size_t i = 0; i < search.image.size(); i += apart)
        search.image[i] = 0xA5;
    // Of two bytes the first alone is there; in longer ones a byte between does not fit.
    search.pattern[length / 2] = 0x5A;
    return search;
}

/// First and last byte of the pattern at each 32nd place.
Search infalsepairs(size_t length) {
    Search search = falsepairs(length, 32);
    for (size_t i = length - 1; i < search.image.size(); i += 32)
        search.image[i] = 0xA5;
    return search;
}

/// First and last byte of the pattern at every place: the whole image is the same byte.
Search inonebyte(size_t length) { return falsepairs(length, 1); }

std::string hextext(View pattern) {
    std::string text = "0x";
    for (const uint8_t byte : pattern)
        text += formatted("%02x", byte);
    return text;
}

void find_against_memmem(benchmark::State& state, MakeSearch make) {
    test::freshstate();
    iLogLevel = 0;
    Search search = make(static_cast<size_t>(state.range(0)));
    const std::string text = hextext(search.pattern);
    findslot(newrom(0, 0))->pcROM = search.image;
    if (place(search.image, search.pattern) != nullptr || find(0, 0, kSize * 2, text) == 0)
        state.SkipWithError("the pattern is there");
    Pair pair;
    for (auto _ : state)
        pair.run(
            state, [&] { benchmark::DoNotOptimize(find(0, 0, kSize * 2, text)); },
            [&] { benchmark::DoNotOptimize(place(search.image, search.pattern)); });
    pair.report(state, kMicro);
    test::freshstate();
}

void alllengths(benchmark::internal::Benchmark* bench) {
    for (const int64_t length : {2, 4, 8, 32})
        bench->Arg(length);
    bench->UseManualTime()->Iterations(rounds(kRounds))->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(find_against_memmem, random, inrandom)->Apply(alllengths);
BENCHMARK_CAPTURE(find_against_memmem, zeros, inzeros)->Apply(alllengths);
BENCHMARK_CAPTURE(find_against_memmem, false_pairs, infalsepairs)->Apply(alllengths);
BENCHMARK_CAPTURE(find_against_memmem, one_byte, inonebyte)->Apply(alllengths);

} // namespace
} // namespace vantorel::bench

BENCHMARK_MAIN();
