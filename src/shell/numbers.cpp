#include "shell/numbers.h"

#include "base/message.h"

#include <algorithm>
#include <cctype>
#include <limits>

namespace vantorel {

namespace {

// The value of the leading decimal number, held well outside 32 bits when it is larger.
int64_t widedecimal(const char* text) {
    constexpr int64_t beyond = int64_t{1} << 40;
    while (std::isspace(static_cast<unsigned char>(*text)) != 0)
        ++text;
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+') ++text;
    int64_t value = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
        value = std::min(value * 10 + (*text - '0'), beyond);
    return negative ? -value : value;
}

constexpr int64_t iLeast = std::numeric_limits<int32_t>::min();
constexpr int64_t iMost = std::numeric_limits<int32_t>::max();
constexpr int iLongDigits = 8;

} // namespace

int32_t decimal(const char* text) {
    return static_cast<int32_t>(std::clamp(widedecimal(text), iLeast, iMost));
}

std::optional<int32_t> decimalinrange(const char* text) {
    const int64_t value = widedecimal(text);
    if (value < iLeast || value > iMost) return std::nullopt;
    return static_cast<int32_t>(value);
}

bool isnumeric(const char* text) {
    for (; *text != '\0'; ++text)
        if (*text < '0' || *text > '9') return false;
    return true;
}

bool ishexadecimal(const char* text) { return text[0] == '0' && text[1] == 'x'; }

uint32_t atoiorhex(const char* text) {
    if (!ishexadecimal(text)) return static_cast<uint32_t>(decimal(text));
    uint32_t value = 0;
    for (const char* digit = text + 2; *digit != '\0' && *digit != ','; ++digit)
        value = value * 16 + static_cast<uint32_t>(hexdigit(*digit));
    return value;
}

uint32_t Hex2iUINT32(const char* text) {
    uint32_t value = 0;
    for (int i = 0; i < iLongDigits && text[i] != '\0'; ++i)
        value = value * 16 + static_cast<uint32_t>(hexdigit(text[i]));
    return value;
}

int32_t Hex2iINT32(const char* text) {
    const bool negative = static_cast<unsigned char>(*text) > '7';
    uint32_t value = 0;
    for (int i = 0; i < iLongDigits && text[i] != '\0' && text[i] != '('; ++i) {
        const int32_t digit = hexdigit(text[i]);
        value = value * 16 + static_cast<uint32_t>(negative ? 15 - digit : digit);
    }
    return static_cast<int32_t>(negative ? ~value : value);
}

Bytes hex2bin(const char* text) {
    Bytes bytes;
    if (!ishexadecimal(text)) {
        message(kResult, "Hex string must begin 0x\n");
        return bytes;
    }
    for (const char* digit = text + 2; *digit != '\0'; digit += 2) {
        bytes.push_back(static_cast<uint8_t>(hexdigit(digit[0]) * 16 + hexdigit(digit[1])));
        if (digit[1] == '\0') break;
    }
    return bytes;
}

} // namespace vantorel
