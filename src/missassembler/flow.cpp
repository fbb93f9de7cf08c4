#include "missassembler/flow.h"

#include "base/message.h"
#include "missassembler/decode.h"
#include "missassembler/finish.h"
#include "missassembler/labels.h"
#include "missassembler/mnemonics.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
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

// What all of them begin with, which is sooner seen than that none of them fits.
constexpr std::string_view cFirstLetters = "BDJR";

constexpr bool hasfirstletter(std::string_view text) {
    return !text.empty() && cFirstLetters.find(text[0]) != std::string_view::npos;
}

static_assert(std::ranges::all_of(sFlowKinds, hasfirstletter, &FlowKind::cPrefix));

} // namespace

const FlowKind* flowkind(std::string_view text) {
    if (!hasfirstletter(text)) return nullptr;
    const auto found = std::ranges::find_if(
        sFlowKinds, [text](const FlowKind& kind) { return text.starts_with(kind.cPrefix); });
    return found == sFlowKinds.end() ? nullptr : &*found;
}

namespace {

// An instruction as the walk sees it.
struct Instruction {
    int32_t length = 0; // bytes
    const FlowKind* kind = nullptr;
    std::optional<uint32_t> target; // a CPU address

    [[nodiscard]] bool isend() const { return kind != nullptr && kind->isend; }
    // Whether it goes to a place that its text does not tell.
    [[nodiscard]] bool iscomplex() const { return kind != nullptr && kind->iTarget != 0 && !target; }
};

// The target of an instruction spelt `text`; none when the text does not tell it.
std::optional<uint32_t> targetof(const FlowKind& kind, const char* text) {
    const std::string_view spelt = text;
    const bool isrelative = spelt.find(cMarker) != std::string_view::npos;
    if (!isrelative && (kind.isdecrement || spelt.find('(') != std::string_view::npos)) return std::nullopt;
    const size_t place = std::min(static_cast<size_t>(kind.iTarget), spelt.size());
    const uint32_t target = hex6toi(text + place);
    message(kTrace, "%s %6x\n", kind.cTrace, target);
    return target;
}

Instruction instructionat(const Walk& walk, int32_t at) {
    MissText text;
    Instruction instruction;
    instruction.length = missassembleA(walk.rom, walk.record.iStart + at, text, sMnemonic);
    message(kTrace, "Mnemonic -> %s\n", text.data());
    instruction.kind = flowkind(text.data());
    if (instruction.kind != nullptr && instruction.kind->iTarget != 0)
        instruction.target = targetof(*instruction.kind, text.data());
    return instruction;
}

// What the paths walked so far leave for later ones. A path that comes to the first byte of an instruction
// that was walked before goes on exactly as that one went: all it could mark is marked, and all that it
// changes is to add the same comments again. So these are only counted; walking it would take time, and
// keeping them memory, out of all proportion where many paths join.
class Paths {
public:
    explicit Paths(Walk& itswalk)
        : walk(itswalk), comments(static_cast<size_t>(itswalk.record.iSize), iNotWalked) {}

    void follow(int32_t entry);

private:
    // An instruction of the present path.
    struct Step {
        int64_t offset; // component offset
        bool iscommented;
    };

    [[nodiscard]] bool isinside(int64_t at) const { return at < walk.record.iSize; }
    int64_t followinstruction(int64_t at);
    void show(int64_t at) const;

    static constexpr int32_t iNotWalked = -1;
    static constexpr int64_t iPathEnd = std::numeric_limits<int64_t>::max();

    Walk& walk;
    // For the first byte of each instruction walked, the comments added from it to the end of its path.
    std::vector<int32_t> comments;
    std::vector<Step> steps;
};

// Returns where the path goes on, `iPathEnd` when it does not.
int64_t Paths::followinstruction(int64_t at) {
    const auto place = static_cast<int32_t>(at);
    const Instruction instruction = instructionat(walk, place);
    markcode(walk, place, instruction.length);
    if (instruction.target) {
        const int64_t offset = componentoffset(walk, *instruction.target);
        if (isincomponent(walk, offset) && walk.marks[static_cast<size_t>(offset)] == Walk::NotReached)
            markentry(walk, offset);
    }
    if (instruction.iscomplex())
        addmisslabel(instruction.kind->isdecrement ? "; Complex relative branch"
                                                   : "; Complex relative branch or jump",
                     place, MissType::cNone, 1);
    steps.push_back({at, instruction.iscomplex()});
    return instruction.isend() ? iPathEnd : at + instruction.length;
}

// Traces show every step, however often it is taken.
void Paths::show(int64_t at) const {
    while (isinside(at)) {
        const Instruction instruction = instructionat(walk, static_cast<int32_t>(at));
        at = instruction.isend() ? iPathEnd : at + instruction.length;
    }
}

// Follows the path from `entry` to its end, or to where another one has gone on.
void Paths::follow(int32_t entry) {
    message(kTrace, "Entrypoint 0x%06x\n", walk.address + static_cast<uint32_t>(entry));
    int64_t at = entry;
    steps.clear();
    while (isinside(at) && comments[static_cast<size_t>(at)] == iNotWalked)
        at = followinstruction(at);
    int32_t joined = isinside(at) ? comments[static_cast<size_t>(at)] : 0;
    countmisslabels(joined);
    if (isshown(kTrace)) show(at);
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
