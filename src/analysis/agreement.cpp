#include "analysis/agreement.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace vantorel {

namespace {

// Words that are looked up rather than compared with every place of the other copy.
constexpr int32_t iLandmark = 4;
constexpr int32_t iNone = -1;

int32_t count(const Copy& copy) { return static_cast<int32_t>(copy.words.size()); }

uint64_t landmarkat(const Copy& copy, int32_t place) {
    uint64_t words = 0;
    std::memcpy(&words, copy.words.data() + place, sizeof words);
    return words;
}

// The top bits of a product are the ones that depend on all words.
size_t bucketof(uint64_t words, size_t buckets) {
    constexpr uint64_t golden = 0x9E3779B97F4A7C15;
    return static_cast<size_t>((words * golden) >> 32) & (buckets - 1);
}

} // namespace

AgreementSearch::AgreementSearch(const Copy& itsfirst, const Copy& itssecond, int64_t itsmost)
    : first(itsfirst), second(itssecond), most(itsmost), next(second.words.size(), iNone),
      ends(first.words.size() + second.words.size() + 1, iNone) {
    lowest.assign(std::bit_ceil(second.words.size() + 1) * 2, iNone);
    // From the end, so that each chain comes to ascend.
    for (int32_t place = count(second) - iLandmark; place >= 0; --place) {
        int32_t& head = lowest[bucketof(landmarkat(second, place), lowest.size())];
        next[static_cast<size_t>(place)] = head;
        head = place;
    }
}

// The first of the places from `place` on, that `least` agreeing words would cover, whose words must be the
// very same in the other copy; none when an address is always near.
int32_t AgreementSearch::landmark(int32_t place, int32_t least) const {
    const int64_t end = std::min<int64_t>(int64_t{place} + least, count(first));
    int32_t plain = 0;
    for (int32_t at = place; at < end; ++at) {
        plain = first.isaddress[static_cast<size_t>(at)] ? 0 : plain + 1;
        if (plain == iLandmark) return at - iLandmark + 1;
    }
    return iNone;
}

// How many words from `place` of the first copy and `other` of the second agree.
int32_t AgreementSearch::measure(int32_t place, int32_t other) {
    int32_t& end = ends[static_cast<size_t>(int64_t{other} - place + count(first))];
    if (end >= place) return end - place;
    const int32_t reach = std::min(count(first) - place, count(second) - other);
    int32_t length = 0;
    while (length < reach) {
        const auto mine = static_cast<size_t>(place) + static_cast<size_t>(length);
        const auto theirs = static_cast<size_t>(other) + static_cast<size_t>(length);
        const bool agrees =
            first.words[mine] == second.words[theirs] || (first.isaddress[mine] && second.isaddress[theirs]);
        if (!agrees) break;
        ++length;
    }
    steps += length;
    end = place + length;
    return length;
}

void AgreementSearch::consider(int32_t place, int32_t other, Agreement& best) {
    ++steps;
    const int32_t length = measure(place, other);
    if (length > best.iLength) best = {.iPlace = other, .iLength = length};
}

Agreement AgreementSearch::find(int32_t place, int32_t least) {
    Agreement best;
    const int32_t mark = landmark(place, least);
    if (mark == iNone) {
        for (int32_t other = 0; other < count(second) && !isexhausted(); ++other)
            consider(place, other, best);
    } else {
        const uint64_t words = landmarkat(first, mark);
        int32_t found = lowest[bucketof(words, lowest.size())];
        for (; found != iNone && !isexhausted(); found = next[static_cast<size_t>(found)])
            if (found >= mark - place && landmarkat(second, found) == words)
                consider(place, found - (mark - place), best);
    }
    return best.iLength >= least ? best : Agreement{};
}

} // namespace vantorel
