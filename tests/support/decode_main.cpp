// vantorel-decode LIBRARY BASE < records > lines
//
// Decodes records of 32 bytes, each as an image of its own with ROM base BASE (hexadecimal), with the
// mnemonic table of the hash library LIBRARY. For each, the length in bytes and the text of the instruction
// at its start.

#include "hash/library.h"
#include "missassembler/decode.h"
#include "missassembler/start.h"
#include "rom/store.h"

#include <cstdio>
#include <string>

using namespace vantorel;

int main(int count, char** arguments) {
    constexpr int32_t iRecord = 32;
    if (count != 3) {
        std::fputs("usage: vantorel-decode LIBRARY BASE < records > lines\n", stderr);
        return 2;
    }
    loadhashes(arguments[1]);
    if (initmissassembler() != 0) return 1;
    KickstartRom& slot = psKickstartRoms[static_cast<size_t>(newrom(iRecord, 0))];
    slot.iROMBase = static_cast<uint32_t>(std::stoul(arguments[2], nullptr, 16));
    MissText text;
    while (std::fread(slot.pcROM.data(), 1, slot.pcROM.size(), stdin) == slot.pcROM.size()) {
        const int32_t length = missassembleA(0, 0, text, sMnemonic);
        std::printf("%d %s\n", length, text.data());
    }
    return 0;
}
