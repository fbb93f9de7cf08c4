#include "adf/image.h"

#include <algorithm>

namespace vantorel {

std::array<uint8_t, adf::iImageSize> cBuffer{};
int32_t FFS = 0;
int32_t iDataBlockSize = adf::kPayloadOFS.iSize;
int32_t iDataBlockOffset = adf::kPayloadOFS.iOffset;

void detectfilesystem() {
    FFS = (blockat(adf::iBootBlock)[adf::kBootFlags] & adf::kFlagFFS) != 0 ? 1 : 0;
    const adf::Payload payload = FFS ? adf::kPayloadFFS : adf::kPayloadOFS;
    iDataBlockSize = payload.iSize;
    iDataBlockOffset = payload.iOffset;
}

View blockat(int32_t block) {
    const int64_t offset = int64_t{block} * adf::iBlockSize;
    if (!isinside(cBuffer, offset, adf::iBlockSize)) return {};
    return part(cBuffer, offset, adf::iBlockSize);
}

uint32_t blocklong(int32_t block, int32_t offset) { return longat(blockat(block), offset).value_or(0); }

std::string blockname(int32_t block) {
    const View bytes = blockat(block);
    if (bytes.empty()) return {};
    // Real disks do not always pad with zeros, so the length byte has its say where it can be right.
    const int32_t stated = bytes[adf::kNameLength];
    const int32_t length = stated >= 1 && stated <= adf::iNameMax ? stated : adf::iNameMax;
    const View name = part(bytes, adf::kName, length);
    return {name.begin(), std::ranges::find(name, uint8_t{0})};
}

int64_t blockseconds(int32_t block) {
    const int64_t days = blocklong(block, adf::kDays);
    const int64_t minutes = blocklong(block, adf::kMinutes);
    const int64_t ticks = blocklong(block, adf::kTicks);
    return days * 86400 + minutes * 60 + ticks / adf::iTicksPerSecond + adf::iAmigaEpoch;
}

View blockpayload(int32_t block) {
    const View bytes = blockat(block);
    return bytes.empty() ? bytes : part(bytes, iDataBlockOffset, iDataBlockSize);
}

} // namespace vantorel
