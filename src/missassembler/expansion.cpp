#include "missassembler/expansion.h"

#include "base/message.h"
#include "base/text.h"
#include "missassembler/finish.h"
#include "shell/numbers.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vantorel {

namespace {

// A text that holds no code any more expands no further; one that never loses its last is left as it is.
constexpr int iPassesMost = 32;

constexpr const char* cUnknownCode = "???";
constexpr int32_t iLongImmediate = 4;
constexpr int32_t iWordImmediate = 2;

// A character of a text being expanded, or a piece, `iFirstPiece` + its number, that the bytes will fill in.
using Symbol = uint16_t;
constexpr Symbol iFirstPiece = 256;

class Expander {
public:
    // With `live` every piece is written as soon as it is met, without it the pieces are kept.
    Expander(const MnemonicTable& itstable, uint16_t itsopcode, InstructionBytes* itsbytes)
        : table(itstable), opcode(itsopcode), live(itsbytes) {}

    // Whether all of it could be worked out.
    bool run(std::string_view text);

    [[nodiscard]] std::string livetext() const { return {source.begin(), source.end()}; }
    [[nodiscard]] Expansion finished();

private:
    void pass();
    size_t expandcode(size_t at);
    void expandfield(char start, char width);
    void expandlookup(SectionName section);
    void expandextension(char what);
    void expandoperand(char what);
    void expandimmediate();
    void expandregisters();

    char codechar(size_t at);
    uint32_t field(char start, char width) const {
        return valuebits(opcode, hexdigit(start), hexdigit(width));
    }
    void put(std::string_view text);
    void put(Symbol symbol);
    uint16_t take(Fetch what);
    void show(Piece::Kind kind, uint16_t value, uint16_t extension = 0);
    void takeandshow(Fetch::Kind what, Piece::Kind kind) { show(kind, take({what, 0})); }
    uint16_t extensionword();

    const MnemonicTable& table;
    uint16_t opcode;
    InstructionBytes* live;

    std::vector<Symbol> source; // what the pass reads
    std::vector<Symbol> result; // what it writes
    size_t longestresult = 0;   // the most characters that it can have
    bool good = true;

    std::vector<Fetch> fetches;
    std::vector<Piece> pieces;
    std::vector<uint32_t> values; // of the fetches, when live

    int32_t immediatesize = iLongImmediate;
    bool predecrement = false;
    std::optional<uint16_t> extension; // which value is the extension word
    std::optional<uint16_t> mask;      // which value is the register mask
};

void Expander::put(Symbol symbol) {
    if (result.size() < iMissTextMost) result.push_back(symbol);
    longestresult += symbol < iFirstPiece ? 1 : longest(pieces[symbol - iFirstPiece].kind);
}

void Expander::put(std::string_view text) {
    for (const char c : text) {
        if (result.size() == iMissTextMost && longestresult > iMissTextMost) return;
        put(Symbol{static_cast<unsigned char>(c)});
    }
}

uint16_t Expander::take(Fetch what) {
    if (live != nullptr) values.push_back(fetch(*live, what, values));
    fetches.push_back(what);
    return static_cast<uint16_t>(fetches.size() - 1);
}

void Expander::show(Piece::Kind kind, uint16_t value, uint16_t extensionvalue) {
    const Piece piece = {.kind = kind, .value = value, .extension = extensionvalue};
    if (live == nullptr) {
        pieces.push_back(piece);
        return put(static_cast<Symbol>(iFirstPiece + pieces.size() - 1));
    }
    std::array<char, iPieceMost> text;
    put({text.data(), writepiece(text.data(), piece, values)});
}

// A character of a code, 0 beyond the end.
char Expander::codechar(size_t at) {
    if (at >= source.size()) return '\0';
    if (source[at] >= iFirstPiece) good = false;
    return static_cast<char>(source[at]);
}

void Expander::expandfield(char start, char width) {
    const uint32_t value = field(start, width);
    put(width == '8' ? formatted("%02X", value) : std::to_string(value));
}

void Expander::expandlookup(SectionName section) {
    const char* const text = table.spelling(section, field(section[1], section[2]));
    if (text == nullptr) return put(cUnknownCode);
    if (section[0] == 's') {
        const char size = *text;
        if (size == 'B' || size == 'b' || size == 'W' || size == 'w') immediatesize = iWordImmediate;
        if (size == 'L' || size == 'l') immediatesize = iLongImmediate;
    }
    if (*text == '-') predecrement = true;
    put(std::string_view(text).substr(0, iMissTextMost));
}

uint16_t Expander::extensionword() {
    if (!extension) extension = take({Fetch::Word, 0});
    return *extension;
}

void Expander::expandextension(char what) {
    const uint16_t word = extensionword();
    if (what == 'R') return show(Piece::Index, word);
    if (what == 'D') return show(Piece::Displacement, take({Fetch::Displacement, word}), word);
    show(Piece::Extension, word);
}

void Expander::expandimmediate() {
    if (immediatesize == iLongImmediate)
        takeandshow(Fetch::Long, Piece::Long);
    else
        takeandshow(Fetch::Word, Piece::Word);
}

void Expander::expandregisters() {
    // A list without a mask is that of no registers.
    if (!mask) return;
    if (live != nullptr && predecrement) {
        const uint32_t word = values[*mask];
        message(kRaw, "PreDec[%04x:", word);
        message(kRaw, "%04x]", turnedmask(word));
    }
    show(predecrement ? Piece::RegistersTurned : Piece::Registers, *mask);
}

void Expander::expandoperand(char what) {
    switch (what) {
    case '%':
        return expandimmediate();
    case '0':
        return put(formatted("%x", opcode));
    case '1':
        return takeandshow(Fetch::Byte, Piece::Byte);
    case '2':
        return takeandshow(Fetch::Word, Piece::Word);
    case '4':
        return takeandshow(Fetch::Long, Piece::Long);
    case 'C':
        return show(Piece::ToControl, *(mask = take({Fetch::Word, 0})));
    case 'c':
        return show(Piece::FromControl, *(mask = take({Fetch::Word, 0})));
    case 'R':
        mask = take({Fetch::Word, 0});
        // The list waits for the next pass, when the operand beside it has said in which order the mask is.
        return put("%%r");
    case 'r':
        return expandregisters();
    default:
        return put(cUnknownCode);
    }
}

// Expands the code at `at` and returns its length.
size_t Expander::expandcode(size_t at) {
    constexpr size_t codelength = 3;
    constexpr size_t lookuplength = 6;
    const char first = codechar(at + 1);
    const char second = codechar(at + 2);
    if (first == '(') {
        expandlookup({second, codechar(at + 3), codechar(at + 4)});
        // Whatever closes it is swallowed; of a piece, which is more characters than one, only the first.
        static_cast<void>(codechar(at + 5));
        return lookuplength;
    }
    if (first == '%')
        expandoperand(second);
    else if (first == 'X')
        expandextension(second);
    else
        expandfield(first, second);
    return codelength;
}

void Expander::pass() {
    result.clear();
    longestresult = 0;
    for (size_t at = 0; at < source.size() && good;) {
        if (source[at] == '%')
            at += expandcode(at);
        else
            put(source[at++]);
    }
    // Kept pieces may be as long as they can be, so what might have to be cut cannot be kept.
    if (live == nullptr && longestresult > iMissTextMost) good = false;
    std::swap(source, result);
}

bool Expander::run(std::string_view text) {
    source.clear();
    for (const char c : text)
        source.push_back(static_cast<unsigned char>(c));
    for (int passes = 0; passes < iPassesMost && good; ++passes) {
        if (std::ranges::find(source, Symbol{'%'}) == source.end()) break;
        if (live != nullptr && isshown(kRaw)) message(kRaw, "cMnI=[%s]\n", livetext().c_str());
        pass();
    }
    return good && (live != nullptr || fetches.size() <= iFetchesMost);
}

Expansion Expander::finished() {
    Expansion expansion;
    std::vector<Piece>& parts = expansion.pieces;
    for (const Symbol symbol : source) {
        if (symbol >= iFirstPiece) {
            parts.push_back(pieces[symbol - iFirstPiece]);
            continue;
        }
        if (parts.empty() || parts.back().kind != Piece::Literal)
            parts.push_back({.at = static_cast<uint16_t>(expansion.literals.size())});
        ++parts.back().length;
        expansion.literals.push_back(static_cast<char>(symbol));
    }
    // No piece is part of a marker, but an empty register list may stand in the middle of one.
    expansion.hasmarker = expansion.literals.find(cMarker) != std::string::npos ||
                          expansion.literals.find(cDroppedMarker) != std::string::npos;
    expansion.isfixed = fetches.empty() && !expansion.hasmarker;
    if (expansion.isfixed) {
        std::string& text = expansion.literals;
        text.resize(static_cast<size_t>(dropzeros(text.data(), text) - text.data()));
    }
    expansion.literals.append(iLiteralBlock, '\0');
    expansion.fetches = std::move(fetches);
    return expansion;
}

// What an opcode word that matches no entry expands from. Its code takes the parenthesis for a digit, so the
// text comes out as "(unknown 0"; listings show it so.
const std::string cUnknownTemplate = "(unknown %0)";

const std::string& templatefor(const Mnemonic* entry) {
    return entry != nullptr ? entry->text : cUnknownTemplate;
}

} // namespace

std::optional<Expansion> expandopcode(const MnemonicTable& table, uint16_t opcode) {
    Expander expander(table, opcode, nullptr);
    if (!expander.run(templatefor(table.find(opcode)))) return std::nullopt;
    return expander.finished();
}

std::string expandinstruction(const MnemonicTable& table, uint16_t opcode, InstructionBytes& bytes) {
    message(kRaw, "getting first two bytes\n");
    message(kRaw, "First two bytes %04x\n", opcode);
    message(kRaw, "Defaulting Mnemonic to unknown \"(unknown %%0)\"\n");
    message(kRaw, "Initial setting : [%04x] %s\n", opcode, cUnknownTemplate.c_str());
    message(kRaw, "[%04x]\n", opcode);
    const Mnemonic* entry = table.find(opcode);
    if (entry != nullptr) message(kRaw, "[FOUND:%s]\n", entry->text.c_str());
    Expander expander(table, opcode, &bytes);
    expander.run(templatefor(entry));
    return expander.livetext();
}

} // namespace vantorel
