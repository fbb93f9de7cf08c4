#pragma once
// What the comparison of a component with its copies has to print, and which relocs it verifies, worked out
// by its rules.

#include "base/text.h"
#include "rom/store.h"

#include <optional>
#include <string>
#include <vector>

namespace vantorel::test {

/// What `analysecomponent` has to find out about a component that lies in its image and has a ROMTAG.
class PlainComponent {
public:
    PlainComponent(int32_t itsrom, int32_t itscomponent)
        : rom(itsrom), component(itscomponent), slot(*findslot(rom)), record(*findrecord(rom, component)) {
        text = formatted("Analysing %s\n", shown(record.pcLibString));
        for (int32_t r = 0; r < iMaxRom; ++r)
            for (int32_t c = 0; r != rom && c < findslot(r)->iComponents(); ++c)
                if (record.pcLibString && findrecord(r, c)->pcLibString == record.pcLibString) copy(r, c);
    }

    /// What is printed at verbosity 1 before relocs are listed, when none is added.
    std::string text;
    /// Component offsets, in the order in which they are verified; of several copies more than once.
    std::vector<int32_t> verified;

    /// The rest at verbosity 1 of a component with `count` relocs in its list.
    [[nodiscard]] std::string potential(int32_t count) const {
        const int64_t start = record.iStart;
        const int64_t end = start + record.iSize;
        std::string list = formatted("Identifying potential relocs %08x to %08x\n",
                                     static_cast<uint32_t>(start), static_cast<uint32_t>(end));
        int32_t found = 0;
        for (int64_t o = start; o < end; o += 2) {
            const auto value = number(slot, o, 4);
            if (!value || *value - slot.iROMBase < start || *value - slot.iROMBase > end) continue;
            ++found;
            list += formatted("Potential RELOC=%d\n", static_cast<int32_t>(o - start));
        }
        return list + formatted("Component %d, has %d potential 32bit relocs (currently %d)\n", component,
                                found, count);
    }

    /// What verbosity 2 adds behind that.
    [[nodiscard]] std::string bcpl() const {
        const int64_t start = record.iStart;
        const int64_t end = start + record.iSize;
        std::string list = formatted("Identifying potential BCPL relocs %08x to %08x\n\n[BCPL]\n",
                                     static_cast<uint32_t>(start), static_cast<uint32_t>(end));
        for (int64_t o = start / 4 * 4; o < end; o += 4) {
            const auto value = number(slot, o, 4);
            if (!value) continue;
            const uint32_t target = *value * 4 - slot.iROMBase;
            if (start <= target && target <= end)
                list += formatted("RELOC=%d #%d\n", static_cast<int32_t>(o - start),
                                  static_cast<int32_t>(target - start));
        }
        return list;
    }

private:
    static std::optional<uint32_t> number(const KickstartRom& rom, int64_t offset, int64_t count) {
        if (offset < 0 || offset + count > rom.iSize()) return std::nullopt;
        uint32_t value = 0;
        for (int64_t i = offset; i < offset + count; ++i)
            value = value << 8 | rom.pcROM[static_cast<size_t>(i)];
        return value;
    }

    void copy(int32_t r, int32_t c) {
        const KickstartRom& there = *findslot(r);
        const Component& other = *findrecord(r, c);
        text += formatted("Found matching names %d:%d\n", r, c);
        if (other.iFixedStart >= 0)
            text += formatted("%d:%d has a verified start\n  editcomponent %d START=%d\n", r, c, component,
                              record.iROMTag - (other.iROMTag - other.iFixedStart));
        if (other.iFixedEnd >= 0)
            text += formatted("%d:%d has a verified end\n  editcomponent %d END=%d\n", r, c, component,
                              record.iROMTag + (other.iFixedEnd - other.iROMTag));
        const int32_t d = record.iROMTag - other.iROMTag;
        text += formatted("ROM Offset=%d (%s)\n", d, d == 0 ? "Bad" : "Good");
        const uint32_t bases = slot.iROMBase - there.iROMBase;
        text += formatted("ROMBase Offset=%08x (%s)\n", bases, bases == 0 ? "Bad" : "Good");
        text += formatted("Matching %d of %d\n", compare(there, d), record.iSize);
    }

    int32_t compare(const KickstartRom& there, int32_t d) {
        int32_t matching = 0;
        int32_t k = 0;
        while (k < record.iSize) {
            const int64_t here = int64_t{record.iStart} + k;
            const auto a = number(slot, here, 4);
            const auto b = number(there, here - d, 4);
            if (a && b && *a - static_cast<uint32_t>(d) - slot.iROMBase == *b - there.iROMBase) {
                text += formatted("Verified RELOC=%d\n", k);
                verified.push_back(k);
                matching += 4;
                k += 4;
                continue;
            }
            const auto byte = number(there, here - d, 1);
            if (byte && byte == number(slot, here, 1)) ++matching;
            ++k;
        }
        return matching;
    }

    int32_t rom;
    int32_t component;
    const KickstartRom& slot;
    const Component& record;
};

} // namespace vantorel::test
