#include "rom/checksum.h"

#include "base/message.h"
#include "rom/store.h"

#include <algorithm>

namespace vantorel {

namespace {

// The long at `offset`, with zeroes for what lies behind the end.
uint32_t paddedlong(View data, int64_t offset) {
    if (const auto value = longat(data, offset)) return *value;
    std::array<uint8_t, 4> bytes{};
    std::ranges::copy(data.subspan(static_cast<size_t>(offset)), bytes.begin());
    return iUINT32(bytes.data());
}

uint32_t addwithcarry(uint32_t sum, uint32_t value) {
    sum += value;
    return sum < value ? sum + 1 : sum;
}

bool carriesvalidchecksum(View data) {
    const auto stored = longat(data, static_cast<int64_t>(data.size()) - iChecksumFromEnd);
    return stored == cChecksumData(data);
}

} // namespace

uint32_t cChecksumData(View data) {
    const auto size = static_cast<int64_t>(data.size());
    uint32_t sum = 0;
    uint32_t stored = 0;
    for (int64_t offset = 0; offset < size - 1; offset += 4) {
        const uint32_t value = paddedlong(data, offset);
        if (offset == size - iChecksumFromEnd)
            stored = value;
        else
            sum = addwithcarry(sum, value);
    }
    message(kProgress, "cChecksumData function Calculated=%08x Stored=%08x Size=%d @%p\n", ~sum, stored,
            static_cast<int32_t>(size), static_cast<const void*>(data.data()));
    return ~sum;
}

uint32_t cChecksum(int32_t rom) {
    const KickstartRom* slot = requireslot(rom);
    return slot != nullptr ? cChecksumData(slot->pcROM) : 0;
}

bool iskickstartsize(size_t size) { return size == iSize256K || size == iSize512K || size == iSize1M; }

bool validrom(View data) {
    if (!iskickstartsize(data.size()) || data[0] != RomHeader::cFirstByte) return false;
    if (data.size() != iSize1M) return carriesvalidchecksum(data);
    return carriesvalidchecksum(part(data, 0, iSize512K)) &&
           carriesvalidchecksum(part(data, iSize512K, iSize512K));
}

} // namespace vantorel
