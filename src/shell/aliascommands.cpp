// The forms of the `alias` command.

#include "base/message.h"
#include "rom/store.h"
#include "shell/alias.h"
#include "shell/arguments.h"
#include "shell/commandset.h"
#include "shell/numbers.h"

#include <array>

namespace vantorel::command {

namespace {

// An operand may be negative, or hexadecimal, but a decimal one has to fit, or there is an error line.
bool requireoperand(int32_t n) { return ishexadecimal(argument(n)) || numberargument(n); }

void add() {
    if (requireoperand(3)) aliasadd(argument(1), argument(3));
}

void subtract() {
    if (requireoperand(3)) aliassub(argument(1), argument(3));
}

void mid() {
    const auto start = countargument(3);
    if (!start) return;
    if (const auto length = countargument(4)) aliasmid(argument(1), *start, *length);
}

void romdata() {
    const auto start = offsetargument(3);
    if (!start) return;
    if (const auto count = offsetargument(4)) aliasromdata(iCurrentROM, argument(1), *start, *count);
}

struct AliasForm {
    const char* word;
    void (*run)();
};

constexpr auto cAliasForms = std::to_array<AliasForm>({
    {"add", add},
    {"subtract", subtract},
    {"mid", mid},
    {"romdata", romdata},
});

} // namespace

void alias() {
    if (!isgiven(1)) {
        message(kProgress, "List aliases?\n");
        return;
    }
    if (!isgiven(3)) return vantorel::alias(argument(1), argument(2));
    for (const AliasForm& form : cAliasForms)
        if (isword(2, form.word)) return form.run();
    message(kResult, "unknown alias command\n");
}

} // namespace vantorel::command
