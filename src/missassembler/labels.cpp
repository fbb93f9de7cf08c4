#include "missassembler/labels.h"

#include "base/message.h"
#include "missassembler/bounds.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace vantorel {

std::multiset<MissLabel, InOrder> psLabels;
int32_t iMissLabelCnt = 0;
std::multiset<StopLabel, InOrder> sLabels;

namespace {

void traceplace(const MissLabel& label) {
    const auto before = std::distance(psLabels.begin(), psLabels.upper_bound(label));
    const auto place = static_cast<int32_t>(before);
    message(kTrace, "Adding label %s at position %d\n", label.pcLabel.c_str(), label.iPosition);
    if (place < iMissLabelCnt) message(kChatty, "Shuffling up positions %d-%d\n", place, iMissLabelCnt - 1);
    message(kTrace, "Storing into position %d of %d\n", place, iMissLabelCnt);
}

} // namespace

void addmisslabel(const std::string& text, int32_t position, char type, int32_t repeat) {
    const MissLabel label = {.pcLabel = text, .iPosition = position, .cType = type, .iRepeat = repeat};
    // Its place in the order is not known for nothing.
    if (isshown(kTrace)) traceplace(label);
    psLabels.insert(label);
    countmisslabels(1);
}

void countmisslabels(int64_t times) {
    iMissLabelCnt =
        static_cast<int32_t>(std::min<int64_t>(iMissLabelCnt + times, std::numeric_limits<int32_t>::max()));
}

void addlabel(int32_t rom, uint32_t address, const std::string& text) {
    message(kTrace, "ADDLABEL @%08x:%s\n", address, text.c_str());
    sLabels.insert({.iLabel = address, .cLabel = text});
    checkaddressbound(rom, address);
}

void freemissassembler() {
    psLabels.clear();
    iMissLabelCnt = 0;
}

void freestoplabels() { sLabels.clear(); }

} // namespace vantorel
