#include "rom/romtag.h"

#include "base/message.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace vantorel {

namespace {

constexpr uint32_t iBaseBits = 0x00FFF000;

// Images are known whose name pointer has this value although the text stands at offset 320.
constexpr uint32_t iOddNamePointer = 0x00460140;
constexpr uint32_t iOddNameOffset = 320;

constexpr const char* BADPOINTER = "(bad pointer)";

// The text at an image offset: up to 128 characters, ended by NUL, line feed or carriage return. An offset
// comes from an address less the base, so it is unsigned and may lie anywhere.
std::string textat(View image, uint32_t offset) {
    constexpr size_t most = 128;
    std::string text;
    for (size_t i = offset; i < image.size() && text.size() < most; ++i) {
        const char c = static_cast<char>(image[i]);
        if (c == '\0' || c == '\n' || c == '\r') break;
        text += c;
    }
    return text;
}

std::string nameat(View image, uint32_t pointer, uint32_t base) {
    if (pointer == 0) return BADPOINTER;
    const uint32_t offset = pointer == iOddNamePointer ? iOddNameOffset : pointer - base;
    const void* place = offset < image.size() ? image.data() + offset : nullptr;
    message(kRaw, "Pointer=%p \n", place);
    return textat(image, offset);
}

// The long at byte `field` of the table, which may begin anywhere in 32 bits; 0 for one outside the image.
uint32_t autoinitlong(View image, uint32_t table, int32_t field) {
    return longat(image, int64_t{table} + field).value_or(0);
}

void narrateautoinit(View image, uint32_t table, uint32_t base) {
    const uint32_t vectors = autoinitlong(image, table, AutoInit::iVectors) - base;
    message(kTrace, "Autoinit DataSize     =%08x\n", autoinitlong(image, table, AutoInit::iDataSize));
    message(kTrace, "Autoinit VectorTable  =%08x\n", vectors);
    message(kTrace, "Autoinit InitStructure=%08x\n",
            autoinitlong(image, table, AutoInit::iInitStruct) - base);
    message(kTrace, "Autoinit InitFunction =%08x\n", autoinitlong(image, table, AutoInit::iInit) - base);
    message(kTrace, "First Vector=%08x\n", longat(image, vectors).value_or(0));
}

void narratefields(View tag, const RomTagInfo& info) {
    message(kTrace, "Endskip=%d ", info.iEndSkip);
    message(kTrace, "Flags: %02x %s ", info.cFlags, flagnames(info.cFlags, ' ').c_str());
    message(kTrace, "Version: %d ", tag[RomTag::iVersion]);
    message(kTrace, "Type: %d ", tag[RomTag::iType]);
    message(kTrace, "Priority: %d\n", static_cast<int8_t>(tag[RomTag::iPri]));
    message(kTrace, "Libname pointer=%08x \n", iUINT32(&tag[RomTag::iName]));
}

RomTagInfo decode(View image, int32_t offset, uint32_t base) {
    const View tag = part(image, offset, RomTag::iLength);
    const uint32_t self = iUINT32(&tag[RomTag::iMatchTag]);
    message(kTrace, "%d - %d = %08x\n", static_cast<int32_t>(self), offset, base);
    RomTagInfo info;
    info.iOffset = static_cast<uint32_t>(offset);
    info.iEndSkip = static_cast<int32_t>(iUINT32(&tag[RomTag::iEndSkip]) - base - info.iOffset);
    info.cFlags = tag[RomTag::iFlags];
    narratefields(tag, info);
    info.cName = nameat(image, iUINT32(&tag[RomTag::iName]), base);
    info.cIdString = textat(image, iUINT32(&tag[RomTag::iIdString]) - base);
    message(kTrace, "Name=[%s] String=[%s]\n", info.cName.c_str(), info.cIdString.c_str());
    const uint32_t init = iUINT32(&tag[RomTag::iInit]) - base;
    if ((info.cFlags & RomTag::cAutoInit) == 0)
        message(kTrace, "Manual init address=%08x\n", init);
    else
        narrateautoinit(image, init, base);
    return info;
}

} // namespace

int64_t nextmatchword(View image, int64_t from, int64_t to) {
    const int64_t end = std::min(to, static_cast<int64_t>(image.size()) - 1);
    from = std::max<int64_t>(from, 0);
    while (from < end) {
        const void* found =
            std::memchr(image.data() + from, RomTag::iMatch >> 8, static_cast<size_t>(end - from));
        if (found == nullptr) return to;
        from = static_cast<const uint8_t*>(found) - image.data();
        if (wordat(image, from) == RomTag::iMatch) return from;
        ++from;
    }
    return to;
}

std::optional<uint32_t> romtagbase(View image, int64_t offset) {
    if (!isinside(image, offset, RomTag::iLength)) return std::nullopt;
    const uint8_t* tag = image.data() + offset;
    if (iUINT16(tag + RomTag::iMatchWord) != RomTag::iMatch) return std::nullopt;
    const uint32_t base = iUINT32(tag + RomTag::iMatchTag) - static_cast<uint32_t>(offset);
    if ((base & ~iBaseBits) != 0) return std::nullopt;
    return base;
}

std::optional<RomTagInfo> findromtag(View image, int32_t from, int32_t to, uint32_t& romBase) {
    message(kTrace, "FINDINGROMTAG from %d to %d in %p ROMBase=%08x\n", from, to,
            static_cast<const void*>(image.data()), romBase);
    for (int64_t place = nextmatchword(image, from, to); place < to;
         place = nextmatchword(image, place + 1, to)) {
        const auto i = static_cast<int32_t>(place);
        message(kTrace, "Found TAG at %d\n", i);
        const auto base = romtagbase(image, i);
        if (!base) continue;
        if (romBase == 0) romBase = *base;
        if (*base == romBase) return decode(image, i, *base);
        message(kResult,
                "Warning: possible ROMBase mismatch using %08x but detected potential %08x use rombase %d to "
                "force\n",
                romBase, *base, static_cast<int32_t>(*base));
    }
    return std::nullopt;
}

namespace {

struct FlagName {
    uint8_t bit;
    const char* name;
};

constexpr auto cFlagNames = std::to_array<FlagName>({
    {RomTag::cColdStart, "COLDSTART"},
    {RomTag::cSingleTask, "SINGLETASK"},
    {RomTag::cAfterDos, "AFTERDOS"},
    {RomTag::cAutoInit, "AUTOINIT"},
});

} // namespace

std::string flagnames(uint8_t flags, char behind) {
    std::string names;
    for (const FlagName& flag : cFlagNames)
        if ((flags & flag.bit) != 0) (names += flag.name) += behind;
    return names;
}

} // namespace vantorel
