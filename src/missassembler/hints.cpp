#include "missassembler/hints.h"

#include "base/message.h"
#include "base/text.h"
#include "hash/hashfile.h"
#include "hash/ini.h"
#include "hash/library.h"
#include "missassembler/labels.h"
#include "shell/numbers.h"

#include <string_view>

namespace vantorel {

namespace {

constexpr const char* cHintFile = "misshints.ini";
constexpr const char* cHintSection = "Missassembler";
constexpr std::string_view cEntryPoint = "ENTRYPOINT=";
constexpr std::string_view cLabel = "LABEL=";
constexpr std::string_view cJumpTable = "JUMPTABLE=";

// What `line` holds behind `key`, which includes its "="; none when it does not begin with it.
std::optional<std::string> hintvalue(const std::string& line, std::string_view key) {
    if (!startswithnocase(line, key)) return std::nullopt;
    return line.substr(key.size());
}

// Takes the text up to the next comma off `rest`; none at the end.
std::optional<std::string> nextfield(std::optional<std::string>& rest) {
    auto field = rest;
    if (!rest) return std::nullopt;
    const size_t comma = rest->find(',');
    if (comma == std::string::npos) {
        rest.reset();
        return field;
    }
    field->resize(comma);
    rest->erase(0, comma + 1);
    return field;
}

int32_t numberof(const std::optional<std::string>& field) { return field ? decimal(field->c_str()) : 0; }

void addentryhint(Walk& walk, const std::string& value) {
    std::optional<std::string> rest = value;
    const int32_t offset = numberof(nextfield(rest));
    message(kAlways, "Add entrypoint=%d\n", offset);
    markentry(walk, offset);
    if (rest && !rest->empty()) addrecord(walk, *rest, offset, MissType::cNone);
}

void addlabelhint(const Walk& walk, const std::string& value) {
    std::optional<std::string> rest = value;
    const int32_t offset = numberof(nextfield(rest));
    const std::string letter = nextfield(rest).value_or("");
    const int32_t repeat = numberof(nextfield(rest));
    const char shown = letter.empty() ? '0' : letter[0];
    if (rest)
        message(kAlways, "%d (%c,%d) %s\n", offset, shown, repeat, rest->c_str());
    else
        message(kAlways, "%d (%c,%d) (no commnet)\n", offset, shown, repeat);
    addrecord(walk, rest.value_or(""), offset, shown == '0' ? MissType::cNone : shown, repeat);
}

} // namespace

void addcomponenthints(Walk& walk) {
    const auto ini = loadhashfile(walk.record.pcHash);
    if (!ini) return message(kTrace, "No INI file for the component, no official missasembler hints\n");
    message(kTrace, "INI file opened OK, check for missassembler hints\n");
    const int32_t section = readinisection(*ini, cHintSection);
    if (section < 0) return message(kTrace, "No official missasembler hints in component INI file\n");
    message(kTrace, "Section:%s\n", cHintSection);
    const IniLines lines = ini->lines(section);
    message(kTrace, "Section has %d lines\n", lines.size());
    for (const std::string line : lines) {
        message(kAlways, "MissHint:%s\n", line.c_str());
        if (const auto entry = hintvalue(line, cEntryPoint)) addentryhint(walk, *entry);
        if (const auto label = hintvalue(line, cLabel)) addlabelhint(walk, *label);
    }
}

namespace {

// Whether an image offset can be the first of four bytes of the component.
bool isinrange(const Walk& walk, int64_t offset) {
    return offset >= walk.record.iStart && offset <= walk.record.iEnd() - 4;
}

int32_t imageoffset(const Walk& walk, uint32_t address) {
    return static_cast<int32_t>(address - walk.slot.iROMBase);
}

// Says which address a hint names, and returns its image offset.
int32_t showhint(const Walk& walk, const std::string& value, const char* kind) {
    const uint32_t address = atoiorhex(value.c_str());
    const int32_t offset = imageoffset(walk, address);
    message(kAlways, " HINT %s : %08x\n", value.c_str(), address);
    message(kAlways, "Checking %s hint (%d)\n", kind, offset);
    return offset;
}

void addromentry(Walk& walk, const std::string& value) {
    const int32_t offset = showhint(walk, value, "entrypoint");
    if (!isinrange(walk, offset)) return message(kDetail, "Entrypoint hint (%d) not in component\n", offset);
    const int32_t place = offset - walk.record.iStart;
    message(kTrace, "Adding ROM hint entrypoint %s (%d) at component offset %d\n", value.c_str(), offset,
            place);
    markentry(walk, place);
}

void addjumptable(Walk& walk, const std::string& value) {
    const int32_t table = showhint(walk, value, "jumptable");
    const int64_t place = int64_t{table} - walk.record.iStart;
    // The place in the component is compared with the component's range in the image, so a label comes only
    // where the two overlap; hint files have been written to it.
    if (isinrange(walk, place)) addrecord(walk, "JUMPTABLE", place, MissType::cNone);
    for (int64_t at = table; const auto pointer = longat(walk.slot.pcROM, at); at += 4) {
        const int32_t target = imageoffset(walk, *pointer);
        if (!isinrange(walk, target) || !takevector(walk)) return;
        const int64_t entry = at - walk.record.iStart;
        message(kAlways, "JUMPTABLE Entrypoint=%d RELOC=%d\n", target, static_cast<int32_t>(entry));
        addrecord(walk, ";JUMPTABLE Entry", entry, MissType::cAddress);
        markentry(walk, target - walk.record.iStart);
    }
}

} // namespace

void addromhints(Walk& walk) {
    const auto ini = loadinifile(findhashfile(cHintFile));
    if (!ini) return message(kTrace, "No entrypoint ROM  missasembler hints file (misshints.ini)\n");
    const std::string name = hexlong(walk.slot.iCRC32);
    const int32_t section = readinisection(*ini, name.c_str());
    if (section < 0) return message(kAlways, "No misassembler hints for ROM with CRC32 %s\n", name.c_str());
    for (const std::string line : ini->lines(section)) {
        message(kDetail, "Section Line:%s\n", line.c_str());
        if (const auto entry = hintvalue(line, cEntryPoint)) addromentry(walk, *entry);
        if (const auto table = hintvalue(line, cJumpTable)) addjumptable(walk, *table);
    }
}

} // namespace vantorel
