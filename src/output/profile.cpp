#include "output/profile.h"

#include "base/message.h"

namespace vantorel {

int32_t isROMType = RomType::iUnset;
std::array<int32_t, iProfileSlots> isProfileROM = iNoProfile;

void romprofile(int32_t type, int32_t rom0, int32_t rom1, int32_t rom2, int32_t rom3) {
    isROMType = type;
    isProfileROM = {rom0, rom1, rom2, rom3};
    message(kProgress, "ROM Profile = %d\n", type);
    message(kProgress, "ROM 0xF8 = %d\n", rom0);
    message(kProgress, "ROM 0xE0 = %d\n", rom1);
    message(kProgress, "ROM 0xB0 = %d\n", rom2);
    message(kProgress, "ROM 0xA0 = %d\n", rom3);
}

const KickstartRom* profilerom(size_t position) { return findslot(isProfileROM[position]); }

int32_t profilesize(size_t position) {
    const KickstartRom* slot = profilerom(position);
    return slot != nullptr ? slot->iSize() : 0;
}

} // namespace vantorel
