#pragma once
// The flow of control: from the entry points of a component along every path that its code can take.

#include "missassembler/walk.h"

#include <cstdint>
#include <string_view>

namespace vantorel {

/// How an instruction leads on.
struct FlowKind {
    std::string_view cPrefix; ///< its text begins so, case heeded
    bool isend = false;       ///< the path ends behind it
    int32_t iTarget = 0;      ///< where in the text its target begins, in characters; 0: it has none
    bool isdecrement = false; ///< a DBcc: its target is PC-relative or none
    const char* cTrace = "";  ///< what traces call it
};

/// The kind of the instruction spelt `text`; null for one that just leads on to the next.
[[nodiscard]] const FlowKind* flowkind(std::string_view text);

/// Follows every entry point of `walk` and those that turn up on the way until none is left. What is reached
/// is marked as code; a jump whose target the text does not tell gets a comment. Traces above level 5.
void followentries(Walk& walk);

} // namespace vantorel
