#include "adf/directory.h"

#include "adf/blocks.h"
#include "adf/image.h"
#include "base/message.h"
#include "base/text.h"

#include <bitset>
#include <optional>

namespace vantorel {

std::vector<DiskEntry> psFiles;

namespace {

/// A directory being listed. Kept on a stack of our own: a hostile disk nests as deep as it has blocks.
struct Level {
    int32_t iHeader = 0;        ///< its header block
    int32_t iEntry = iNoParent; ///< its entry in the table
    int32_t iSlot = 0;          ///< next slot of its hash table
    int32_t iChained = 0;       ///< header whose chain field comes next; 0: the chain is at its end
    bool isreported = false;    ///< its hash table has had its "ERROR" line
};

/// Path of a directory without its trailing "/": what stands before "/" + name. Empty for the root.
std::string directorypath(int32_t entry) {
    std::vector<int32_t> ancestors;
    for (; entry != iNoParent; entry = psFiles[static_cast<size_t>(entry)].iParent)
        ancestors.push_back(entry);
    std::string path;
    for (auto ancestor = ancestors.rbegin(); ancestor != ancestors.rend(); ++ancestor)
        path += "/" + psFiles[static_cast<size_t>(*ancestor)].cName;
    return path;
}

class Lister {
public:
    void list() {
        visited.set(adf::iRootBlock);
        levels.push_back({.iHeader = adf::iRootBlock});
        while (!levels.empty()) {
            if (const auto header = nextheader(levels.back()))
                addheader(*header);
            else
                levels.pop_back();
        }
    }

private:
    /// The next header of the directory, first along the chain, then from the slots; none when all are done.
    std::optional<int32_t> nextheader(Level& level) {
        if (level.iChained != 0) {
            const uint32_t link = blocklong(level.iChained, adf::kHashChain);
            if (isgood(link)) return visit(level, link);
            if (link != 0) reportchain(level, link);
            level.iChained = 0;
        }
        while (level.iSlot < adf::iTableSize) {
            const uint32_t link = blocklong(level.iHeader, adf::kHashTable + 4 * level.iSlot++);
            if (isgood(link)) return visit(level, link);
            if (link != 0) reporttable(level, link);
        }
        return std::nullopt;
    }

    [[nodiscard]] bool isgood(uint32_t link) const { return isblock(link) && !visited.test(link); }

    int32_t visit(Level& level, uint32_t link) {
        visited.set(link);
        level.iChained = static_cast<int32_t>(link);
        return level.iChained;
    }

    void addheader(int32_t header) {
        const int32_t parent = levels.back().iEntry;
        const auto type = static_cast<int32_t>(blocklong(header, adf::kSecondaryType));
        std::string name = blockname(header);
        if (type != adf::kFile && type != adf::kDirectory) {
            message(kAlways, "%d? %s/%s\n", type, directorypath(parent).c_str(), name.c_str());
            return;
        }
        psFiles.push_back({.cName = std::move(name),
                           .iParent = parent,
                           .iFNBlock = header,
                           .iSeconds = blockseconds(header),
                           .isdirectory = type == adf::kDirectory});
        if (type == adf::kDirectory)
            levels.push_back({.iHeader = header, .iEntry = static_cast<int32_t>(psFiles.size()) - 1});
    }

    static void report(const std::string& path, const char* source, uint32_t link) {
        // A disk of nothing but nested directories would make megabytes of these lines.
        message(kResult, "ERROR: %.*s: %s block %u, %s\n", static_cast<int>(iPathMax), path.c_str(), source,
                link, isblock(link) ? "which is listed already" : "outside the disk");
    }

    /// The chain ends here; the entry that links wrongly is itself sound and stays.
    static void reportchain(const Level& level, uint32_t link) {
        report(directorypath(level.iEntry) + "/" + blockname(level.iChained), "its hash chain leads to",
               link);
    }

    /// Only the first bad slot of a directory: what is no directory at all would otherwise fill the screen.
    static void reporttable(Level& level, uint32_t link) {
        if (!level.isreported) report(directorypath(level.iEntry) + "/", "its hash table points to", link);
        level.isreported = true;
    }

    std::vector<Level> levels;
    std::bitset<adf::iBlocks> visited;
};

} // namespace

std::string adflist(int32_t n) {
    if (n < 0 || static_cast<size_t>(n) >= psFiles.size()) return {};
    const DiskEntry& entry = psFiles[static_cast<size_t>(n)];
    return directorypath(n) + (entry.isdirectory ? "/" : "");
}

void dir() { Lister().list(); }

} // namespace vantorel
