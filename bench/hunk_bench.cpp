// A hunk file of 256 KiB with 20,000 relocs, read from a buffer and made again: beside one memcpy of as many
// bytes and one plain pass over the relocs, the least that relocating such a file takes.

#include "base/message.h"
#include "component/hunkreader.h"
#include "component/loadable.h"
#include "neighbour.h"
#include "support/hunkbuilder.h"
#include "support/noise.h"

#include <cstring>

namespace vantorel::bench {
namespace {

constexpr uint32_t kRelocs = 20000;
constexpr uint32_t kFileSize = 256 * 1024;
constexpr uint32_t kCodeAt = 32;
// All of the file but its header, the reloc block's four longs beside the relocs, and the end.
constexpr uint32_t kCodeSize = kFileSize - kCodeAt - 4 * (kRelocs + 4) - 4;
constexpr uint32_t kOffsetsAt = kCodeAt + kCodeSize + 12;
constexpr int kRounds = 1001;

/// Relocs spread evenly over the code, at even offsets, none across another.
std::vector<uint32_t> ascending() {
    std::vector<uint32_t> offsets;
    for (uint64_t i = 0; i < kRelocs; ++i)
        offsets.push_back(static_cast<uint32_t>(i * (kCodeSize - 4) / (kRelocs - 1)) & ~1U);
    return offsets;
}

std::vector<uint32_t> shuffled() {
    std::vector<uint32_t> offsets = ascending();
    test::Noise noise(1);
    for (uint32_t left = kRelocs; left > 1; --left)
        std::swap(offsets[left - 1], offsets[noise() % left]);
    return offsets;
}

Bytes filewith(const std::vector<uint32_t>& offsets) {
    Bytes code(kCodeSize);
    test::Noise noise(2);
    for (uint8_t& byte : code)
        byte = static_cast<uint8_t>(noise());
    Bytes file = test::HunkBuilder()
                     .header({.sizes = {kCodeSize / 4}})
                     .code(code)
                     .reloc32({{.offsets = offsets}})
                     .end()
                     .bytes();
    if (file.size() == kFileSize) return file;
    std::fprintf(stderr, "the file has %zu bytes\n", file.size());
    std::exit(1);
}

/// The neighbour: the file copied, and for each reloc, whose offset is read out of the file, the long at its
/// place read, added to and stored.
class PlainRelocation {
public:
    explicit PlainRelocation(View bytes) : file(bytes), copy(bytes.size()) {}

    void operator()() {
        std::memcpy(copy.data(), file.data(), file.size());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
        for (const uint8_t* p = file.data() + kOffsetsAt; p < file.data() + kOffsetsAt + 4 * kRelocs;
             p += 4) {
            uint8_t* place = copy.data() + kCodeAt + iUINT32(p);
            setlong(place, iUINT32(place) + kAddress);
        }
        benchmark::ClobberMemory();
    }

private:
    static constexpr uint32_t kAddress = 0xF80000;
    View file;
    Bytes copy;
};

Component componentof(View file) {
    Component component;
    const auto length = static_cast<int32_t>(file.size());
    if (librarybuffertocomponent(file, 0, length, component) == 0 && component.iRelocs() == int{kRelocs})
        return component;
    std::fprintf(stderr, "the file was not read whole\n");
    std::exit(1);
}

void read_against_relocating(benchmark::State& state, std::vector<uint32_t> (*order)()) {
    iLogLevel = 0;
    const Bytes file = filewith(order());
    PlainRelocation plain(file);
    Pair pair;
    for (auto _ : state)
        pair.run(
            state, [&] { benchmark::DoNotOptimize(componentof(file).iSize); }, [&] { plain(); });
    pair.report(state, kMicro);
}

void write_against_relocating(benchmark::State& state) {
    iLogLevel = 0;
    const Bytes file = filewith(ascending());
    const Component component = componentof(file);
    if (loadablelibraryform(component) != file) state.SkipWithError("the file made is another");
    PlainRelocation plain(file);
    Pair pair;
    for (auto _ : state)
        pair.run(
            state, [&] { benchmark::DoNotOptimize(loadablelibraryform(component).size()); },
            [&] { plain(); });
    pair.report(state, kMicro);
}

BENCHMARK_CAPTURE(read_against_relocating, ascending, ascending)
    ->UseManualTime()
    ->Iterations(rounds(kRounds))
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(read_against_relocating, shuffled, shuffled)
    ->UseManualTime()
    ->Iterations(rounds(kRounds))
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(write_against_relocating)
    ->UseManualTime()
    ->Iterations(rounds(kRounds))
    ->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace vantorel::bench

BENCHMARK_MAIN();
