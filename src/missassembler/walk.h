#pragma once
// What a walk over a component knows of each of its bytes. The steps of the walk fill it in; the listing at
// the end reads it.

#include "base/bytes.h"
#include "rom/store.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace vantorel {

/// A walk over component `component` of slot `rom`, which lies in its image.
struct Walk {
    enum Mark : char { NotReached = 0, Entry = 'E', Code = 'C' };

    int32_t rom = 0;
    int32_t component = 0;
    const KickstartRom& slot;
    const Component& record;
    View bytes;                  ///< the component's bytes in the image
    uint32_t address = 0;        ///< CPU address of its first byte
    std::vector<char> marks;     ///< a `Mark` for each byte
    std::set<int32_t> ipEntries; ///< the even component offsets marked as entries
    int32_t iVectorsLeft = 0;    ///< entries of vector and jump tables that are still taken
};

/// A walk that has not begun. Slot and component exist, and the component lies in the image.
[[nodiscard]] Walk startwalk(int32_t rom, int32_t component);

/// The component offset of a CPU address; negative or beyond the size for what lies outside.
[[nodiscard]] int64_t componentoffset(const Walk& walk, uint32_t address);

/// Whether a component offset lies in the component.
[[nodiscard]] bool isincomponent(const Walk& walk, int64_t offset);

/// Marks a component offset as an entry point still to be followed. False, and nothing marked, when it lies
/// outside the component.
bool markentry(Walk& walk, int64_t offset);

/// Whether one more entry of a vector or jump table is to be taken. A component has no more of them than
/// bytes: tables that lie over one another could otherwise go on out of all proportion. An error line the
/// first time that there are.
[[nodiscard]] bool takevector(Walk& walk);

/// Marks `length` bytes from a component offset as code; those beyond the component are passed over.
void markcode(Walk& walk, int32_t offset, int32_t length);

/// Adds a record at a component offset, as `addmisslabel` does; outside the component it is left out.
void addrecord(const Walk& walk, const std::string& text, int64_t offset, char type, int32_t repeat = 1);

} // namespace vantorel
