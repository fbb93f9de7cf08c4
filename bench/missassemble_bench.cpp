// The missassembler over a real ROM, its text included: the decoder beside capstone's and objdump's, a search
// in vain as a whole process beside objdump's, and the walk over components of growing size. Without the
// folder of real ROMs in VANTOREL_REAL_DIR only the walk is measured.

#include "base/files.h"
#include "base/message.h"
#include "base/text.h"
#include "hash/library.h"
#include "missassembler/decode.h"
#include "missassembler/missassemblelibrary.h"
#include "missassembler/start.h"
#include "neighbour.h"
#include "rom/store.h"
#include "support/freshstate.h"
#include "support/realfiles.h"
#include "support/tempdir.h"

#include <array>
#include <capstone/capstone.h>
#include <cstdlib>

namespace vantorel::bench {
namespace {

constexpr uint32_t kBase = 0x00F80000;
constexpr double kNano = 1e-9;

/// A ROM in slot 0, with the table of the shipped library.
void setrom(const Bytes& image) {
    test::freshstate();
    iLogLevel = 0;
    loadhashes(std::string(VANTOREL_ROOT) + "/" + cHashLibrary);
    KickstartRom& slot = *findslot(newrom(0, 0));
    slot.pcROM = image;
    slot.iROMBase = kBase;
    if (initmissassembler() != 0) std::exit(1);
}

std::string realrom() { return test::realfile("aros-20130502.rom").value_or(""); }

std::vector<std::string> objdump(const std::string& file) {
    return {"m68k-linux-gnu-objdump", "-D", "-b", "binary", "-m", "m68k:68000", file};
}

/// Decodes the image from its start to its end; the number of instructions.
double decodeimage() {
    const int32_t size = findslot(0)->iSize();
    MissText text;
    int32_t count = 0;
    for (int32_t offset = 0; offset < size; ++count) {
        offset += missassembleA(0, offset, text, sMnemonic);
        benchmark::DoNotOptimize(text);
    }
    return count;
}

/// Capstone for the same bytes. It steps over a word that it does not know.
class Capstone {
public:
    Capstone() {
        constexpr auto mode = static_cast<cs_mode>(CS_MODE_BIG_ENDIAN | CS_MODE_M68K_040);
        if (cs_open(CS_ARCH_M68K, mode, &handle) != CS_ERR_OK) std::exit(1);
        instruction = cs_malloc(handle);
    }
    ~Capstone() {
        cs_free(instruction, 1);
        cs_close(&handle);
    }
    Capstone(const Capstone&) = delete;
    Capstone& operator=(const Capstone&) = delete;

    double decode(View image) {
        const uint8_t* code = image.data();
        size_t size = image.size();
        uint64_t address = kBase;
        double count = 0;
        while (size > 1) {
            if (cs_disasm_iter(handle, &code, &size, &address, instruction)) {
                ++count;
            } else {
                code += 2;
                size -= 2;
                address += 2;
            }
        }
        return count;
    }

private:
    csh handle = 0;
    cs_insn* instruction = nullptr;
};

/// Times per instruction, since no two disassemblers take data for the same instructions.
void reporteach(benchmark::State& state, const Pair& pair, double mine, double other) {
    state.counters["ours"] = pair.ours() / mine / kNano;
    state.counters["neighbour"] = pair.neighbour() / other / kNano;
    state.counters["ratio"] = pair.ours() / mine / (pair.neighbour() / other);
}

/// Lines of objdump's listing of the file that are instructions.
double countlines(const std::string& file) {
    const test::TempDir folder;
    const std::string list = folder.file("list");
    std::string command;
    for (const std::string& word : objdump(file))
        command += "'" + word + "' ";
    if (std::system((command + "| grep -c '^ *[0-9a-f]*:' > " + list).c_str()) != 0) std::exit(1);
    return std::stod(folder.text("list"));
}

void decode_against_capstone(benchmark::State& state) {
    const std::string file = realrom();
    if (file.empty()) return state.SkipWithError("VANTOREL_REAL_DIR is not set");
    setrom(readfile(file)->bytes);
    Capstone capstone;
    Pair pair;
    double mine = 0;
    double theirs = 0;
    for (auto _ : state)
        pair.run(
            state, [&] { mine = decodeimage(); }, [&] { theirs = capstone.decode(findslot(0)->pcROM); });
    reporteach(state, pair, mine, theirs);
}

void decode_against_objdump(benchmark::State& state) {
    const std::string file = realrom();
    if (file.empty()) return state.SkipWithError("VANTOREL_REAL_DIR is not set");
    setrom(readfile(file)->bytes);
    Pair pair;
    double mine = 0;
    for (auto _ : state)
        pair.run(
            state, [&] { mine = decodeimage(); }, [&] { runprogram(objdump(file)); });
    reporteach(state, pair, mine, countlines(file));
}

void findopcode_against_objdump(benchmark::State& state) {
    const std::string file = realrom();
    if (file.empty()) return state.SkipWithError("VANTOREL_REAL_DIR is not set");
    const test::TempDir directory;
    const std::string script =
        directory.file("script", "loadrom " + file + "\nfindopcode 0 524288 \"MOVE.L NOWHERE,D0\"\n");
    const test::InDirectory root(VANTOREL_ROOT);
    Pair pair;
    for (auto _ : state)
        pair.run(
            state, [&] { runprogram({VANTOREL_PROGRAM}, script.c_str()); },
            [&] { runprogram(objdump(file)); });
    pair.report(state, kMilli);
}

BENCHMARK(decode_against_capstone)->UseManualTime()->Iterations(rounds(101))->Unit(benchmark::kMillisecond);
BENCHMARK(decode_against_objdump)->UseManualTime()->Iterations(rounds(21))->Unit(benchmark::kMillisecond);
BENCHMARK(findopcode_against_objdump)->UseManualTime()->Iterations(rounds(21))->Unit(benchmark::kMillisecond);

constexpr int32_t kTag = 26;

/// `size` bytes that begin with a ROMTAG whose code begins at offset `entry`.
Bytes taggedimage(int32_t size, int32_t entry) {
    Bytes image(static_cast<size_t>(size));
    setword(image.data(), 0x4AFC);
    setlong(image.data() + 2, kBase);
    setlong(image.data() + 22, kBase + static_cast<uint32_t>(entry));
    return image;
}

/// Functions of 32 bytes, each with a loop, a conditional branch and a call of the next one.
Bytes functions(int32_t size) {
    constexpr int32_t first = 32;
    constexpr int32_t length = 32;
    Bytes image = taggedimage(size, first);
    for (int32_t at = first; at + length <= size; at += length) {
        uint8_t* code = image.data() + at;
        constexpr std::array<uint16_t, 16> words = {0x2F02, 0x7407, 0x2018, 0x6B08, 0xD280, 0x51CA,
                                                    0xFFF8, 0x6002, 0x7200, 0x2001, 0x241F, 0x6108,
                                                    0x4A80, 0x4EAE, 0xFF3A, 0x4E75};
        for (size_t i = 0; i < words.size(); ++i)
            setword(code + 2 * i, words[i]);
        // The last one has nobody to call.
        if (at + 2 * length > size) setword(code + 22, 0x4E71);
    }
    return image;
}

/// Conditional branches, each to the one before it and none a path's end, entered at the last: every entry's
/// path joins that of the entry before.
Bytes backwardbranches(int32_t size) {
    Bytes image = taggedimage(size, size - 2);
    for (int32_t at = kTag; at + 2 <= size; at += 2)
        setword(image.data() + at, at == kTag ? 0x4E71 : 0x66FC);
    return image;
}

using MakeImage = Bytes (*)(int32_t size);

void walk_against_objdump(benchmark::State& state, MakeImage make) {
    const auto size = static_cast<int32_t>(state.range(0)) * 1024;
    const Bytes image = make(size);
    const test::TempDir folder;
    const std::string file = folder.file("code", image);
    const test::InDirectory inside(folder.path());
    setrom(image);
    Component component;
    component.pcName = "bench";
    component.iSize = size;
    findslot(0)->psComponents.push_back(component);
    Pair pair;
    for (auto _ : state)
        pair.run(
            state, [] { missassembleLibrary(0, 0); }, [&] { runprogram(objdump(file)); });
    pair.report(state, kMilli);
    state.counters["us_per_KiB"] = pair.ours() / kMicro / static_cast<double>(state.range(0));
}

void allsizes(benchmark::internal::Benchmark* bench) {
    for (const int64_t kib : {16, 32, 64, 128})
        bench->Arg(kib);
    bench->UseManualTime()->Iterations(rounds(21))->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(walk_against_objdump, functions, functions)->Apply(allsizes);
BENCHMARK_CAPTURE(walk_against_objdump, backward_branches, backwardbranches)->Apply(allsizes);

} // namespace
} // namespace vantorel::bench

int main(int argc, char** argv) { return vantorel::bench::runsilenced(argc, argv); }
