#pragma once
// Slots for the tests of the analyses: images written long by long, with components on them.

#include "component/slotstate.h"
#include "support/hunkbuilder.h"

#include <string>
#include <utility>
#include <vector>

namespace vantorel::test {

/// The id string of components that are copies of each other.
inline constexpr const char* cCopied = "copied 1.0";

/// A component whose bounds are all verified.
struct Place {
    int32_t start = 0;
    int32_t end = 0;
    int32_t tag = -1;   ///< image offset of its ROMTAG
    Text idstring = {}; ///< what names its copies
};

inline Component recordat(const Place& place) {
    Component record = componenton({place.start, place.end - place.start});
    record.iROMTag = place.tag;
    record.pcLibString = place.idstring;
    return record;
}

/// A new slot with this image, which runs at `base`.
inline int32_t slotof(Bytes image, uint32_t base, const std::vector<Place>& places) {
    const int32_t rom = slotwith(0, {}, base);
    slotat(rom).iUsed = static_cast<int32_t>(image.size());
    slotat(rom).pcROM = std::move(image);
    for (const Place& place : places)
        slotat(rom).psComponents.push_back(recordat(place));
    return rom;
}

/// A new slot whose one component covers all of the image.
inline int32_t wholeslot(Bytes image, uint32_t base) {
    const auto size = static_cast<int32_t>(image.size());
    return slotof(std::move(image), base, {{0, size}});
}

inline std::string lines(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts)
        all += text + "\n";
    return all;
}

/// `text` from behind the first line that begins with `head` on.
inline std::string behindline(const std::string& text, const std::string& head) {
    const size_t line = text.find("\n" + head);
    return line == std::string::npos ? "no line " + head : text.substr(text.find('\n', line + 1) + 1);
}

} // namespace vantorel::test
