#include "missassembler/findopcode.h"

#include "base/message.h"
#include "base/text.h"
#include "missassembler/decode.h"
#include "missassembler/start.h"
#include "rom/store.h"
#include "shell/alias.h"

#include <algorithm>
#include <optional>

namespace vantorel {

namespace {

// The image offset of the first instruction spelt `text` in [start, end); none without one.
std::optional<uint32_t> searchopcode(int32_t rom, int64_t start, int64_t end, const std::string& text) {
    const uint32_t base = psKickstartRoms[static_cast<size_t>(rom)].iROMBase;
    message(kDetail, "ROMBase %08x\n", base);
    MissText decoded;
    for (int64_t offset = start; offset < end; offset += 2) {
        const int32_t length = missassembleA(rom, static_cast<int32_t>(offset), decoded, sMnemonic);
        message(kDetail, "%06X:\n", base + static_cast<uint32_t>(offset));
        message(kDetail, "[%d:%s]\n", length, decoded.data());
        if (equalnocase(decoded.data(), text)) return static_cast<uint32_t>(offset);
    }
    return std::nullopt;
}

} // namespace

int findopcode(int32_t rom, uint32_t start, uint32_t end, const std::string& text) {
    const KickstartRom* slot = requireslot(rom);
    if (slot == nullptr) return 1;
    if (!readymissassembler()) {
        message(kResult, "ERROR, Unable to initialse the misaassembler\n");
        return 1;
    }
    const auto found = searchopcode(rom, start, std::min<int64_t>(end, slot->iSize()), text);
    if (!found) {
        message(kResult, "findopcode, not found\n");
        return 1;
    }
    const std::string place = hexlong(*found);
    message(kProgress, "findopcode, found at %s\n", place.c_str());
    alias("FIND", place);
    return 0;
}

} // namespace vantorel
