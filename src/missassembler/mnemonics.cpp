#include "missassembler/mnemonics.h"

#include "shell/numbers.h"

#include <algorithm>

namespace vantorel {

namespace {

constexpr size_t iPatternBits = 16;
constexpr const char* cMnemonicSection = "mnemonics";

} // namespace

Mnemonic parsemnemonic(std::string_view line) {
    Mnemonic entry;
    for (size_t i = 0; i < iPatternBits; ++i) {
        const char bit = i < line.size() ? line[i] : '0';
        entry.value = entry.value << 1 | (bit == '1' ? 1U : 0U);
        entry.mask = entry.mask << 1 | (bit == '?' ? 0U : 1U);
    }
    if (line.size() > iPatternBits) entry.text = line.substr(iPatternBits + 1, iMissTextMost);
    return entry;
}

std::optional<std::vector<Mnemonic>> parsemnemonics(const IniFile& ini) {
    const int32_t section = readinisection(ini, cMnemonicSection);
    if (section < 0) return std::nullopt;
    std::vector<Mnemonic> entries;
    for (const std::string_view text : ini.lines(section)) {
        if (text.empty()) break;
        entries.push_back(parsemnemonic(text));
    }
    return entries;
}

uint32_t hex6toi(const char* text) {
    uint32_t value = 0;
    for (int i = 0; i < 6 && text[i] != '\0' && text[i] != '('; ++i)
        value = value << 4 | static_cast<uint32_t>(hexdigit(text[i]));
    return value;
}

MnemonicTable::MnemonicTable(IniFile ini) : psMissasemblerINI(std::move(ini)) {
    auto parsed = parsemnemonics(*psMissasemblerINI);
    hassection = parsed.has_value();
    if (parsed) sMnemonic = std::move(*parsed);
}

const Mnemonic* MnemonicTable::find(uint16_t opcode) const {
    const auto found = std::ranges::find_if(
        sMnemonic, [opcode](const Mnemonic& entry) { return (opcode & entry.mask) == entry.value; });
    return found == sMnemonic.end() ? nullptr : &*found;
}

const char* MnemonicTable::spelling(SectionName section, uint32_t value) const {
    if (!psMissasemblerINI) return nullptr;
    uint64_t place = value;
    for (const char c : section)
        place = place << 8 | static_cast<unsigned char>(c);
    if (const auto found = spellings.find(place); found != spellings.end()) return found->second;
    const std::string name(section.begin(), section.end());
    const char* text = readiniitem(*psMissasemblerINI, name.c_str(), std::to_string(value).c_str());
    // What is not there is not remembered: there is no end of it.
    if (text != nullptr) spellings.emplace(place, text);
    return text;
}

} // namespace vantorel
