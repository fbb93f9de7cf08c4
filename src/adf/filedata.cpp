#include "adf/filedata.h"

#include "adf/blocks.h"
#include "adf/directory.h"
#include "adf/image.h"
#include "base/message.h"
#include "base/text.h"

#include <algorithm>
#include <bitset>

namespace vantorel {

namespace {

/// One walk over a file's tables and its chain of extension blocks.
class Collector {
public:
    explicit Collector(Bytes& target) : out(target) {}

    /// Everything from `header` on; returns the first thing that was wrong.
    std::string collect(int32_t header) {
        auto link = static_cast<uint32_t>(header);
        while (isblock(link) && !visited.test(link)) {
            visited.set(link);
            const auto block = static_cast<int32_t>(link);
            if (!addtable(block)) return trouble;
            link = blocklong(block, adf::kExtension);
        }
        if (link != 0)
            note(formatted("its extension chain leads to block %u, %s", link,
                           isblock(link) ? "which it has visited already" : "outside the disk"));
        return trouble;
    }

private:
    /// Only the first trouble is worth a line: the others often follow from it.
    void note(std::string what) {
        if (trouble.empty()) trouble = std::move(what);
    }

    /// The blocks that one header or extension block points to. Returns whether the file may go on behind
    /// them.
    bool addtable(int32_t block) {
        const uint32_t stated = blocklong(block, adf::kPointerCount);
        if (stated > uint32_t{adf::iTableSize})
            note(formatted("block %d counts %u data pointers", block, stated));
        const auto count = static_cast<int32_t>(std::min(stated, uint32_t{adf::iTableSize}));
        for (int32_t i = 0; i < count; i++)
            if (!addblock(blocklong(block, adf::kFirstPointer - 4 * i))) return false;
        return true;
    }

    bool addblock(uint32_t pointer) {
        if (!isblock(pointer)) {
            note(formatted("its data continues in block %u, outside the disk", pointer));
            return false;
        }
        // Tables that point to the same blocks again and again would make a file of almost any length.
        if (added++ >= adf::iBlocks) {
            note("it has more data blocks than the disk");
            return false;
        }
        const View payload = blockpayload(static_cast<int32_t>(pointer));
        out.insert(out.end(), payload.begin(), payload.end());
        return true;
    }

    Bytes& out;
    std::string trouble;
    std::bitset<adf::iBlocks> visited; ///< header and extension blocks
    int32_t added = 0;                 ///< data blocks
};

} // namespace

std::string adfadddata(int32_t header, Bytes& out) { return Collector(out).collect(header); }

Bytes adffiledata(int32_t n) {
    if (n < 0 || static_cast<size_t>(n) >= psFiles.size()) return {};
    const DiskEntry& entry = psFiles[static_cast<size_t>(n)];
    if (entry.isdirectory) return {};
    Bytes data;
    std::string trouble = adfadddata(entry.iFNBlock, data);
    const size_t size = blocklong(entry.iFNBlock, adf::kFileSize);
    if (data.size() < size && trouble.empty()) trouble = "its data blocks run out";
    data.resize(std::min(data.size(), size));
    if (!trouble.empty())
        message(kResult, "ERROR: %s: %s (%zu of %zu bytes found)\n", adflist(n).c_str(), trouble.c_str(),
                data.size(), size);
    return data;
}

} // namespace vantorel
