#include "rom/librarymatch.h"

#include "base/message.h"
#include "component/extract.h"
#include "component/loadable.h"
#include "component/relocs.h"
#include "hash/crc32.h"
#include "hash/hashfile.h"
#include "hash/ini.h"
#include "hash/library.h"
#include "rom/adopt.h"
#include "rom/store.h"
#include "shell/numbers.h"

#include <string>

namespace vantorel {

namespace {

// An id string as file names hold it.
std::string searchkey(const std::string& libstring) {
    constexpr size_t most = 128;
    std::string key = libstring.substr(0, most);
    for (char& c : key)
        if (c == ' ' || c == '/' || c == '\\') c = '_';
    return key;
}

int32_t numberof(const IniFile& ini, const char* key) {
    const char* value = readiniitem(ini, cDescriptionSection, key);
    return value != nullptr ? decimal(value) : 0;
}

// What the hash file `ini` says of a component whose ROMTAG is that of `component`. False when such a
// component would not lie in the image.
bool describe(const IniFile& ini, const KickstartRom& slot, Component& component) {
    const int64_t start = int64_t{component.iROMTag} - numberof(ini, "ROMTAG");
    component.iStart = static_cast<int32_t>(start);
    component.iSize = numberof(ini, "Size");
    message(kProgress, "Start=%d Size=%d\n", component.iStart, component.iSize);
    component.ipRelocs.clear();
    const int32_t section = readinisection(ini, cRelocSection);
    if (section >= 0) {
        tellrelocs(ini, section);
        component.ipRelocs = relocsofsection(ini, section);
    }
    return isinside(slot.pcROM, start, component.iSize);
}

// The name under which the library would keep the component, as `slot` has it.
std::string formname(const KickstartRom& slot, Component& component, const std::string& key) {
    droprelocsoutside(component.ipRelocs, component.iSize);
    component.pcExtract = extractof(slot, component);
    return hexlong(crc32buf(loadablelibraryform(component))) + "." + key;
}

// Trying files is worth its time up to this many bytes of them in an analysis. Each counts for some bytes
// more.
constexpr int64_t iTriedMost = int64_t{256} << 20;
constexpr int64_t iTrialCost = 2048;

// The search for the components of one slot in the hash library.
class LibraryMatcher {
public:
    explicit LibraryMatcher(int32_t slotnumber) : slot(*findslot(slotnumber)) {}

    void matchall() {
        for (int32_t number = 0; number < slot.iComponents() && !istoomuch(); ++number)
            lookfor(number);
        if (istoomuch())
            message(kResult, "ERROR: There is too much to try in the hash library, leaving off\n");
    }

private:
    [[nodiscard]] bool istoomuch() const { return work > iTriedMost; }

    void lookfor(int32_t number) {
        const Component& wanted = slot.component(number);
        if (wanted.pcHash) {
            message(kProgress, "Skipping complete component %d %s\n", number, shown(wanted.pcName));
            return;
        }
        if (!wanted.pcLibString) return;
        const std::string key = searchkey(*wanted.pcLibString);
        message(kProgress, "Checking component %d %s ", number, shown(wanted.pcLibString));
        message(kProgress, "(%s)\n", key.c_str());
        for (size_t i = 0; i < psVanHashFile.size() && !istoomuch(); ++i) {
            const HashFileEntry& entry = psVanHashFile[i];
            if (isshown(kTrace))
                message(kTrace, "Checking %d %s\n", static_cast<int32_t>(i), entry.cName.c_str());
            if (entry.cName.find(key) == std::string::npos) continue;
            message(kTrace, "[CANDIDATE] %s\n", entry.cName.c_str());
            if (trycandidate(number, entry, key)) return;
        }
    }

    // Tries one file, and takes over what it tells when its name is the one that the component would get.
    bool trycandidate(int32_t number, const HashFileEntry& entry, const std::string& key) {
        work += iTrialCost;
        const std::string path = hashfilepath(entry);
        const auto ini = loadinifile(path);
        if (!ini) {
            message(kResult, "ERROR: Couldn't open hash file %s\n", path.c_str());
            return false;
        }
        work += static_cast<int64_t>(ini->pcBuffer.size());
        Component candidate = slot.component(number);
        if (!describe(*ini, slot, candidate)) {
            message(kProgress, "[WONTFIT] We will ignore this\n");
            return false;
        }
        work += candidate.iSize;
        const std::string name = formname(slot, candidate, key);
        if (name != entry.cName) {
            message(kProgress, "[NOMATCH] We will discard this\n");
            message(kProgress, "\"%s\" != \"%s\"\n", name.c_str(), entry.cName.c_str());
            return false;
        }
        message(kProgress, "[MATCH] We will keep this\n");
        candidate.pcHash = entry.cName;
        adoptcomponent(slot, static_cast<size_t>(number), std::move(candidate));
        return true;
    }

    KickstartRom& slot;
    int64_t work = 0;
};

} // namespace

void matchhashlibrary(int32_t rom) {
    message(kResult, "Match any unknown components by hash alone\n");
    LibraryMatcher(rom).matchall();
}

} // namespace vantorel
