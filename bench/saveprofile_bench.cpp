// Burn profiles of about 1 MiB saved in every layout. The saving alone, beside a plain copy of the files that
// it makes, in this process too; and the program as a whole, loading the ROMs from files first, beside cp of
// those files.

#include "base/files.h"
#include "base/message.h"
#include "base/settings.h"
#include "base/text.h"
#include "neighbour.h"
#include "output/profile.h"
#include "output/saveprofile.h"
#include "rom/header.h"
#include "rom/store.h"
#include "support/freshstate.h"
#include "support/noise.h"
#include "support/tempdir.h"

#include <algorithm>
#include <array>
#include <filesystem>

namespace vantorel::bench {
namespace {

constexpr int kRounds = 201;

/// The ROMs, in slot order.
constexpr std::array<int32_t, 6> kSizes = {iSize1M, iSize512K, iSize512K, iSize256K, 100000, 4000};

struct Layout {
    const char* word; // of the command
    int32_t type;
    std::array<int32_t, iProfileSlots> slots;
    bool byteswap = false;
    int32_t savesize = 0;
};

constexpr Layout kSingle = {"single", RomType::iSingle, {0, -1, -1, -1}};
constexpr Layout kSingleSwapped = {"single", RomType::iSingle, {0, -1, -1, -1}, true};
constexpr Layout kSingle512 = {"single", RomType::iSingle, {0, -1, -1, -1}, false, 512};
constexpr Layout kDual = {"dual", RomType::iDual, {0, -1, -1, -1}};
constexpr Layout kDual512 = {"dual", RomType::iDual, {0, -1, -1, -1}, false, 512};
constexpr Layout kDualSwapped = {"dual", RomType::iDual, {0, -1, -1, -1}, true};
constexpr Layout kCD32 = {"cd32", RomType::iCD32, {1, 2, -1, -1}};
constexpr Layout kSuperkickFile = {"superkick.file", RomType::iSuperkickFile, {1, 2, -1, -1}};
constexpr Layout kSuperkickADF = {"superkick.adf", RomType::iSuperkickADF, {3, 4, 1, 5}};
constexpr Layout kA1000 = {"a1000", RomType::iA1000, {3, -1, -1, -1}};

/// The ROMs in their slots and as files, and a folder for what is made of them.
class Ground {
public:
    Ground() {
        test::freshstate();
        iLogLevel = 0;
        test::Noise noise(1);
        for (const int32_t size : kSizes) {
            const int32_t slot = newrom(size, 0);
            for (uint8_t& byte : findslot(slot)->pcROM)
                byte = static_cast<uint8_t>(noise());
            files.push_back(folder.file(formatted("rom%d", slot), findslot(slot)->pcROM));
        }
        folder.folder("out");
        folder.folder("copies");
        savedir(folder.file("out"));
    }
    ~Ground() { test::freshstate(); }
    Ground(const Ground&) = delete;
    Ground& operator=(const Ground&) = delete;

    /// Paths of all files in the folder `out`.
    [[nodiscard]] std::vector<std::string> made() const {
        std::vector<std::string> paths;
        for (const auto& entry : std::filesystem::directory_iterator(folder.file("out")))
            paths.push_back(entry.path().string());
        return paths;
    }
    /// Where the copy of a file goes.
    [[nodiscard]] std::string copyof(const std::string& path) const {
        return folder.file("copies/" + std::filesystem::path(path).filename().string());
    }
    /// The file of the ROM in a slot.
    [[nodiscard]] const std::string& fileof(int32_t slot) const { return files[static_cast<size_t>(slot)]; }
    [[nodiscard]] const test::TempDir& directory() const { return folder; }

private:
    test::TempDir folder;
    std::vector<std::string> files;
};

/// Piece by piece, the way that cp does it where the file system cannot copy by itself.
void copyfile(const std::string& from, const std::string& to) {
    static std::array<uint8_t, 128 * 1024> buffer;
    InputFile input(from);
    OutputFile output(to);
    while (const size_t count = input.read(buffer))
        output.write(View(buffer).first(count));
    if (output.close()) return;
    std::fprintf(stderr, "%s was not written\n", to.c_str());
    std::exit(1);
}

int64_t totalsize(const std::vector<std::string>& paths) {
    int64_t total = 0;
    for (const auto& path : paths)
        total += static_cast<int64_t>(std::filesystem::file_size(path));
    return total;
}

void saveprofile_against_copying(benchmark::State& state, const Layout& layout) {
    const Ground ground;
    const auto& slots = layout.slots;
    romprofile(layout.type, slots[0], slots[1], slots[2], slots[3]);
    const auto save = [&] { return saveprofile(layout.byteswap, layout.savesize, "rom"); };
    if (save() != 0) state.SkipWithError("the profile was not saved");
    const auto paths = ground.made();
    Pair pair;
    for (auto _ : state)
        pair.run(
            state, [&] { benchmark::DoNotOptimize(save()); },
            [&] {
                for (const auto& path : paths)
                    copyfile(path, ground.copyof(path));
            });
    pair.report(state, kMicro);
    state.counters["files"] = static_cast<double>(paths.size());
    state.counters["KiB"] = static_cast<double>(totalsize(paths)) / 1024;
}

/// The session that loads the ROMs of a layout and saves it.
std::string scriptof(const Ground& ground, const Layout& layout) {
    std::string loads;
    std::string profile = formatted("romprofile %s", layout.word);
    int32_t loaded = 0;
    for (const int32_t slot : layout.slots) {
        if (slot < 0) continue;
        loads += "loadrom " + ground.fileof(slot) + "\n";
        profile += formatted(" %d", loaded++);
    }
    const std::string save = formatted("saveprofile rom%s%s", layout.byteswap ? " byteswap" : "",
                                       layout.savesize != 0 ? " 512" : "");
    const std::string target = "savedir " + ground.directory().file("out");
    return ground.directory().file("script", loads + profile + "\n" + target + "\n" + save + "\nexit\n");
}

void session_against_cp(benchmark::State& state, const Layout& layout) {
    const Ground ground;
    const test::InDirectory nohashes(ground.directory());
    const std::string script = scriptof(ground, layout);
    const auto session = [&] { runprogram({VANTOREL_PROGRAM}, script.c_str()); };
    session();
    std::vector<std::string> copy = ground.made();
    if (copy.empty()) state.SkipWithError("the profile was not saved");
    copy.insert(copy.begin(), "cp");
    copy.push_back(ground.directory().file("copies"));
    Pair pair;
    for (auto _ : state)
        pair.run(state, session, [&] { runprogram(copy); });
    pair.report(state, kMilli);
}

void someruns(benchmark::internal::Benchmark* bench) {
    bench->UseManualTime()->Iterations(rounds(kRounds))->Unit(benchmark::kMicrosecond);
}

#define VANTOREL_LAYOUT(layout)                                                                              \
    BENCHMARK_CAPTURE(saveprofile_against_copying, layout, k##layout)->Apply(someruns);                      \
    BENCHMARK_CAPTURE(session_against_cp, layout, k##layout)->Apply(someruns)

VANTOREL_LAYOUT(Single);
VANTOREL_LAYOUT(SingleSwapped);
VANTOREL_LAYOUT(Single512);
VANTOREL_LAYOUT(Dual);
VANTOREL_LAYOUT(Dual512);
VANTOREL_LAYOUT(DualSwapped);
VANTOREL_LAYOUT(CD32);
VANTOREL_LAYOUT(SuperkickFile);
VANTOREL_LAYOUT(SuperkickADF);
VANTOREL_LAYOUT(A1000);

} // namespace
} // namespace vantorel::bench

// Of an A1000 disk a line is told at every level.
int main(int argc, char** argv) { return vantorel::bench::runsilenced(argc, argv); }
