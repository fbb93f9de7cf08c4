// The analysis of a 512 KiB image with every other slot loaded and mapped, and a hash library of 10,000
// names: beside `cksum`, which looks once at every byte of the same twenty images.

#include "base/message.h"
#include "base/text.h"
#include "hash/library.h"
#include "neighbour.h"
#include "rom/analyse.h"
#include "rom/checksum.h"
#include "rom/map.h"
#include "rom/store.h"
#include "support/freshstate.h"
#include "support/hashbuilder.h"
#include "support/rombuilder.h"
#include "support/tempdir.h"

namespace vantorel::bench {
namespace {

constexpr int32_t kModules = 40;
constexpr int32_t kModuleSize = 12 * 1024;
constexpr uint32_t kNames = 10000;

/// Forty modules that fill the image. Those of another `edition` have the same names and other code, so that
/// none of them is found in another ROM before all have been compared.
test::BuiltRom edition(uint32_t edition) {
    test::RomBuilder rom(iSize512K, 0xF80000);
    for (int32_t i = 0; i < kModules; ++i)
        rom.module({.name = formatted("module%02d.library", i),
                    .idstring = formatted("module%02d 40.%u (15.7.93)\r\n", i, edition),
                    .size = kModuleSize,
                    .seed = edition * 1000 + static_cast<uint32_t>(i) + 1});
    return rom.build();
}

/// What the analysis works on: the images as files, and the library.
class Ground {
public:
    Ground() {
        const test::HashBuilder hashes(folder.folder("hashes"));
        for (uint32_t slot = 0; slot < iRomSlots; ++slot) {
            const test::BuiltRom rom = edition(slot);
            if (slot > 0) hashes.add(rom);
            images.push_back(rom.image);
            files.push_back(folder.file(formatted("rom%u", slot), rom.image));
        }
        // Names that hold the id strings of the analysed image, and do not fit; each is opened and tried.
        for (uint32_t n = 0; n < kNames - kModules * iRomSlots; ++n)
            hashes.write(formatted("0x%08x.module%02u_40.0_(15.7.93)", n * 2654435761U, n % 400),
                         "[Description]\nSize=4096\nROMTAG=4\n\n[RELOC32]\nRELOC=16\n");
        loadhashes(hashes.path());
    }

    void loadall() const {
        for (const Bytes& image : images)
            loadromdata(newrom(0, 0), image);
    }
    [[nodiscard]] const std::vector<std::string>& paths() const { return files; }

private:
    test::TempDir folder;
    std::vector<Bytes> images;
    std::vector<std::string> files;
};

void analyserom_against_cksum(benchmark::State& state) {
    test::freshstate();
    iLogLevel = 0;
    const Ground ground;
    ground.loadall();
    std::vector<std::string> neighbour = {"cksum"};
    neighbour.insert(neighbour.end(), ground.paths().begin(), ground.paths().end());
    Pair pair;
    for (auto _ : state)
        pair.run(
            state, [] { analyserom(0); }, [&] { runprogram(neighbour); });
    pair.report(state, kMilli);
    state.counters["names"] = static_cast<double>(psVanHashFile.size());
    state.counters["components"] = static_cast<double>(findslot(0)->iComponents());
}

BENCHMARK(analyserom_against_cksum)->UseManualTime()->Iterations(rounds(15))->Unit(benchmark::kMillisecond);

} // namespace
} // namespace vantorel::bench

// The analysis narrates the release of the map at every level.
int main(int argc, char** argv) { return vantorel::bench::runsilenced(argc, argv); }
