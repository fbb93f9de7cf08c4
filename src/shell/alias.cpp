#include "shell/alias.h"

#include "base/message.h"
#include "base/text.h"
#include "rom/store.h"
#include "shell/numbers.h"

#include <algorithm>

namespace vantorel {

std::vector<std::string> pcAliasname;
std::vector<std::string> pcAliasvalue;

int32_t iAliasCnt() { return static_cast<int32_t>(pcAliasname.size()); }

namespace {

// The value of the alias `name`, null when there is none.
std::string* findalias(const std::string& name) {
    const auto found = std::ranges::find(pcAliasname, name);
    if (found == pcAliasname.end()) return nullptr;
    return &pcAliasvalue[static_cast<size_t>(found - pcAliasname.begin())];
}

std::string* requirealias(const std::string& name) {
    std::string* value = findalias(name);
    if (value == nullptr) message(kResult, "No such alias\n");
    return value;
}

uint32_t operandvalue(const std::string& operand) {
    if (ishexadecimal(operand.c_str())) return Hex2iUINT32(operand.c_str() + 2);
    return static_cast<uint32_t>(decimal(operand.c_str()));
}

void storesum(const std::string& name, uint32_t change) {
    if (name.empty()) return;
    const std::string* value = requirealias(name);
    if (value == nullptr) return;
    const uint32_t old = Hex2iUINT32(value->c_str() + std::min<size_t>(2, value->size()));
    alias(name, hexlong(old + change));
}

} // namespace

void alias(const std::string& name, const std::string& value) {
    if (name.empty()) return;
    message(kTrace, "Search for existing alias %s\n", name.c_str());
    if (value.empty()) {
        if (const std::string* old = requirealias(name)) message(kResult, "Value:%s\n", old->c_str());
        return;
    }
    if (std::string* old = findalias(name)) {
        *old = value;
        return;
    }
    message(kTrace, "Create new alias to %s\n", value.c_str());
    pcAliasvalue.resize(pcAliasname.size()); // the same, but when memory ran out between the next two lines
    pcAliasvalue.push_back(value);
    pcAliasname.push_back(name);
}

void aliasadd(const std::string& name, const std::string& operand) { storesum(name, operandvalue(operand)); }

void aliassub(const std::string& name, const std::string& operand) {
    storesum(name, 0 - operandvalue(operand));
}

void aliasmid(const std::string& name, int32_t start, int32_t length) {
    if (name.empty()) return;
    message(kProgress, "Search for existing alias %s\n", name.c_str());
    message(kProgress, "Searched for existing alias %s\n", name.c_str());
    std::string* value = requirealias(name);
    if (value == nullptr) return;
    const auto from = static_cast<size_t>(start);
    if (value->size() < from) {
        message(kTrace, "Too short - zeroing\n");
        value->clear();
        return;
    }
    const size_t count = length == 0 ? value->size() - from : static_cast<size_t>(length);
    message(kTrace, "New len:%d\n", static_cast<int32_t>(count));
    *value = value->substr(from, count);
}

void aliasromdata(int32_t rom, const std::string& name, uint32_t start, uint32_t count) {
    message(kTrace, "Create/update alias %s from ROM %d starting position %d for %d bytes\n", name.c_str(),
            rom, static_cast<int32_t>(start), static_cast<int32_t>(count));
    const KickstartRom* slot = findslot(rom);
    if (slot == nullptr) {
        message(kResult, "Invalid ROM\n");
        return;
    }
    if (uint64_t{start} + count >= slot->pcROM.size()) {
        message(kResult, "Error: Out of ROM bounds\n");
        return;
    }
    std::string value = "0x";
    for (const uint8_t byte : part(slot->pcROM, start, count))
        value += formatted("%02X", byte);
    alias(name, value);
}

void freealiases() {
    message(kTrace, "Freeing %d aliases\n", iAliasCnt());
    pcAliasname = {};
    pcAliasvalue = {};
}

} // namespace vantorel
