#include "missassembler/finish.h"

#include "missassembler/bounds.h"
#include "missassembler/operands.h"
#include "shell/numbers.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace vantorel {

namespace {

bool endsdisplacement(char c) { return c == ' ' || c == ',' || c == '$'; }

// Where the displacement before `marker` begins: behind the nearest blank, comma or dollar, never with the
// first character.
size_t displacementstart(std::string_view text, size_t marker) {
    while (marker > 0 && !endsdisplacement(text[marker]))
        --marker;
    return marker + 1;
}

// At least six digits.
char* writetarget(char* out, uint32_t target) {
    int digits = 6;
    while (digits < static_cast<int>(iTargetMost) && target >> (4 * digits) != 0)
        ++digits;
    return writehex(out, target, digits);
}

} // namespace

char* settarget(char* begin, char* end, uint32_t from, int32_t rom) {
    *end = '\0';
    const std::string_view text(begin, end);
    size_t marker = text.find(cMarker);
    const bool keepmarker = marker != std::string_view::npos;
    if (!keepmarker) marker = text.find(cDroppedMarker);
    if (marker == std::string_view::npos) return end;
    char* const displacement = begin + displacementstart(text, marker);
    const uint32_t target = from + static_cast<uint32_t>(Hex2iINT32(displacement));
    checkaddressbound(rom, target);
    std::array<char, iTargetMost> digits;
    const char* const digitsend = writetarget(digits.data(), target);
    const char* const rest = begin + marker + (keepmarker ? 0 : cDroppedMarker.size());
    char* const newrest = displacement + (digitsend - digits.data());
    std::memmove(newrest, rest, static_cast<size_t>(end - rest));
    std::copy<const char*>(digits.data(), digitsend, displacement);
    return newrest + (end - rest);
}

namespace {

bool beginsnumber(char c) { return c == ' ' || c == '#' || c == '$' || c == ','; }

bool isupperhex(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'); }

} // namespace

char* dropzeros(char* to, std::string_view text) {
    const char* const end = text.data() + text.size();
    for (const char* from = text.data(); from != end;) {
        const char c = *from++;
        *to++ = c;
        if (!beginsnumber(c)) continue;
        while (end - from >= 2 && *from == '0' && isupperhex(from[1]))
            ++from;
    }
    return to;
}

} // namespace vantorel
