#pragma once
// The fixture for tests of slots, maps and loaders, and what they say at each verbosity.

#include "adf/disk.h"
#include "base/bytes.h"
#include "base/message.h"
#include "hash/library.h"
#include "rom/map.h"
#include "rom/store.h"
#include "support/capture.h"
#include "support/checksums.h"
#include "support/dumps.h"
#include "support/fresh.h"
#include "support/hashbuilder.h"
#include "support/rombuilder.h"
#include "support/tempdir.h"

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

namespace vantorel::test {

using Action = std::function<void()>;

/// Where a test's ROM runs, unless it says otherwise.
inline constexpr uint32_t kBase = 0xF80000;

/// A text on the console, and the highest verbosity at which it is not there yet.
struct Shown {
    int32_t threshold;
    std::string text;
};

/// What `run` prints at verbosity `level`.
inline std::string at(int32_t level, const Action& run) {
    const int32_t former = iLogLevel;
    iLogLevel = level;
    std::string text = captured(run);
    iLogLevel = former;
    return text;
}

inline void silently(const Action& run) { static_cast<void>(at(0, run)); }

/// Checks that each text appears just above its threshold and not at it. `prepare` makes, silently, the state
/// in which `run` speaks; both run once for each verbosity, from a fresh start.
inline void expectthresholds(const Action& prepare, const Action& run, const std::vector<Shown>& texts) {
    std::map<int32_t, std::string> consoles;
    const auto console = [&](int32_t level) -> const std::string& {
        const auto [place, isnew] = consoles.try_emplace(level);
        if (isnew) {
            freshstate();
            silently(prepare);
            place->second = at(level, run);
        }
        return place->second;
    };
    for (const Shown& shown : texts) {
        EXPECT_NE(console(shown.threshold + 1).find(shown.text), std::string::npos)
            << "not shown at level " << shown.threshold + 1 << ": " << shown.text << "but\n"
            << console(shown.threshold + 1);
        if (shown.threshold < 0) continue;
        EXPECT_EQ(console(shown.threshold).find(shown.text), std::string::npos)
            << "shown at level " << shown.threshold << " already: " << shown.text;
    }
}

/// How often `part` stands in `text`.
inline int countof(std::string_view text, std::string_view part) {
    int count = 0;
    for (size_t place = text.find(part); place != std::string_view::npos; place = text.find(part, place + 1))
        ++count;
    return count;
}

inline bool has(std::string_view text, std::string_view part) { return countof(text, part) > 0; }

/// `text` with "*" for every pointer, null or not.
inline std::string maskpointers(const std::string& text) {
    static const std::regex pointer("0x[0-9a-f]{9,16}|\\(nil\\)");
    return std::regex_replace(text, pointer, "*");
}

inline KickstartRom& slotat(int32_t number) { return psKickstartRoms.at(static_cast<size_t>(number)); }

inline Component& componentat(int32_t rom, int32_t number) {
    return slotat(rom).psComponents.at(static_cast<size_t>(number));
}

/// The used bytes of a slot.
inline Bytes usedof(int32_t rom) {
    const KickstartRom& slot = slotat(rom);
    return {slot.pcROM.begin(), slot.pcROM.begin() + slot.iUsed};
}

/// Loads `image` into a new slot, as the command layer does it, and gives the slot.
inline int32_t loaded(View image) {
    int32_t rom = -1;
    silently([&] {
        rom = newrom(0, 0);
        loadromdata(rom, image);
    });
    return rom;
}

/// Every promise that a map makes, whatever it was read from.
inline void expectsoundmap(int32_t rom) {
    const KickstartRom& slot = slotat(rom);
    for (const Component& component : slot.psComponents) {
        if (!component.pcExtract) continue;
        EXPECT_TRUE(isinside(slot.pcROM, component.iStart, component.iSize)) << shown(component.pcName);
        EXPECT_EQ(component.pcExtract->size(), static_cast<size_t>(component.iSize));
        for (const int32_t reloc : component.ipRelocs)
            EXPECT_TRUE(isinside(*component.pcExtract, reloc, 4)) << reloc;
    }
}

/// A fresh program, and a folder of hash files that it knows once `index` is called.
class RomTest : public FreshTest {
protected:
    void index() const {
        silently([&] { loadhashes(hashes.path()); });
    }

    TempDir dir;
    HashBuilder hashes{dir.folder("hashes")};
};

} // namespace vantorel::test
