#include "missassembler/entrypoints.h"

#include "base/message.h"
#include "base/text.h"
#include "missassembler/labels.h"
#include "rom/romtag.h"

#include <array>

namespace vantorel {

namespace {

// The walk over one ROMTAG's structures.
class Tag {
public:
    Tag(Walk& itswalk, int64_t itsoffset) : walk(itswalk), offset(itsoffset) {}

    // How many entry points it has.
    int32_t add();

private:
    [[nodiscard]] std::optional<int64_t> pointerat(int64_t place) const;
    void addfields() const;
    void addtarget(const char* text, int32_t field, char type) const;
    void addentry(int64_t target);
    void addautoinit(int64_t table);
    void addvectors(int64_t table);
    void addwordvectors(int64_t table);
    void addlongvectors(int64_t table);
    void addvector(int64_t entry, int64_t target, int32_t number, char type);

    Walk& walk;
    int64_t offset; // component offset of the tag
    int32_t entries = 0;
};

// The component offset that the long at component offset `place` points to; none without a long.
std::optional<int64_t> Tag::pointerat(int64_t place) const {
    const auto pointer = longat(walk.bytes, place);
    if (!pointer) return std::nullopt;
    return componentoffset(walk, *pointer);
}

std::string flagscomment(uint8_t flags) {
    std::string text = ";RT_FLAGS " + flagnames(flags, '|');
    text.pop_back();
    return text;
}

// A label where the field of the tag points to.
void Tag::addtarget(const char* text, int32_t field, char type) const {
    if (const auto target = pointerat(offset + field)) addrecord(walk, text, *target, type);
}

void Tag::addfields() const {
    const auto add = [this](const std::string& text, int32_t field, char type) {
        addrecord(walk, text, offset + field, type);
    };
    add(";RT_MATCHWORD", RomTag::iMatchWord, MissType::cWord);
    add(";RT_MATCHTAG", RomTag::iMatchTag, MissType::cAddress);
    add(";RT_ENDSKIP", RomTag::iEndSkip, MissType::cAddress);
    if (isincomponent(walk, offset + RomTag::iFlags))
        add(flagscomment(walk.bytes[static_cast<size_t>(offset + RomTag::iFlags)]), RomTag::iFlags,
            MissType::cByte);
    add(";RT_VERSION", RomTag::iVersion, MissType::cByte);
    add(";RT_TYPE", RomTag::iType, MissType::cByte);
    add(";RT_PRI", RomTag::iPri, MissType::cByte);
    add(";RT_NAME", RomTag::iName, MissType::cAddress);
    addtarget("RT_NAME", RomTag::iName, MissType::cText);
    add(";RT_IDSTRING", RomTag::iIdString, MissType::cAddress);
    addtarget("RT_IDSTRING", RomTag::iIdString, MissType::cText);
    add(";RT_INIT", RomTag::iInit, MissType::cAddress);
    addtarget("RT_INIT", RomTag::iInit, MissType::cNone);
}

void Tag::addentry(int64_t target) {
    if (markentry(walk, target)) ++entries;
}

int32_t Tag::add() {
    addfields();
    const auto init = longat(walk.bytes, offset + RomTag::iInit);
    if (!init) return entries;
    const int64_t target = componentoffset(walk, *init);
    if ((walk.bytes[static_cast<size_t>(offset + RomTag::iFlags)] & RomTag::cAutoInit) != 0) {
        message(kTrace, "AUTOINIT flag set structure position=%d\n", static_cast<int32_t>(target));
        addautoinit(target);
        return entries;
    }
    message(kTrace, "No AUTOINIT flag set, RTC_INIT:%08x ROM offset %d\n", *init,
            static_cast<int32_t>(*init - walk.slot.iROMBase));
    addentry(target);
    return entries;
}

void Tag::addautoinit(int64_t table) {
    addrecord(walk, "AUTOINIT", table, MissType::cNone);
    if (const auto size = longat(walk.bytes, table + AutoInit::iDataSize))
        message(kTrace, "Size of library data area - includes standard and user?:%08x\n", *size);
    addrecord(walk, ";Vector table address", table + AutoInit::iVectors, MissType::cAddress);
    if (const auto vectors = pointerat(table + AutoInit::iVectors)) {
        addrecord(walk, "Vector Table", *vectors, MissType::cNone);
        message(kTrace, "Vector table address:%d\n", static_cast<int32_t>(*vectors));
        addvectors(*vectors);
    }
    addrecord(walk, ";Init Struct {} address", table + AutoInit::iInitStruct, MissType::cAddress);
    addrecord(walk, ";Library init() address", table + AutoInit::iInit, MissType::cAddress);
    const auto init = longat(walk.bytes, table + AutoInit::iInit);
    if (!init || *init == 0) return;
    const int64_t target = componentoffset(walk, *init);
    addrecord(walk, "Library init()", target, MissType::cNone);
    addentry(target);
}

void Tag::addvectors(int64_t table) {
    const auto first = wordat(walk.bytes, table);
    if (!first) return;
    if (*first == iWordVectors) {
        message(kRaw, "Firstvector %04x\n", *first);
        addwordvectors(table);
    } else {
        addlongvectors(table);
    }
}

void Tag::addwordvectors(int64_t table) {
    addrecord(walk, "; Start of 16 bit vector table", table, MissType::cWord);
    int64_t entry = table + 2;
    for (int32_t number = 0; const auto word = wordat(walk.bytes, entry); ++number, entry += 2) {
        if (*word == iWordVectors)
            return addrecord(walk, "; End of 16 bit vector table", entry, MissType::cWord);
        if (!takevector(walk)) return;
        addvector(entry, table + static_cast<int16_t>(*word), number, MissType::cWord);
    }
}

void Tag::addlongvectors(int64_t table) {
    addrecord(walk, "; Start of 32 bit vector table", table, MissType::cLong);
    int64_t entry = table;
    for (int32_t number = 0; const auto pointer = longat(walk.bytes, entry); ++number, entry += 4) {
        if (*pointer == iVectorsEnd)
            return addrecord(walk, "; End of 32 bit vector table", entry, MissType::cLong);
        if (!takevector(walk)) return;
        addvector(entry, componentoffset(walk, *pointer), number, MissType::cAddress);
    }
}

// Vector `number`, which stands at component offset `entry` and leads to `target`.
void Tag::addvector(int64_t entry, int64_t target, int32_t number, char type) {
    constexpr std::array<const char*, 4> standard = {" open()", " close()", " expunge()", " reserved()"};
    std::string label = formatted("Library vector %d", number);
    if (number < std::ssize(standard)) label += standard[static_cast<size_t>(number)];
    const uint32_t address = walk.address + static_cast<uint32_t>(target);
    addrecord(walk, label, target, MissType::cNone);
    addrecord(walk, formatted("; 0x%06X %s", address, label.c_str()), entry, type);
    addentry(target);
}

} // namespace

int32_t addromtagentries(Walk& walk) {
    int32_t entries = 0;
    for (int64_t offset = 0; offset < walk.record.iSize; offset += 2) {
        if (wordat(walk.bytes, offset) != RomTag::iMatch) continue;
        if (longat(walk.bytes, offset + RomTag::iMatchTag) != walk.address + static_cast<uint32_t>(offset))
            continue;
        message(kTrace, "ROMTAG @ %d\n", static_cast<int32_t>(offset));
        entries += Tag(walk, offset).add();
    }
    return entries;
}

} // namespace vantorel
