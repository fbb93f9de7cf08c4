#include "analysis/analysecomponent.h"

#include "base/bytes.h"
#include "base/message.h"
#include "component/extract.h"
#include "component/relocedit.h"
#include "rom/likeness.h"
#include "rom/store.h"

#include <vector>

namespace vantorel {

namespace {

// A component of another ROM with the same identity string.
struct Match {
    int32_t rom;
    int32_t component;
    const KickstartRom& slot;
    const Component& record;
};

std::vector<Match> findcopies(int32_t rom, const Component& record) {
    std::vector<Match> copies;
    if (!record.pcLibString) return copies;
    for (int32_t other = 0; other < iMaxRom; ++other) {
        if (other == rom) continue;
        const KickstartRom& slot = *findslot(other);
        for (int32_t number = 0; number < slot.iComponents(); ++number) {
            const Component& copy = *findrecord(other, number);
            if (copy.pcLibString == record.pcLibString) copies.push_back({other, number, slot, copy});
        }
    }
    return copies;
}

// The bounds that a copy proposes: as far from the ROMTAG as its own.
int32_t proposedstart(const Component& record, const Component& copy) {
    return static_cast<int32_t>(int64_t{record.iROMTag} - (int64_t{copy.iROMTag} - copy.iFixedStart));
}

int32_t proposedend(const Component& record, const Component& copy) {
    return static_cast<int32_t>(int64_t{record.iROMTag} + (int64_t{copy.iFixedEnd} - copy.iROMTag));
}

void tellbounds(const Match& copy, const Component& record, int32_t component) {
    if (copy.record.iFixedStart >= 0) {
        message(kResult, "%d:%d has a verified start\n", copy.rom, copy.component);
        message(kResult, "  editcomponent %d START=%d\n", component, proposedstart(record, copy.record));
    }
    if (copy.record.iFixedEnd >= 0) {
        message(kResult, "%d:%d has a verified end\n", copy.rom, copy.component);
        message(kResult, "  editcomponent %d END=%d\n", component, proposedend(record, copy.record));
    }
}

// One component being analysed.
class ComponentAnalysis {
public:
    ComponentAnalysis(int32_t itsrom, int32_t itscomponent, VerifiedRelocs itsverified)
        : rom(itsrom), component(itscomponent), verified(itsverified), slot(*findslot(rom)),
          record(*findrecord(rom, component)) {}

    void run();

private:
    void compare(const Match& copy);
    void comparebytes(const Match& copy, int64_t offset);
    void tellpotential() const;
    void tellbcpl() const;

    int32_t rom;
    int32_t component;
    VerifiedRelocs verified;
    const KickstartRom& slot;
    const Component& record;
};

void ComponentAnalysis::compare(const Match& copy) {
    message(kResult, "Found matching names %d:%d\n", copy.rom, copy.component);
    tellbounds(copy, record, component);
    // Copies at the same place prove nothing.
    const int64_t offset = int64_t{record.iROMTag} - copy.record.iROMTag;
    message(kResult, "ROM Offset=%d (%s)\n", static_cast<int32_t>(offset), offset != 0 ? "Good" : "Bad");
    const uint32_t bases = slot.iROMBase - copy.slot.iROMBase;
    message(kResult, "ROMBase Offset=%08x (%s)\n", bases, bases != 0 ? "Good" : "Bad");
    comparebytes(copy, offset);
}

// `offset` is how far the component lies behind its copy, in image offsets.
void ComponentAnalysis::comparebytes(const Match& copy, int64_t offset) {
    const int64_t start = record.iStart;
    const uint32_t difference = slot.iROMBase + static_cast<uint32_t>(offset) - copy.slot.iROMBase;
    RelocBatch relocs(rom, component);
    const int32_t matching = countlike(slot.pcROM, start, copy.slot.pcROM, start - offset, record.iSize,
                                       difference, [&](int32_t place) {
                                           message(kResult, "Verified RELOC=%d\n", place);
                                           if (verified == VerifiedRelocs::Add) relocs.add(place);
                                       });
    relocs.finish();
    message(kResult, "Matching %d of %d\n", matching, record.iSize);
}

void ComponentAnalysis::tellpotential() const {
    const auto start = static_cast<uint32_t>(record.iStart);
    const auto end = static_cast<uint32_t>(record.iEnd());
    message(kResult, "Identifying potential relocs %08x to %08x\n", start, end);
    int32_t count = 0;
    for (int64_t place = start; place < end; place += 2) {
        const auto value = longat(slot.pcROM, place);
        if (!value || !pointsinto(slot, record, *value)) continue;
        message(kResult, "Potential RELOC=%d\n", static_cast<int32_t>(place - start));
        ++count;
    }
    message(kResult, "Component %d, has %d potential 32bit relocs (currently %d)\n", component, count,
            record.iRelocs());
}

// In the form of a section for the component's hash file.
void ComponentAnalysis::tellbcpl() const {
    const auto start = static_cast<uint32_t>(record.iStart);
    const auto end = static_cast<uint32_t>(record.iEnd());
    message(kProgress, "Identifying potential BCPL relocs %08x to %08x\n\n[BCPL]\n", start, end);
    for (int64_t place = start & 0xFFFFFCU; place < end; place += 4) {
        const auto value = longat(slot.pcROM, place);
        // BCPL counts addresses in longs.
        if (!value || !pointsinto(slot, record, *value * 4)) continue;
        message(kProgress, "RELOC=%d #%d\n", static_cast<int32_t>(place - start),
                static_cast<int32_t>(*value * 4 - runaddress(slot, record)));
    }
}

void ComponentAnalysis::run() {
    message(kResult, "Analysing %s\n", shown(record.pcLibString));
    for (const Match& copy : findcopies(rom, record))
        compare(copy);
    tellpotential();
    if (isshown(kProgress)) tellbcpl();
}

// Whether there is such a component and it can be analysed; an error line when not.
bool requireanalysable(int32_t rom, int32_t component) {
    const Component* record = findrecord(rom, component);
    const char* trouble = nullptr;
    if (iMaxRom == 0)
        trouble = "please load or create a rom";
    else if (findslot(rom) == nullptr)
        trouble = "rom out of range";
    else if (record == nullptr)
        trouble = "component out of range";
    else if (record->iROMTag < 0)
        trouble = "only components with a ROMTAG can be analysed";
    if (trouble != nullptr) {
        message(kResult, "ERROR, %s\n", trouble);
        return false;
    }
    return requirefit(*findslot(rom), component);
}

} // namespace

int analysecomponent(int32_t rom, int32_t component, VerifiedRelocs verified) {
    if (requireanalysable(rom, component)) ComponentAnalysis(rom, component, verified).run();
    return 0;
}

namespace {

// What one copy proposes for the bounds of a component that are not verified.
void proposebounds(const Match& copy, const Component& record, int32_t component) {
    if (record.iFixedStart < 0 && copy.record.iFixedStart >= 0) {
        message(kResult, "   Matching/Missing START for %d at %d:%d\n", component, copy.rom, copy.component);
        message(kResult, "   editcomponent %d START=%d\n", component, proposedstart(record, copy.record));
    }
    if (record.iFixedEnd < 0 && copy.record.iFixedEnd >= 0) {
        message(kResult, "   Matching/Missing END for %d at %d:%d\n", component, copy.rom, copy.component);
        message(kResult, "   editcomponent %d END=%d\n", component, proposedend(record, copy.record));
    }
}

} // namespace

int analyseromoffsets(int32_t rom) {
    if (iMaxRom < 2) return 0;
    const KickstartRom* slot = requireslot(rom);
    if (slot == nullptr) return 0;
    for (int32_t number = 0; number < slot->iComponents(); ++number) {
        const Component& record = *findrecord(rom, number);
        if (record.isverified() || !record.pcLibString) continue;
        message(kResult, "%s\n", shown(record.pcLibString));
        for (const Match& copy : findcopies(rom, record))
            proposebounds(copy, record, number);
    }
    return 0;
}

} // namespace vantorel
