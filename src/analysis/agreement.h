#pragma once
// Where two copies of a component agree: word by word, an address that each relocates for itself counting as
// the same.

#include <cstdint>
#include <vector>

namespace vantorel {

/// One of the copies. Places are counted in words from its first byte.
struct Copy {
    std::vector<uint16_t> words;
    std::vector<bool> isaddress; ///< for each word, whether it may be part of an address
};

/// The place in the second copy that agrees longest.
struct Agreement {
    int32_t iPlace = 0;  ///< the lowest of those that agree as long
    int32_t iLength = 0; ///< words
};

/// Finds where the first copy goes on in the second. What was compared is kept, so that going through all of
/// the first takes no longer than comparing every word with every other.
class AgreementSearch {
public:
    /// Gives up after `itsmost` steps: places and words compared.
    AgreementSearch(const Copy& itsfirst, const Copy& itssecond, int64_t itsmost = iStepsMost);

    /// The longest agreement with what begins at word `place` of the first copy, if it is of `least` words or
    /// more (1 up); of no length otherwise. `place` never decreases from call to call.
    [[nodiscard]] Agreement find(int32_t place, int32_t least);

    /// Whether it has given up. What `find` returns then means nothing.
    [[nodiscard]] bool isexhausted() const { return steps > most; }

private:
    static constexpr int64_t iStepsMost = int64_t{1} << 34; ///< about a minute's worth

    [[nodiscard]] int32_t landmark(int32_t place, int32_t least) const;
    int32_t measure(int32_t place, int32_t other);
    void consider(int32_t place, int32_t other, Agreement& best);

    const Copy& first;
    const Copy& second;
    int64_t most;
    /// Of the places of the second copy with the same hash of `iLandmark` words the lowest, and for each
    /// place the next one; -1: none.
    std::vector<int32_t> lowest;
    std::vector<int32_t> next;
    /// For each distance between the copies, the first word known not to agree there; -1: none known.
    std::vector<int32_t> ends;
    int64_t steps = 0;
};

} // namespace vantorel
