#include "shell/find.h"

#include "base/bytes.h"
#include "base/message.h"
#include "component/extract.h"
#include "rom/store.h"
#include "shell/alias.h"
#include "shell/numbers.h"

#include <algorithm>
#include <cstring>

namespace vantorel {

namespace {

// Two bytes of a pattern, by their offsets in it, that a place is judged by at first.
struct Landmarks {
    int64_t first;
    int64_t second;
};

// The first of the offsets from `at` up to, not including, `to` where both landmarks of `pattern` fit; `to`
// when there is none. Blocks are judged whole, without a branch in them, so that the compiler can take many
// places at once.
int64_t findlandmarks(View image, View pattern, Landmarks marks, int64_t at, int64_t to) {
    constexpr int64_t block = 128;
    const uint8_t* firsts = image.data() + marks.first;
    const uint8_t* seconds = image.data() + marks.second;
    const uint8_t first = pattern[static_cast<size_t>(marks.first)];
    const uint8_t second = pattern[static_cast<size_t>(marks.second)];
    for (; to - at >= block; at += block) {
        uint8_t hit = 0;
        for (int64_t i = at; i < at + block; ++i)
            hit = static_cast<uint8_t>(hit | ((firsts[i] == first) & (seconds[i] == second)));
        if (hit != 0) break;
    }
    while (at < to && (firsts[at] != first || seconds[at] != second))
        ++at;
    return at;
}

// The first of the offsets from `from` up to, not including, `to` at which `image` holds `pattern` whole; -1
// when there is none. With the C library, which skips over the more the longer a pattern is.
int64_t searchlong(View image, View pattern, int64_t from, int64_t to) {
    const View range = part(image, from, to - from + std::ssize(pattern) - 1);
    const void* found = ::memmem(range.data(), range.size(), pattern.data(), pattern.size());
    return found != nullptr ? static_cast<const uint8_t*>(found) - image.data() : -1;
}

// The same with landmarks, the faster way for a few bytes, as long as they tell places apart.
int64_t searchshort(View image, View pattern, int64_t from, int64_t to) {
    constexpr int mistakesmost = 64;
    Landmarks marks = {0, std::ssize(pattern) - 1};
    for (int mistakes = 0; mistakes < mistakesmost; ++mistakes, ++from) {
        from = findlandmarks(image, pattern, marks, from, to);
        if (from >= to) return -1;
        const auto differing = std::ranges::mismatch(pattern, part(image, from, std::ssize(pattern))).in1;
        if (differing == pattern.end()) return from;
        // What told this place from the pattern will tell others like it, too.
        marks.second = differing - pattern.begin();
    }
    return from < to ? searchlong(image, pattern, from, to) : -1;
}

// Either, for the offsets at which the whole pattern lies inside the image.
int64_t search(View image, View pattern, int64_t from, int64_t to) {
    constexpr int64_t longpattern = 16;
    const int64_t length = std::ssize(pattern);
    to = std::min(to, std::ssize(image) - length + 1);
    if (from >= to || pattern.empty()) return from < to ? from : -1;
    const bool isshort = length > 1 && length < longpattern;
    return isshort ? searchshort(image, pattern, from, to) : searchlong(image, pattern, from, to);
}

} // namespace

int find(int32_t rom, uint32_t start, uint32_t end, const std::string& hextext) {
    const KickstartRom* slot = requireslot(rom);
    if (slot == nullptr) return 1;
    const Bytes bytes = hex2bin(hextext.c_str());
    if (!ishexadecimal(hextext.c_str())) return 1;
    // A last digit without a partner is no part of the pattern.
    const auto length = static_cast<int64_t>(hextext.size() / 2) - 1;
    message(kProgress, "Looking for %d bytes %s between %d and %d\n", static_cast<int32_t>(length),
            hextext.c_str(), static_cast<int32_t>(start), static_cast<int32_t>(end));
    // The start counts twice: what does not begin at 0 stops early, and scripts are written for it.
    const int64_t limit = int64_t{end} - start - length;
    const int64_t found = search(slot->pcROM, part(bytes, 0, length), start, limit);
    if (found < 0) {
        message(kResult, "Not found\n");
        return 1;
    }
    const std::string place = hexlong(static_cast<uint32_t>(found));
    message(kProgress, "find, found at %d [%s]\n", static_cast<int32_t>(found), place.c_str());
    alias("FIND", place);
    return 0;
}

namespace {

int32_t positionof(const std::string& where) {
    if (isnumeric(where.c_str())) return decimal(where.c_str());
    if (ishexadecimal(where.c_str())) return static_cast<int32_t>(Hex2iUINT32(where.c_str() + 2));
    return -1;
}

void tellposition(int32_t position) {
    message(kProgress, "Patching position %d 0x%08x\n", position, static_cast<uint32_t>(position));
}

// The image offset that `where` names; -1, and an error line, when it is not in the image.
int32_t patchoffset(const KickstartRom& slot, const std::string& where) {
    int32_t position = positionof(where);
    tellposition(position);
    if (position >= slot.iSize()) {
        message(kProgress, "Outside of bounds of ROM, subtracting ROMBASE\n");
        position = static_cast<int32_t>(static_cast<uint32_t>(position) - slot.iROMBase);
        tellposition(position);
    }
    if (position >= 0 && position < slot.iSize()) return position;
    message(kResult, "ERROR, Can't patch, out of bounds\n");
    return -1;
}

// The number of the first component that holds image offset `position`; -1 when none does.
int32_t componentaround(const KickstartRom& slot, int32_t position) {
    return findnumber(slot, [position](const Component& component) {
        return component.iStart <= position && position < component.iEnd();
    });
}

void overwrite(KickstartRom& slot, int32_t position, const Bytes& bytes) {
    for (const uint8_t byte : bytes) {
        if (position >= slot.iSize()) break;
        message(kProgress, "Patching %06X [%02X]\n", static_cast<uint32_t>(position), byte);
        slot.pcROM[static_cast<size_t>(position)] = byte;
        ++position;
    }
}

} // namespace

void patch(int32_t rom, const std::string& where, const std::string& hextext) {
    KickstartRom* slot = requireslot(rom);
    if (slot == nullptr) return;
    message(kProgress, "Patching [%s] with [%s]\n", where.c_str(), hextext.c_str());
    const int32_t position = patchoffset(*slot, where);
    if (position < 0) return;
    const int32_t number = componentaround(*slot, position);
    const Component* hit = findrecord(rom, number);
    if (hit != nullptr)
        message(kResult, "Patch position is in component number %d (%s)\n", number, shown(hit->pcName));
    if (!ishexadecimal(hextext.c_str())) {
        message(kResult, "ERROR, I can only patch hex values (e.g. 0x2844) hint:alias variables are hex\n");
        return;
    }
    if (hit == nullptr) message(kResult, "Warning, patching unused space\n");
    const bool hasrelocs = hit != nullptr && !hit->ipRelocs.empty();
    if (hasrelocs && !requirefit(*slot, number)) return;
    overwrite(*slot, position, hex2bin(hextext.c_str()));
    if (!hasrelocs) return;
    message(kProgress, "Checking for affected relocs\n");
    createextract(rom, number);
}

} // namespace vantorel
