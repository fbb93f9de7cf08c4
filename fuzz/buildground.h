#pragma once
// The folder in which ROM-building scripts are fuzzed: what lies in it, and how it is put back.

#include "support/checksums.h"
#include "support/diskbuilder.h"
#include "support/hashbuilder.h"
#include "support/hunkbuilder.h"
#include "support/rombuilder.h"
#include "support/tempdir.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <unistd.h>

namespace vantorel::test {

/// A folder that is the working directory for the life of the process. It holds ROMs ("small", "moved" to
/// another base, "kick"), hunk files ("lib", "big" above 64K, "two" hunks, "broken"), bytes that are no hunk
/// file ("raw"), an "archive" of hunk files, a "disk" with files of each kind, the folder "out", and the hash
/// library, which knows the ROMs, their components and the archive.
class BuildGround {
public:
    BuildGround() {
        if (chdir(folder.path().c_str()) != 0) std::abort();
        folder.folder("out");
        addroms();
        addhunks();
        adddisk();
        for (const auto& entry : std::filesystem::recursive_directory_iterator("."))
            if (entry.is_regular_file()) age(entry.path());
    }

    /// Takes away what a script has made, and restores what it has overwritten.
    void restore() const {
        std::vector<std::filesystem::path> others;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(".")) {
            if (!entry.is_regular_file()) continue;
            const auto known = contents.find(entry.path().string());
            if (known == contents.end())
                others.push_back(entry.path());
            else if (entry.last_write_time() != old)
                rewrite(known->first, known->second);
        }
        for (const auto& path : others)
            std::filesystem::remove(path);
    }

private:
    static BuiltRom smallrom(uint32_t base) {
        return RomBuilder(8192, base)
            .module({.name = "exec.library", .idstring = "exec 40.10 (15.7.93)\r\n", .size = 1024})
            .gap(64)
            .module({.name = "timer.device",
                     .idstring = "timer 40.1\r\n",
                     .size = 1024,
                     .init = Init::Auto16,
                     .pointers = {{.module = "exec.library", .offset = 8}}})
            .data({.name = "table", .size = 128, .pointers = {{.offset = 4}}})
            .build();
    }

    void addroms() {
        const std::map<std::string, BuiltRom> roms = {{"small", smallrom(0xF80000)},
                                                      {"moved", smallrom(0xE00000)},
                                                      {"kick", standardrom(256 * 1024, 0xFC0000)}};
        for (const auto& [name, rom] : roms) {
            folder.file(name, rom.image);
            hashes.add(rom);
        }
        const BuiltRom& small = roms.at("small");
        const Bytes& first = small.module("exec.library").loadable;
        const Bytes& second = small.module("table").loadable;
        folder.file("lib", first);
        addarchive(first, second);
    }

    void addarchive(const Bytes& first, const Bytes& second) {
        Bytes archive = first;
        archive.insert(archive.end(), second.begin(), second.end());
        folder.file("archive", archive);
        std::string text =
            "[Description]\nTitle=Archive\nText=Of two\nFileType=Library Archive\n\n[Components]\n";
        text += "first=0," + std::to_string(first.size()) + ",Library:first\n";
        text += "second=" + std::to_string(first.size()) + "," + std::to_string(second.size()) + ",Data:\n";
        hashes.write(hex32(crc32of(archive)), text);
    }

    void addhunks() {
        const BuiltRom large = RomBuilder(131072, 0).module({.name = "big.library", .size = 66000}).build();
        folder.file("big", large.module("big.library").loadable);
        const Bytes two = HunkBuilder()
                              .header({.sizes = {4, 3}})
                              .code(longs({0x4E714E75, 4, 8, 0}))
                              .reloc32({{.target = 1, .offsets = {4, 8}}, {.target = 0, .offsets = {12}}})
                              .symbols({{.name = "_main", .value = 4}})
                              .end()
                              .data(longs({7, 8, 0}))
                              .reloc32({{.target = 0, .offsets = {8}}})
                              .end()
                              .bytes();
        folder.file("two", two);
        folder.file("broken", View(two).first(two.size() - 6));
        folder.file("raw", std::string_view("These bytes are no hunk file, and an odd number."));
    }

    void adddisk() {
        DiskBuilder disk(FileSystem::Ofs, "Fuzz");
        for (const char* name : {"lib", "two", "raw", "small"})
            disk.addfile(name, folder.bytes(name));
        folder.file("disk", disk.image());
    }

    void age(const std::filesystem::path& path) {
        contents[path.string()] = folder.bytes(path.string());
        std::filesystem::last_write_time(path, old);
    }

    void rewrite(const std::string& path, const Bytes& bytes) const {
        folder.file(path, bytes);
        std::filesystem::last_write_time(path, old);
    }

    TempDir folder;
    HashBuilder hashes{folder.folder("Vantorel Hashes")};
    std::map<std::string, Bytes> contents; // by path, "./" at its front
    // No file that a script writes is as old.
    std::filesystem::file_time_type old =
        std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
};

} // namespace vantorel::test
