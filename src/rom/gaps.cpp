#include "rom/gaps.h"

#include "base/message.h"

namespace vantorel {

namespace {

// A library whose relocs are not known has bounds that were most likely only inferred.
bool isinferred(const Component& component) { return component.ipRelocs.empty() && component.pcLibString; }

void growover(Component& component, Component& next, int32_t gap) {
    if (!component.ipRelocs.empty() && isinferred(next)) {
        next.iStart -= gap;
        next.iSize += gap;
        next.iFixedStart = next.iStart;
    } else if (isinferred(component) && !next.ipRelocs.empty()) {
        component.iSize += gap;
        component.iFixedEnd = static_cast<int32_t>(component.iEnd());
    }
}

} // namespace

void closegaps(KickstartRom& slot) {
    auto& components = slot.psComponents;
    for (size_t i = 0; i + 1 < components.size(); ++i) {
        Component& component = components[i];
        Component& next = components[i + 1];
        const int64_t gap = next.iStart - component.iEnd();
        if (gap < 1) {
            component.iFixedEnd = static_cast<int32_t>(component.iEnd());
            next.iFixedStart = next.iStart;
            continue;
        }
        message(kProgress, "Seeing if we can allocate the space between component %d and %d\n",
                static_cast<int32_t>(i), static_cast<int32_t>(i) + 1);
        growover(component, next, static_cast<int32_t>(gap));
    }
}

} // namespace vantorel
