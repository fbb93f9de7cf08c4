// Disks whose blocks lie, each lie with a good checksum: the listing ends, names the damaged entry once, and
// keeps everything that is sound.

#include "adf/loaded.h"

#include <gtest/gtest.h>

namespace vantorel::test {
namespace {

class AdfDamage : public testing::TestWithParam<FileSystem> {
protected:
    AdfDamage() : names(chained("Name", 3)) {
        disk.addfile(names[0], "zero");
        disk.addfile(names[1], "one");
        disk.addfile(names[2], "two");
        disk.addfile("Dir/Sub/deep", "deep");
        disk.addfile("Dir/file", "file");
        disk.addfile("Last", "last");
        sound = load(disk).paths;
    }

    /// Exactly one line appears, above level 0 only, and it names `path` and says `what`.
    static void expectoneerror(const std::string& console, const std::string& path, const std::string& what) {
        const Lines lines = linesof(console);
        ASSERT_EQ(lines.size(), 1u) << console;
        EXPECT_TRUE(lines[0].starts_with("ERROR: " + path + ": ")) << lines[0];
        EXPECT_NE(lines[0].find(what), std::string::npos) << lines[0];
    }

    /// Loading the disk lists `paths`, and says that `path` is damaged.
    void expectlisting(const Lines& paths, const std::string& path, const std::string& what) const {
        const Loaded loaded = load(disk);
        EXPECT_EQ(loaded.paths, paths);
        EXPECT_EQ(loaded.volume, "Empty");
        expectoneerror(loaded.console, path, what);
        const AtLevel level(0);
        EXPECT_EQ(load(disk).console, "");
        EXPECT_EQ(save("/Last").bytes, bytesof("last"));
    }

    /// The sound listing without some of its paths.
    [[nodiscard]] Lines without(const Lines& missing) const {
        Lines paths = sound;
        for (const auto& path : missing)
            EXPECT_EQ(std::erase(paths, path), 1u) << path;
        return paths;
    }

    /// A file that needs `blocks` data blocks, the last half full.
    Bytes addfile(const std::string& name, size_t blocks) {
        Bytes bytes = pattern(blocks * payload() - payload() / 2);
        disk.addfile(name, bytes);
        return bytes;
    }

    /// Saving `name` gives the first `size` of `bytes`, and says that it is damaged.
    void expectsaved(const std::string& name, const Bytes& bytes, size_t size,
                     const std::string& what) const {
        EXPECT_EQ(load(disk).console, "");
        const Saved saved = save("/" + name);
        EXPECT_EQ(saved.result, 0);
        EXPECT_EQ(saved.bytes, Bytes(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size)));
        expectoneerror(saved.console, "/" + name, what);
        const AtLevel level(0);
        EXPECT_EQ(save("/" + name).console, "");
        EXPECT_EQ(save("/Last").bytes, bytesof("last"));
    }

    [[nodiscard]] size_t payload() const { return payloadof(GetParam()); }
    [[nodiscard]] uint32_t number(const std::string& path) const {
        return static_cast<uint32_t>(disk.blockof(path));
    }
    void pokechain(const std::string& path, uint32_t link) {
        disk.poke(disk.blockof(path), adf::kHashChain, link);
    }

    DiskBuilder disk{GetParam()};
    Lines names; ///< of three files in one chain
    Lines sound;
};
INSTANTIATE_TEST_SUITE_P(Both, AdfDamage, testing::Values(FileSystem::Ofs, FileSystem::Ffs),
                         [](const auto& tested) { return nameof(tested.param); });

const std::vector<uint32_t> kOutside = {1, 1760, 1761, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};

TEST_P(AdfDamage, NothingIsWrongYet) {
    EXPECT_EQ(load(disk).console, "");
    EXPECT_EQ(sound.size(), 8u);
}

TEST_P(AdfDamage, SelfLinkedHashChain) {
    pokechain(names[2], number(names[2]));
    expectlisting(sound, "/" + names[2], "listed already");
}

TEST_P(AdfDamage, SelfLinkedHashChainCutsOffItsRest) {
    pokechain(names[1], number(names[1]));
    expectlisting(without({"/" + names[2]}), "/" + names[1], "listed already");
}

TEST_P(AdfDamage, TwoBlockLoop) {
    pokechain(names[1], number(names[0]));
    expectlisting(without({"/" + names[2]}), "/" + names[1], "block " + std::to_string(number(names[0])));
}

TEST_P(AdfDamage, HashChainIntoAnotherChain) {
    // Whichever of the two comes second finds the block listed.
    DiskBuilder other(GetParam());
    other.addfile("A", "a");
    other.addfile("B", "b");
    ASSERT_LT(DiskBuilder::slotof("A"), DiskBuilder::slotof("B"));
    other.poke(other.blockof("B"), adf::kHashChain, static_cast<uint32_t>(other.blockof("A")));
    const Loaded loaded = load(other);
    EXPECT_EQ(loaded.paths, (Lines{"/A", "/B"}));
    expectoneerror(loaded.console, "/B", "listed already");
}

TEST_P(AdfDamage, HashChainBeyondDisk) {
    for (const uint32_t link : kOutside) {
        pokechain(names[0], link);
        expectlisting(without({"/" + names[1], "/" + names[2]}), "/" + names[0],
                      "block " + std::to_string(link) + ", outside the disk");
    }
}

TEST_P(AdfDamage, HashChainOfADirectoryBeyondDisk) {
    pokechain("Dir", 5000);
    expectlisting(sound, "/Dir", "outside the disk");
}

TEST_P(AdfDamage, HashSlotBeyondDisk) {
    for (const uint32_t link : kOutside) {
        disk.poke(disk.blockof("Dir"), DiskBuilder::slotoffset("Sub"), link);
        expectlisting(without({"/Dir/Sub/", "/Dir/Sub/deep"}), "/Dir/",
                      "block " + std::to_string(link) + ", outside the disk");
    }
}

TEST_P(AdfDamage, HashSlotOfTheRootBeyondDisk) {
    disk.poke(adf::iRootBlock, DiskBuilder::slotoffset("Dir"), 1760);
    expectlisting(without({"/Dir/", "/Dir/Sub/", "/Dir/Sub/deep", "/Dir/file"}), "/", "outside the disk");
}

TEST_P(AdfDamage, EverySlotOfADirectoryBeyondDiskIsOneLine) {
    for (int32_t slot = 0; slot < adf::iTableSize; slot++)
        disk.poke(disk.blockof("Dir/Sub"), adf::kHashTable + 4 * slot, 0xDEADBEEF);
    expectlisting(without({"/Dir/Sub/deep"}), "/Dir/Sub/", "block 3735928559, outside the disk");
}

TEST_P(AdfDamage, DirectoryInsideItself) {
    disk.poke(disk.blockof("Dir/Sub"), DiskBuilder::slotoffset("Sub"), number("Dir/Sub"));
    expectlisting(sound, "/Dir/Sub/", "listed already");
}

TEST_P(AdfDamage, DirectoryInsideItsParent) {
    disk.poke(disk.blockof("Dir/Sub"), DiskBuilder::slotoffset("Dir"), number("Dir"));
    expectlisting(sound, "/Dir/Sub/", "listed already");
}

TEST_P(AdfDamage, RootInsideADirectory) {
    disk.poke(disk.blockof("Dir/Sub"), DiskBuilder::slotoffset("Root"), adf::iRootBlock);
    expectlisting(sound, "/Dir/Sub/", "block 880, which is listed already");
}

TEST_P(AdfDamage, FileInTwoDirectories) {
    disk.poke(disk.blockof("Dir"), DiskBuilder::slotoffset("Sub"), number("Dir/file"));
    disk.poke(disk.blockof("Dir"), DiskBuilder::slotoffset("other"), number("Dir/file"));
    expectlisting(without({"/Dir/Sub/", "/Dir/Sub/deep"}), "/Dir/", "listed already");
}

TEST_P(AdfDamage, EachDamagedEntryHasItsOwnLine) {
    pokechain(names[2], 1760);
    pokechain("Last", 1760);
    disk.poke(disk.blockof("Dir"), DiskBuilder::slotoffset("free slot"), 1760);
    const Loaded loaded = load(disk);
    EXPECT_EQ(loaded.paths, sound);
    EXPECT_EQ(linesof(loaded.console).size(), 3u) << loaded.console;
}

TEST_P(AdfDamage, DataPointerBeyondDisk) {
    const Bytes bytes = addfile("File", 5);
    for (const uint32_t link : {0u, 1u, 1760u, 0x80000000u, 0xFFFFFFFFu}) {
        disk.poke(disk.blockof("File"), adf::kFirstPointer - 4 * 2, link);
        expectsaved("File", bytes, 2 * payload(), "block " + std::to_string(link) + ", outside the disk");
    }
}

TEST_P(AdfDamage, DataPointerBeyondDiskInAnExtension) {
    const Bytes bytes = addfile("File", 80);
    disk.poke(disk.extensionof("File", 0), adf::kFirstPointer - 4 * 3, 70000);
    expectsaved("File", bytes, 75 * payload(), "block 70000, outside the disk");
}

TEST_P(AdfDamage, ExtensionChainComesBack) {
    const Bytes bytes = addfile("File", 216);
    const auto header = number("File");
    const auto first = static_cast<uint32_t>(disk.extensionof("File", 0));
    for (const uint32_t link : {header, first}) {
        disk.poke(disk.extensionof("File", 0), adf::kExtension, link);
        expectsaved("File", bytes, 144 * payload(), "extension chain leads to block " + std::to_string(link));
    }
}

TEST_P(AdfDamage, ExtensionChainComesBackBehindTheWholeFile) {
    const Bytes bytes = addfile("File", 216);
    disk.poke(disk.extensionof("File", 1), adf::kExtension,
              static_cast<uint32_t>(disk.extensionof("File", 0)));
    expectsaved("File", bytes, bytes.size(), "visited already");
}

TEST_P(AdfDamage, ExtensionBeyondDisk) {
    const Bytes bytes = addfile("File", 100);
    for (const uint32_t link : kOutside) {
        disk.poke(disk.blockof("File"), adf::kExtension, link);
        expectsaved("File", bytes, 72 * payload(), "block " + std::to_string(link) + ", outside the disk");
    }
}

TEST_P(AdfDamage, ExtensionMissing) {
    const Bytes bytes = addfile("File", 100);
    disk.poke(disk.blockof("File"), adf::kExtension, 0);
    expectsaved("File", bytes, 72 * payload(), "run out");
}

TEST_P(AdfDamage, CountAboveTable) {
    const Bytes bytes = addfile("File", 100);
    for (const uint32_t count : {73u, 79u, 0x80000000u, 0xFFFFFFFFu}) {
        disk.poke(disk.blockof("File"), adf::kPointerCount, count);
        expectsaved("File", bytes, bytes.size(), "counts " + std::to_string(count));
    }
}

TEST_P(AdfDamage, CountAboveTableOfAShortFile) {
    const Bytes bytes = addfile("File", 5);
    disk.poke(disk.blockof("File"), adf::kPointerCount, 73);
    expectsaved("File", bytes, bytes.size(), "counts 73");
}

TEST_P(AdfDamage, CountBelowTheFileSize) {
    const Bytes bytes = addfile("File", 5);
    disk.poke(disk.blockof("File"), adf::kPointerCount, 3);
    expectsaved("File", bytes, 3 * payload(), "run out");
    disk.poke(disk.blockof("File"), adf::kPointerCount, 0);
    expectsaved("File", bytes, 0, "run out");
}

TEST_P(AdfDamage, FileSizeBeyondData) {
    const Bytes bytes = pattern(3 * payload());
    disk.addfile("File", bytes);
    for (const uint32_t more : {1u, 1000u, 0x7FFF0000u}) {
        disk.poke(disk.blockof("File"), adf::kFileSize, static_cast<uint32_t>(bytes.size()) + more);
        expectsaved("File", bytes, bytes.size(), "run out");
    }
}

TEST_P(AdfDamage, FileSizeNegative) {
    const Bytes bytes = pattern(3 * payload());
    disk.addfile("File", bytes);
    for (const uint32_t size : {0xFFFFFFFFu, 0x80000000u}) {
        disk.poke(disk.blockof("File"), adf::kFileSize, size);
        expectsaved("File", bytes, bytes.size(), "of " + std::to_string(size) + " bytes");
    }
}

TEST_P(AdfDamage, FileSizeBelowDataCutsTheFile) {
    const Bytes bytes = addfile("File", 5);
    disk.poke(disk.blockof("File"), adf::kFileSize, 700);
    load(disk);
    const Saved saved = save("/File");
    EXPECT_EQ(saved.bytes, Bytes(bytes.begin(), bytes.begin() + 700));
    EXPECT_EQ(saved.console, "");
}

TEST_P(AdfDamage, DirectoryThatPointsToDataHasNone) {
    const int32_t header = disk.blockof("Dir");
    disk.poke(header, adf::kFileSize, 4);
    disk.poke(header, adf::kPointerCount, 1);
    disk.poke(header, adf::kFirstPointer, static_cast<uint32_t>(disk.datablockof("Last", 0)));
    load(disk);
    const Saved saved = save("/Dir/");
    EXPECT_EQ(saved.result, 0);
    EXPECT_EQ(saved.bytes, Bytes{});
    EXPECT_EQ(saved.console, "");
}

// Extension blocks that all point to one data block would make 60 MB of a floppy.
TEST_P(AdfDamage, SameDataOverAndOver) {
    addfile("File", 72);
    disk.poke(disk.blockof("File"), adf::kFileSize, 0xFFFFFFFF);
    int32_t previous = disk.blockof("File");
    for (int32_t block = 1000; block < 1500; block++) {
        disk.poke(previous, adf::kExtension, static_cast<uint32_t>(block));
        disk.poke(block, adf::kPointerCount, 72);
        for (int32_t i = 0; i < adf::iTableSize; i++)
            disk.poke(block, adf::kFirstPointer - 4 * i, 1600);
        previous = block;
    }
    load(disk);
    const Saved saved = save("/File");
    EXPECT_LE(saved.bytes.size(), size_t{adf::iImageSize});
    expectoneerror(saved.console, "/File", "more data blocks than the disk");
}

} // namespace
} // namespace vantorel::test
