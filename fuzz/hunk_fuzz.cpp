// Hunk files from hostile hands: whatever the bytes, the reader ends, with a sound component or none, and
// what it read comes back from the form in which it is saved.
//
// The input's first byte chooses how the rest is read:
//   bit 0     everything that is narrated at the highest level is formatted as well
//   bit 1     the next word is the offset from which raw data are taken
//   bit 2     the next word is the length, taken modulo that of the rest and one more
//   bit 3     the rest is read at every length, if it is short

#include "base/message.h"
#include "component/extract.h"
#include "component/hunkreader.h"
#include "component/loadable.h"
#include "input.h"

#include <algorithm>
#include <cstdlib>

namespace vantorel::test {
namespace {

enum Mode : int32_t { kNarrated = 1, kOffset = 2, kLength = 4, kEveryLength = 8 };

// Reading at every length is quadratic.
constexpr size_t kShort = 256;

void require(bool holds) {
    if (!holds) std::abort();
}

/// Whether the two have the same contents; type and CRC32 may differ, since any data is saved as a hunk file.
bool issame(const Component& a, const Component& b) {
    return a.iSize == b.iSize && a.pcExtract == b.pcExtract && a.ipRelocs == b.ipRelocs;
}

void requiresound(const Component& component, size_t length) {
    require(component.pcExtract && component.pcExtract->size() == static_cast<size_t>(component.iSize));
    require(component.pcExtract->size() <= length);
    require(component.ipRelocs.size() <= length / 2);
    require(std::ranges::is_sorted(component.ipRelocs));
    for (const int32_t reloc : component.ipRelocs)
        require(requireinside(reloc, component.iSize));
}

/// Saves and reads again; only a size in whole longs has a form that can be read.
void requireback(const Component& component) {
    const Bytes form = loadablelibraryform(component);
    if (component.iSize % 4 != 0) return;
    Component back;
    require(librarybuffertocomponent(form, 0, static_cast<int32_t>(form.size()), back) == 0);
    require(issame(component, back));
    require(back.pcType == (component.pcType == cTypeLibrary ? cTypeLibrary : cTypeData));
}

void read(View buffer, int32_t offset, size_t length) {
    Component component;
    component.pcType = "untouched";
    const int result = librarybuffertocomponent(buffer, offset, static_cast<int32_t>(length), component);
    if (result == 0) {
        requiresound(component, length);
        requireback(component);
        return;
    }
    require(result == 1 && component.pcType == "untouched" && !component.pcExtract);
}

} // namespace

void exercise(View data) {
    Input input(data);
    const int32_t mode = input.byte();
    iLogLevel = (mode & kNarrated) != 0 ? 10 : 1;
    const int32_t offset = (mode & kOffset) != 0 ? input.word() : 0;
    const auto wanted = static_cast<size_t>((mode & kLength) != 0 ? input.word() : 0);
    const View buffer = input.rest();
    if ((mode & kEveryLength) != 0 && buffer.size() <= kShort)
        for (size_t length = 0; length < buffer.size(); ++length)
            read(buffer, offset, length);
    read(buffer, offset, (mode & kLength) != 0 ? wanted % (buffer.size() + 1) : buffer.size());
}

} // namespace vantorel::test
