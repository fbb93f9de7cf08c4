#pragma once
// Writes hash libraries: the files that describe ROMs, containers and components, as users keep them.
//
//     TempDir dir;
//     HashBuilder hashes(dir.folder("hashes"));
//     hashes.add(standardrom());
//     hashes.container(file, {.filetype = "SuperKickstart", .ranges = {{"Kickstart1", 512, 262144}}});
//     loadhashes(hashes.path());

#include "support/rombuilder.h"

#include <string>
#include <utility>
#include <vector>

namespace vantorel::test {

/// What a ROM hash file says besides what the ROM itself tells.
struct RomText {
    std::string title = "Standard";
    std::string text = "A ROM made for tests";
    std::string filetype = "Kickstart";
    std::string format{};       ///< empty: no Format line
    bool rombase = true;        ///< false: no RomBase line
    std::vector<MapLine> map{}; ///< empty: the ROM's own map
};

/// A range of a container file, in bytes.
struct Range {
    std::string key; ///< "Kickstart", "Kickstart1", "Bonus1", "Kickstart2", "Bonus2", "Extended" or "Bonus"
    int32_t offset = 0;
    int32_t size = 0;
};

/// A hash file for a container or another whole file. An empty file type or format leaves its line out.
struct ContainerText {
    std::string title = "Container";
    std::string text = "A container made for tests";
    std::string
        filetype{}; ///< "SuperKickstart", "KickItKickstart", "Kickstart-Disk", "Extended/Kickstart", ...
    std::string format{}; ///< "CD32Encoded", "NewType", "Guru", "KickstartFloppy"
    std::vector<Range> ranges{};
};

[[nodiscard]] std::string romhash(const BuiltRom& rom, const RomText& text = {});
[[nodiscard]] std::string componenthash(const BuiltModule& module);
[[nodiscard]] std::string containerhash(const ContainerText& text);

/// A folder of hash files. Each call writes a file (making the folders that it needs) and gives its name.
class HashBuilder {
public:
    explicit HashBuilder(std::string folder) : root(std::move(folder)) {}

    [[nodiscard]] const std::string& path() const { return root; }

    /// Writes the ROM's hash file, called after the CRC32 of its image, and those of its components.
    std::string add(const BuiltRom& rom, const RomText& text = {}) const;
    /// The ROM's hash file alone.
    std::string rom(const BuiltRom& rom, const RomText& text = {}) const;
    /// The component hash files of all modules and of the data blocks with relocs.
    void components(const BuiltRom& rom) const;
    /// One component hash file, called after `BuiltModule::hash`.
    std::string component(const BuiltModule& module) const;
    /// A hash file called after the CRC32 of `file`.
    std::string container(View file, const ContainerText& text) const;
    /// Any file.
    std::string write(const std::string& name, const std::string& text) const;

private:
    std::string root;
};

} // namespace vantorel::test
