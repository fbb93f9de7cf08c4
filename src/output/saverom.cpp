#include "output/saverom.h"

#include "base/files.h"
#include "base/message.h"
#include "base/settings.h"
#include "rom/store.h"

namespace vantorel {

int saverom(int32_t rom, const std::string& name) {
    if (iMaxRom == 0) return 1;
    const KickstartRom* slot = findslot(rom);
    if (slot == nullptr) {
        message(kResult, "ERROR: no such ROM [%d]\n", rom);
        return 1;
    }
    return savefile(savepath(name.empty() ? identityname(*slot) : name), slot->pcROM);
}

} // namespace vantorel
