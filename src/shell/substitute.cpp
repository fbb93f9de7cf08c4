#include "shell/substitute.h"

#include "audit/audit.h"
#include "base/message.h"
#include "base/text.h"
#include "rom/checksum.h"
#include "rom/romtag.h"
#include "rom/store.h"
#include "shell/alias.h"
#include "shell/numbers.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace vantorel {

namespace {

// The line on its way through the substitution.
struct Substitution {
    const char* at;       // what is read next
    std::string buffer{}; // what was written
    size_t room;          // bytes that the buffer was sized for

    explicit Substitution(const char* line) : at(line), room(0) { resize(std::strlen(line) + 1); }

    void resize(size_t bytes) {
        room = bytes;
        buffer.reserve(room);
        message(kTrace, "realloc(%p,%d);\n", static_cast<const void*>(buffer.data()),
                static_cast<int32_t>(room));
    }

    [[nodiscard]] bool isnext(std::string_view text) const {
        return std::strncmp(at, text.data(), text.size()) == 0;
    }

    // Writes `value` in place of the next `length` characters.
    void replace(size_t length, std::string_view value) {
        resize(room + value.size() - length);
        buffer += value;
        at += length;
    }

    void replacebynumber(size_t length, uint32_t value) { replace(length, hexlong(value)); }
};

bool replacealias(Substitution& line) {
    for (size_t i = 0; i < pcAliasname.size(); ++i)
        if (line.isnext(pcAliasname[i])) {
            line.replace(pcAliasname[i].size(), pcAliasvalue[i]);
            return true;
        }
    return false;
}

constexpr size_t iFileReferenceLength = 10; // "0x" and eight digits

bool isfilereference(const char* text) {
    if (!ishexadecimal(text)) return false;
    const std::string_view digits(text + 2, strnlen(text + 2, iFileReferenceLength - 2));
    return digits.size() == iFileReferenceLength - 2 &&
           std::ranges::all_of(digits, [](unsigned char c) { return std::isxdigit(c) != 0; });
}

uint32_t auditedcrc(size_t number) {
    const AuditFile& file = psAuditFilesFile[number];
    AuditFileData record;
    if (file.iCRC32 == 0) getauditfile(static_cast<int32_t>(number), record);
    return file.iCRC32;
}

bool replacefile(Substitution& line) {
    if (!isfilereference(line.at)) return false;
    const uint32_t wanted = Hex2iUINT32(line.at + 2);
    message(kTrace, "Search for file alias\n");
    message(kTrace, "Look for Hash [0x%08x]\n", wanted);
    for (size_t i = 0; i < psAuditFilesFile.size(); ++i) {
        if (auditedcrc(i) != wanted) continue;
        const AuditFile& file = psAuditFilesFile[i];
        const std::string& directory = psAuditFilesDir[file.iDirectory].cPath;
        message(kTrace, "Found:%s\n", directory.c_str());
        message(kTrace, "Found:%s\n", file.cName.c_str());
        line.replace(iFileReferenceLength, directory + "/" + file.cName);
        return true;
    }
    line.at += iFileReferenceLength;
    return true;
}

// The names of values of the current ROM.
struct BuiltIn {
    std::string_view name;
    uint32_t (*value)(const KickstartRom& slot);
};

constexpr uint32_t iKickstartVersion = 12; // the same for every ROM

constexpr auto cBuiltIns = std::to_array<BuiltIn>({
    {"ROMBASE", [](const KickstartRom& slot) { return slot.iROMBase; }},
    {"CALCCHECKSUM", [](const KickstartRom& /*slot*/) { return cChecksum(iCurrentROM); }},
    {"(KICKSTARTVERSION)", [](const KickstartRom& /*slot*/) { return iKickstartVersion; }},
});

// One reference may run through several of the names, each where the one before ended.
bool replacebuiltins(Substitution& line, const KickstartRom& slot) {
    bool found = false;
    for (const BuiltIn& builtin : cBuiltIns)
        if (line.isnext(builtin.name)) {
            line.replacebynumber(builtin.name.size(), builtin.value(slot));
            found = true;
        }
    return found;
}

// What may follow a component's name: a bound, or the place of a ROMTAG field.
struct Suffix {
    std::string_view text;
    int32_t Component::*base;
    int32_t offset;
};

constexpr auto cSuffixes = std::to_array<Suffix>({
    {".(START)", &Component::iFixedStart, 0},
    {".(END)", &Component::iFixedEnd, 0},
    {".(ROMTAG)", &Component::iROMTag, 0},
    {".(ROMTAG.MATCHTAG)", &Component::iROMTag, RomTag::iMatchTag},
    {".(ROMTAG.ENDSKIP)", &Component::iROMTag, RomTag::iEndSkip},
    {".(ROMTAG.FLAGS)", &Component::iROMTag, RomTag::iFlags},
    {".(ROMTAG.VERSION)", &Component::iROMTag, RomTag::iVersion},
    {".(ROMTAG.TYPE)", &Component::iROMTag, RomTag::iType},
    {".(ROMTAG.PRI)", &Component::iROMTag, RomTag::iPri},
    {".(ROMTAG.NAME)", &Component::iROMTag, RomTag::iName},
    {".(ROMTAG.IDSTRING)", &Component::iROMTag, RomTag::iIdString},
    {".(ROMTAG.INIT)", &Component::iROMTag, RomTag::iInit},
});

void replacecomponent(Substitution& line, const Component& component) {
    const size_t name = component.pcName->size();
    for (const Suffix& suffix : cSuffixes)
        if (startswithnocase(line.at + name, suffix.text)) {
            const auto value =
                static_cast<uint32_t>(component.*suffix.base) + static_cast<uint32_t>(suffix.offset);
            line.replacebynumber(name + suffix.text.size(), value);
            return;
        }
    line.replace(name, formatted("%d %d", component.iFixedStart, component.iFixedEnd));
}

// One reference may run through several components' names, in the order of the map.
void replacecomponents(Substitution& line, const KickstartRom& slot) {
    for (const Component& component : slot.psComponents)
        if (component.pcName && line.isnext(*component.pcName)) replacecomponent(line, component);
}

// Replaces the reference behind a "$".
void replacereference(Substitution& line) {
    if (*line.at == '$') {
        line.buffer += *line.at++;
        return;
    }
    if (replacealias(line) || replacefile(line)) return;
    const KickstartRom* slot = findslot(iCurrentROM);
    if (slot == nullptr)
        message(kResult, "No custom aliases found, no current ROM\n");
    else if (!replacebuiltins(line, *slot))
        replacecomponents(line, *slot);
}

} // namespace

std::string parsealias(const char* line) {
    message(kTrace, "Parsing [%s]\n", line);
    Substitution substitution(line);
    while (*substitution.at != '\0') {
        const char c = *substitution.at++;
        if (c == '$')
            replacereference(substitution);
        else
            substitution.buffer += c;
    }
    message(kProgress, "Parsed [%s]\n", substitution.buffer.c_str());
    return std::move(substitution.buffer);
}

} // namespace vantorel
