// The commands on the bytes of a ROM.

#include "rom/store.h"
#include "shell/arguments.h"
#include "shell/commandset.h"
#include "shell/find.h"
#include "shell/numbers.h"

namespace vantorel::command {

void find() {
    if (!require(1, "ERROR, please specify where you want to start searching\n")) return;
    if (!require(2, "ERROR, please specify what you want to end searching\n")) return;
    if (!require(3, "ERROR, please specify what you want to find\n")) return;
    const auto start = offsetargument(1);
    if (!start) return;
    const auto end = offsetargument(2);
    if (!end) return;
    vantorel::find(iCurrentROM, *start, *end, argument(3));
}

void patch() {
    if (!require(1, "ERROR, please specify where you want to patch\n")) return;
    if (!require(2, "ERROR, please specify what you want to patch\n")) return;
    if (isnumber(1) && !decimalinrange(argument(1))) return refusenumber(argument(1));
    vantorel::patch(iCurrentROM, argument(1), argument(2));
}

} // namespace vantorel::command
