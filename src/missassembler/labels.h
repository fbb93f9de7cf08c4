#pragma once
// The two label tables: comments and labels of the walk over a component, and the addresses at which the
// one-pass listing stops decoding. Both live from one start of a listing to the next.

#include <cstdint>
#include <set>
#include <string>

namespace vantorel {

/// How the bytes at a label of the walk are listed when they are no code.
namespace MissType {
inline constexpr char cNone = 0;      ///< no data format; any letter that is none of these counts as it
inline constexpr char cAddress = 'A'; ///< longs that hold addresses
inline constexpr char cByte = 'B';
inline constexpr char cLong = 'L';
inline constexpr char cText = 'T'; ///< up to and with a NUL
inline constexpr char cWord = 'W';
} // namespace MissType

/// A comment or a label of the walk.
struct MissLabel {
    std::string pcLabel;   ///< a comment when it begins with ";", else a label; may be empty
    int32_t iPosition = 0; ///< component offset in bytes
    char cType = MissType::cNone;
    int32_t iRepeat = 1; ///< how many items of the type follow
};

/// A stop of the one-pass listing.
struct StopLabel {
    uint32_t iLabel = 0; ///< CPU address
    std::string cLabel;  ///< a letter that says what is there, and the text to print
};

// Both are in ascending order of place, and in order of adding where that is the same.
struct InOrder {
    bool operator()(const MissLabel& a, const MissLabel& b) const { return a.iPosition < b.iPosition; }
    bool operator()(const StopLabel& a, const StopLabel& b) const { return a.iLabel < b.iLabel; }
};

/// The records of the walk. Added to by `addmisslabel`, emptied by `freemissassembler`.
extern std::multiset<MissLabel, InOrder> psLabels;
/// How many were added; a comment that a path would add each time it is walked again is in `psLabels` once.
extern int32_t iMissLabelCnt;

/// The stops of the one-pass listing that are still ahead. Added to by `addlabel`, taken out by the listing,
/// emptied by `freestoplabels`.
extern std::multiset<StopLabel, InOrder> sLabels;

/// Adds a record to the walk's, behind those at the same or a lower position (a component offset). Traces
/// above levels 5 and 7.
void addmisslabel(const std::string& text, int32_t position, char type, int32_t repeat);

/// Counts `times` more records as added that are in `psLabels` already.
void countmisslabels(int64_t times);

/// Adds a stop at `address`, a CPU address of slot `rom`, and shows the address to `checkaddressbound`.
/// Traces above level 5.
void addlabel(int32_t rom, uint32_t address, const std::string& text);

/// Empties the walk's records.
void freemissassembler();

/// Empties the stops.
void freestoplabels();

} // namespace vantorel
