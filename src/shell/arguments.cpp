#include "shell/arguments.h"

#include "base/message.h"
#include "base/text.h"
#include "rom/store.h"
#include "shell/numbers.h"
#include "shell/tokens.h"

namespace vantorel {

const char* argument(int32_t n) { return cpTokens[static_cast<size_t>(n)]; }

bool isgiven(int32_t n) { return *argument(n) != '\0'; }

bool isword(int32_t n, const char* word) { return equalnocase(argument(n), word); }

bool isnumber(int32_t n) { return isgiven(n) && isnumeric(argument(n)); }

bool require(int32_t n, const char* complaint) {
    if (!isgiven(n)) message(kResult, "%s", complaint);
    return isgiven(n);
}

void refusenumber(const char* text) { message(kResult, "ERROR, the number %s is out of range\n", text); }

std::optional<int32_t> numberargument(int32_t n) {
    const auto value = decimalinrange(argument(n));
    if (!value) refusenumber(argument(n));
    return value;
}

std::optional<int32_t> requirenumber(int32_t n, const char* missing, const char* malformed) {
    if (!require(n, missing)) return std::nullopt;
    if (isnumber(n)) return numberargument(n);
    message(kResult, "%s", malformed);
    return std::nullopt;
}

std::optional<int32_t> countargument(int32_t n) {
    const auto value = numberargument(n);
    if (!value || *value >= 0) return value;
    refusenumber(argument(n));
    return std::nullopt;
}

std::optional<uint32_t> offsetargument(int32_t n) {
    if (ishexadecimal(argument(n))) return atoiorhex(argument(n));
    const auto value = countargument(n);
    if (!value) return std::nullopt;
    return static_cast<uint32_t>(*value);
}

std::optional<int32_t> slotargument(int32_t n) {
    if (!isnumber(n)) return iCurrentROM;
    return numberargument(n);
}

} // namespace vantorel
