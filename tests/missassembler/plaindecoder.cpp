#include "missassembler/plaindecoder.h"

#include "base/text.h"

#include <algorithm>

namespace vantorel::test {

namespace {

constexpr size_t iMost = 255;
constexpr int iPasses = 32;

// What a character is worth as a digit.
int digit(char c) {
    const int code = static_cast<unsigned char>(c);
    return code < 'A' ? code - 48 : code < 'a' ? code - 55 : code - 87;
}

char characterat(const std::string& text, size_t place) { return place < text.size() ? text[place] : '\0'; }

std::string registername(uint32_t word) {
    return ((word & 0x8000) != 0 ? "A" : "D") + std::to_string(word / 4096 % 8);
}

std::string controlname(uint32_t number) {
    static const std::map<uint32_t, std::string> names = {
        {0x000, "SFC (68010+)"}, {0x001, "DFC (68010+)"},  {0x002, "CACR (68020+)"}, {0x800, "USP (68010+)"},
        {0x801, "VBR (68010+)"}, {0x802, "CAAR (68020+)"}, {0x803, "MSP (68020+)"},  {0x804, "ISP (68020+)"}};
    const auto found = names.find(number);
    return found == names.end() ? "(unknown)" : found->second;
}

std::string withoutzeros(const std::string& text) {
    std::string result;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool isdigit = characterat(text, i) == '0';
        const char behind = characterat(text, i + 1);
        const bool isnumber = (behind >= '0' && behind <= '9') || (behind >= 'A' && behind <= 'F');
        const bool isleading =
            !result.empty() && std::string(" #$,").find(result.back()) != std::string::npos;
        if (!(isdigit && isnumber && isleading)) result += text[i];
    }
    return result;
}

} // namespace

std::string PlainTable::text() const {
    std::string file = "[mnemonics]\n";
    for (const auto& [pattern, instruction] : lines)
        file += pattern + "=" + instruction + "\n";
    for (const auto& [name, items] : sections) {
        file += "[" + name + "]\n";
        for (const auto& [key, value] : items)
            file += std::to_string(key) + "=" + value + "\n";
    }
    return file;
}

uint32_t PlainDecoder::next(int count) {
    uint32_t value = 0;
    for (int i = 0; i < count; ++i, ++length) {
        const auto place = static_cast<size_t>(start + length);
        value = value * 256 + (place < image.size() ? image[place] : 0U);
    }
    return value;
}

uint32_t PlainDecoder::bits(char a, char b) const {
    const int first = digit(a);
    const int width = digit(b);
    if (first < 0 || first > 15 || width <= 0 || width > 16) return 0;
    return (opcode << first) % 65536 >> (16 - width);
}

std::string PlainDecoder::instruction() const {
    for (const auto& [pattern, words] : table.lines) {
        bool matches = true;
        for (size_t i = 0; i < 16; ++i) {
            const bool isset = (opcode >> (15 - i) & 1U) != 0;
            if (pattern[i] != '?' && isset != (pattern[i] == '1')) matches = false;
        }
        if (matches) return words.substr(0, iMost);
    }
    return "(unknown %0)";
}

std::string PlainDecoder::lookup(const std::string& name) {
    const auto section = std::ranges::find_if(
        table.sections, [&](const auto& entry) { return equalnocase(entry.first, name); });
    if (section == table.sections.end()) return "???";
    const auto item = section->second.find(static_cast<int>(bits(name[1], name[2])));
    if (item == section->second.end()) return "???";
    const char first = characterat(item->second, 0);
    if (name[0] == 's' && (first == 'B' || first == 'b' || first == 'W' || first == 'w')) size = 2;
    if (name[0] == 's' && (first == 'L' || first == 'l')) size = 4;
    if (first == '-') predecrement = true;
    return item->second;
}

std::string PlainDecoder::displacement(uint32_t word) {
    if ((word & 0x100) == 0) return formatted("%04X", word & 0xFF);
    if ((word & 0x30) == 0x20) return formatted("%04X", next(2));
    if ((word & 0x30) == 0x30) return formatted("%08X", next(4));
    return "?";
}

std::string PlainDecoder::extended(char what) {
    if (!hasextension) extension = next(2);
    hasextension = true;
    const std::string word = formatted("[X:%04X]", extension);
    if (what == 'R') return word + registername(extension);
    if (what == 'D') return word + displacement(extension);
    return word;
}

std::string PlainDecoder::address() {
    shown.push_back(next(4));
    return formatted("%08X", shown.back());
}

std::string PlainDecoder::movec(bool isto) {
    mask = next(2);
    const std::string general = registername(mask);
    const std::string control = controlname(mask % 4096);
    return isto ? general + "," + control : control + "," + general;
}

std::string PlainDecoder::registers() const {
    std::string names;
    for (const char kind : {'D', 'A'}) {
        const auto isset = [&](int n) {
            const int bit = n + (kind == 'A' ? 8 : 0);
            return n < 8 && (mask >> (predecrement ? 15 - bit : bit) & 1U) != 0;
        };
        for (int n = 0; n < 8; ++n) {
            if (!isset(n)) continue;
            names += formatted("/%c%d", kind, n);
            if (!isset(n + 1) || !isset(n + 2)) continue;
            while (isset(n + 1))
                ++n;
            names += formatted("-%c%d", kind, n);
        }
    }
    return names.empty() ? names : names.substr(1);
}

std::string PlainDecoder::operand(char what) {
    switch (what) {
    case '%':
        return size == 4 ? address() : formatted("%04X", next(2));
    case '0':
        return formatted("%x", opcode);
    case '1':
        return formatted("%02X", next(1));
    case '2':
        return formatted("%04X", next(2));
    case '4':
        return address();
    case 'C':
    case 'c':
        return movec(what == 'C');
    case 'R':
        mask = next(2);
        return "%%r";
    case 'r':
        return registers();
    default:
        return "???";
    }
}

size_t PlainDecoder::code(size_t place) {
    const char a = characterat(text, place + 1);
    const char b = characterat(text, place + 2);
    if (a == '(') {
        result += lookup({b, characterat(text, place + 3), characterat(text, place + 4)});
        return place + 6;
    }
    if (a == '%')
        result += operand(b);
    else if (a == 'X')
        result += extended(b);
    else
        result += b == '8' ? formatted("%02X", bits(a, b)) : std::to_string(bits(a, b));
    return place + 3;
}

void PlainDecoder::pass() {
    result.clear();
    for (size_t place = 0; place < text.size();) {
        if (text[place] == '%')
            place = code(place);
        else
            result += text[place++];
    }
    text = result.substr(0, iMost);
}

void PlainDecoder::settarget() {
    const bool islarge = text.find("(PC)") != std::string::npos;
    const size_t marker = text.find(islarge ? "(PC)" : "(pc)");
    if (marker == std::string::npos) return;
    size_t from = text.find_last_of(" ,$", marker);
    from = from == std::string::npos ? 1 : from + 1;
    const std::string digits = text.substr(from, 8).substr(0, text.substr(from, 8).find('('));
    const bool isnegative = !digits.empty() && static_cast<unsigned char>(digits[0]) > '7';
    int64_t value = 0;
    for (const char c : digits)
        value = value * 16 + (isnegative ? 15 - digit(c) : digit(c));
    if (isnegative) value = -(value + 1);
    const auto target = static_cast<uint32_t>(int64_t{base} + start + 2 + value);
    shown.push_back(target);
    text = text.substr(0, from) + formatted("%06X", target) + text.substr(marker + (islarge ? 0 : 4));
    text = text.substr(0, iMost);
}

Decoded PlainDecoder::decode(int32_t offset) {
    start = offset;
    length = 0;
    size = 4;
    predecrement = hasextension = false;
    mask = 0;
    shown.clear();
    opcode = next(2);
    text = instruction();
    for (int passes = 0; passes < iPasses && text.find('%') != std::string::npos; ++passes)
        pass();
    settarget();
    return {withoutzeros(text), length};
}

} // namespace vantorel::test
