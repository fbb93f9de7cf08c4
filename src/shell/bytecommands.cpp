// The commands on the bytes of a ROM.

#include "missassembler/findopcode.h"
#include "rom/store.h"
#include "shell/arguments.h"
#include "shell/commandset.h"
#include "shell/find.h"
#include "shell/numbers.h"

#include <string>

namespace vantorel::command {

namespace {

// Reads the arguments of a search, start, end and what to look for, and runs it.
void search(const char* complaint, int (*run)(int32_t, uint32_t, uint32_t, const std::string&)) {
    if (!require(1, "ERROR, please specify where you want to start searching\n")) return;
    if (!require(2, "ERROR, please specify what you want to end searching\n")) return;
    if (!require(3, complaint)) return;
    const auto start = offsetargument(1);
    if (!start) return;
    const auto end = offsetargument(2);
    if (!end) return;
    run(iCurrentROM, *start, *end, argument(3));
}

} // namespace

void find() { search("ERROR, please specify what you want to find\n", vantorel::find); }

void findopcode() {
    search("ERROR, please specify (the mask) of the opcode you want to find e.g. \"LEA F8036E(PC),A0\"\n",
           vantorel::findopcode);
}

void patch() {
    if (!require(1, "ERROR, please specify where you want to patch\n")) return;
    if (!require(2, "ERROR, please specify what you want to patch\n")) return;
    if (isnumber(1) && !decimalinrange(argument(1))) return refusenumber(argument(1));
    vantorel::patch(iCurrentROM, argument(1), argument(2));
}

} // namespace vantorel::command
