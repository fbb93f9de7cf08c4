#include "support/checksums.h"

#include <cstdio>
#include <stdexcept>

namespace vantorel::test {

uint32_t crc32of(View data) {
    uint32_t crc = 0xFFFFFFFF;
    for (uint8_t byte : data) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = crc & 1 ? crc >> 1 ^ 0xEDB88320 : crc >> 1;
    }
    return ~crc;
}

uint32_t carrysum(View data) {
    if (data.size() % 4 != 0) throw std::logic_error("carrysum: the length is no multiple of 4");
    uint64_t sum = 0;
    for (size_t i = 0; i < data.size(); i += 4)
        sum += iUINT32(data.data() + i);
    // Carries can be collected and added at the end: fewer than 2^32 longs make one more carry at most.
    sum = (sum & 0xFFFFFFFF) + (sum >> 32);
    return static_cast<uint32_t>((sum & 0xFFFFFFFF) + (sum >> 32));
}

uint32_t kickstartsum(View data) {
    if (data.size() < 24) throw std::logic_error("kickstartsum: the image has no room for a checksum");
    Bytes copy(data.begin(), data.end());
    if (!putlong(copy, static_cast<int64_t>(copy.size()) - 24, 0)) throw std::logic_error("kickstartsum");
    return ~carrysum(copy);
}

std::string hex32(uint32_t value) {
    char text[16];
    snprintf(text, sizeof text, "0x%08x", value);
    return text;
}

std::string hashname(uint32_t crc, std::string_view idstring) {
    std::string name = hex32(crc) + ".";
    for (char c : idstring)
        name += c == ' ' || c == '/' || c == '\\' ? '_' : c;
    return name;
}

} // namespace vantorel::test
