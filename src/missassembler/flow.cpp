#include "missassembler/flow.h"

#include "base/message.h"
#include "missassembler/decode.h"
#include "missassembler/labels.h"
#include "missassembler/mnemonics.h"

#include <algorithm>
#include <array>
#include <vector>

namespace vantorel {

namespace {

// Where targets stand: behind "JMP ", behind "DBF D0,$" and behind "DBNE D0,$".
constexpr int32_t iJumpTarget = 4;
constexpr int32_t iShortDecrementTarget = 8;
constexpr int32_t iDecrementTarget = 9;

constexpr FlowKind pathend(std::string_view prefix) { return {.cPrefix = prefix, .isend = true}; }

constexpr FlowKind jump(std::string_view prefix) {
    return {.cPrefix = prefix, .isend = true, .iTarget = iJumpTarget, .cTrace = "JUMP!"};
}

constexpr FlowKind branch(std::string_view prefix) {
    return {.cPrefix = prefix, .iTarget = iJumpTarget, .cTrace = "JSR/BSR!"};
}

constexpr FlowKind decrement(std::string_view prefix) {
    return {.cPrefix = prefix, .iTarget = iDecrementTarget, .isdecrement = true, .cTrace = "DBxx"};
}

constexpr FlowKind shortdecrement(std::string_view prefix) {
    return {.cPrefix = prefix, .iTarget = iShortDecrementTarget, .isdecrement = true, .cTrace = "DBF/DBT!"};
}

constexpr auto sFlowKinds = std::to_array<FlowKind>({
    pathend("RTN"),         pathend("RTS"),         pathend("RTE"),     pathend("RTR"),
    jump("JMP "),           jump("BRA "),           branch("BSR "),     branch("JSR "),
    branch("BCC "),         branch("BCS "),         branch("BEQ "),     branch("BGE "),
    branch("BGT "),         branch("BHI "),         branch("BLE "),     branch("BLS "),
    branch("BLT "),         branch("BMI "),         branch("BNE "),     branch("BPL "),
    branch("BVC "),         branch("BVS "),         decrement("DBCC "), decrement("DBCS "),
    decrement("DBEQ "),     decrement("DBGE "),     decrement("DBGT "), decrement("DBHI "),
    decrement("DBLE "),     decrement("DBLS "),     decrement("DBLT "), decrement("DBMI "),
    decrement("DBNE "),     decrement("DBPL "),     decrement("DBVC "), decrement("DBVS "),
    shortdecrement("DBF "), shortdecrement("DBT "),
});

} // namespace

const FlowKind* flowkind(std::string_view text) {
    // All of them begin with one of four letters, which is sooner seen than that none of them fits.
    if (text.empty() || std::string_view("BDJR").find(text[0]) == std::string_view::npos) return nullptr;
    const auto found = std::ranges::find_if(
        sFlowKinds, [text](const FlowKind& kind) { return text.starts_with(kind.cPrefix); });
    return found == sFlowKinds.end() ? nullptr : &*found;
}

namespace {

// What the paths walked so far leave for later ones. A path that comes to the first byte of an instruction
// that was walked before goes on exactly as that one went: all it could mark is marked, and all that it
// changes is to add the same comments again. So it need not be walked again, only counted; walking it would
// take time out of all proportion where many paths join.
class Paths {
public:
    explicit Paths(Walk& itswalk)
        : walk(itswalk), comments(static_cast<size_t>(itswalk.record.iSize), iNotWalked) {}

    void follow(int32_t entry);

private:
    // An instruction of the present path.
    struct Step {
        int32_t offset; // component offset
        bool iscommented;
    };

    bool followinstruction(int32_t& at);
    bool followtarget(int32_t at, const FlowKind& kind, const char* text);

    static constexpr int32_t iNotWalked = -1;

    Walk& walk;
    // For the first byte of each instruction walked, the comments added from it to the end of its path.
    std::vector<int32_t> comments;
    std::vector<Step> steps;
};

// Whether the path goes on behind the instruction at `at`, which is moved there.
bool Paths::followinstruction(int32_t& at) {
    MissText text;
    const int32_t length = missassembleA(walk.rom, walk.record.iStart + at, text, sMnemonic);
    markcode(walk, at, length);
    message(kTrace, "Mnemonic -> %s\n", text.data());
    const FlowKind* kind = flowkind(text.data());
    const bool iscommented = kind != nullptr && kind->iTarget != 0 && !followtarget(at, *kind, text.data());
    steps.push_back({at, iscommented});
    at += length;
    return kind == nullptr || !kind->isend;
}

// Makes the target of the instruction at `at` an entry point; false, and a comment, when its text tells none.
bool Paths::followtarget(int32_t at, const FlowKind& kind, const char* text) {
    const std::string_view spelt = text;
    const bool isrelative = spelt.find("(PC)") != std::string_view::npos;
    if (!isrelative && (kind.isdecrement || spelt.find('(') != std::string_view::npos)) {
        addmisslabel(kind.isdecrement ? "; Complex relative branch" : "; Complex relative branch or jump", at,
                     MissType::cNone, 1);
        return false;
    }
    const size_t place = std::min(static_cast<size_t>(kind.iTarget), spelt.size());
    const uint32_t target = hex6toi(text + place);
    message(kTrace, "%s %6x\n", kind.cTrace, target);
    const int64_t offset = componentoffset(walk, target);
    if (isincomponent(walk, offset) && walk.marks[static_cast<size_t>(offset)] == Walk::NotReached)
        markentry(walk, offset);
    return true;
}

// Follows the path from `entry` to its end, or to where another one has gone on.
void Paths::follow(int32_t entry) {
    message(kTrace, "Entrypoint 0x%06x\n", walk.address + static_cast<uint32_t>(entry));
    int32_t at = entry;
    int32_t joined = 0;
    steps.clear();
    for (bool goeson = true; goeson && at < walk.record.iSize;) {
        const int32_t known = comments[static_cast<size_t>(at)];
        // Traces show every step, however often it is taken.
        if (known != iNotWalked && !isshown(kTrace)) {
            joined = known;
            break;
        }
        goeson = followinstruction(at);
    }
    countmisslabels(joined);
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        if (step->iscommented) ++joined;
        comments[static_cast<size_t>(step->offset)] = joined;
    }
}

} // namespace

void followentries(Walk& walk) {
    Paths paths(walk);
    // Sweeps from the lowest entry up, and again while paths have left entries behind them.
    while (!walk.ipEntries.empty())
        for (auto next = walk.ipEntries.begin(); next != walk.ipEntries.end();) {
            const int32_t entry = *next;
            paths.follow(entry);
            next = walk.ipEntries.upper_bound(entry);
        }
}

} // namespace vantorel
